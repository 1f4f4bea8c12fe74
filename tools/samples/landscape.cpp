#include "landscape_parts.h"
#include "noise.h"
#include "pictures.h"

namespace samples {
namespace {

constexpr int kWidth = 1600;
constexpr int kHeight = 1200;
constexpr double kHorizon = 600;  // where the meadow begins
constexpr Color kHaze{196, 206, 214};

Color SkyAt(Point at) {
  const double t = at.y / kHorizon;
  const Color air = Mix({92, 136, 188}, {206, 218, 224}, Step(-0.1, 1, t));
  // Clouds grow thin and long towards the horizon; they are lit from the upper left.
  const double x = at.x / 330;
  const double y = at.y / (150 - 90 * t);
  const double cloud = LayeredNoise(x, y, 11, 6);
  const double lit = LayeredNoise(x - 0.08, y - 0.12, 11, 5) - cloud;
  const double cover = Step(0.47, 0.68, cloud) * (1 - 0.6 * Step(0.6, 1, t));
  const Color white = Mix({196, 203, 214}, {250, 249, 245}, Step(-0.05, 0.06, -lit));
  return Mix(air, white, cover);
}

// A range of hills: everything below its ridge.
struct Range {
  double crest, relief, scale;  // height of the ridge line, its variation and width, in pixels
  Color color;
  double forest;  // how strongly woods show, 0 to 1
  std::uint32_t seed;
};

constexpr Range kRanges[] = {
    {380, 190, 420, {150, 172, 194}, 0.05, 21},
    {470, 130, 300, {118, 144, 156}, 0.16, 31},
    {540, 90, 360, {92, 120, 104}, 0.4, 41},
    {590, 46, 240, {88, 112, 68}, 0.7, 51},
};

void LayRange(Canvas& canvas, const Range& range) {
  const auto ridge = [&](double x) {
    return range.crest - range.relief * (LayeredNoise(x / range.scale, 0.5, range.seed, 7) - 0.4);
  };
  std::vector<double> line;
  for (int x = 0; x < kWidth; ++x) line.push_back(ridge(x));
  Fill(canvas, {0, 0, kWidth, kHorizon + 60}, [&](Point at, Color under) {
    const double depth = at.y - line[static_cast<std::size_t>(at.x)];
    if (depth < -0.5) return under;
    const double wood = LayeredNoise(at.x / 46, at.y / 17, range.seed + 5, 5);
    const double relief = LayeredNoise(at.x / 90, at.y / 60, range.seed + 9, 4) - 0.5;
    Color color = Scaled(range.color, 1 + 0.35 * relief);
    color = Mix(color, Scaled(range.color, 0.55), range.forest * Step(0.42, 0.58, wood));
    color = Mix(color, kHaze, 0.35 * Step(0, 120, depth) * (1 - range.forest));
    return Mix(under, color, std::min(depth + 0.5, 1.0));
  });
}

// The meadow in perspective: `near` is 0 at the horizon and 1 at the lower edge.
Color MeadowAt(Point at) {
  const double near = std::max((at.y - kHorizon) / (kHeight - kHorizon), 0.012);
  const double x = (at.x - 760) / near / 300;
  const double y = 6 / near;
  const double patches = LayeredNoise(x / 3, y / 2, 61, 4);
  const double tufts = LayeredNoise(x * 5, y * 6, 71, 4);
  const double fine = Noise(at.x / 2.2, at.y / (2 + 3 * near), 81);
  Color grass = Mix({84, 108, 50}, {158, 158, 78}, Step(0.3, 0.7, patches));
  grass = Scaled(grass, 0.72 + 0.4 * tufts + 0.22 * near * (fine - 0.5) + 0.1);
  return Mix(Mix({136, 152, 104}, grass, Step(0, 0.25, near)), kHaze, 0.2 * (1 - near));
}

void LayMeadow(Canvas& canvas) {
  Fill(canvas, {0, kHorizon - 14, kWidth, kHeight}, [](Point at, Color under) {
    const double edge = kHorizon - 10 + 24 * LayeredNoise(at.x / 300, 3, 91, 4);
    return at.y < edge ? under : MeadowAt(at);
  });
}

// A sandy track that winds from the lower edge to the house door.
void LayTrack(Canvas& canvas) {
  const Path left = Smoothed({{520, 1200}, {700, 1040}, {1060, 930}, {760, 800}, {960, 742},
                              {1042, 712}, {1052, 702}});
  const Path right = Smoothed({{900, 1200}, {940, 1060}, {1240, 940}, {850, 800}, {1000, 748},
                               {1066, 714}, {1072, 702}});
  Path track = left;
  track.insert(track.end(), right.rbegin(), right.rend());
  Lay(
      canvas, BoundsOf(track),
      [&](Point at) {
        return DistanceToPolygon(at, track) + 10 * (LayeredNoise(at.x / 14, at.y / 8, 96, 3) - 0.5);
      },
      [](Point at) {
        const double near = (at.y - kHorizon) / (kHeight - kHorizon);
        const double pebbles = LayeredNoise(at.x / 7, at.y / 3, 95, 4) - 0.5;
        return Scaled({190, 172, 136}, 0.96 + (0.2 + 0.4 * near) * pebbles);
      },
      {.opacity = 0.92, .softness = 5});
}

// Blades and flowers, larger the nearer they stand; the far ones first.
void GrowFlowers(Canvas& canvas) {
  Dice dice(111);
  constexpr int kRows = 150;
  for (int row = 0; row < kRows; ++row) {
    const double near = 0.12 + 0.95 * row / kRows;
    const double y = kHorizon + near * (kHeight - kHorizon);
    for (int tuft = 0; tuft < 46; ++tuft) {
      const Point foot{dice.between(0, kWidth), y + dice.between(-6, 6)};
      const double height = near * near * dice.between(14, 42);
      const Point tip = foot + Point{height * dice.between(-0.4, 0.4), -height};
      const Color blade = Mix({66, 88, 38}, {186, 186, 96}, dice.between(0, 1));
      // Nothing grows on the track.
      const Color ground = canvas.at(static_cast<int>(foot.x), std::min(static_cast<int>(y), 1199));
      if (ground.blue > 105) continue;
      LayPath(canvas, {foot, tip}, 0.8 + 1.4 * near, blade, {.opacity = 0.85});
      if (dice.between(0, 1) > 0.16) continue;
      const double kind = dice.between(0, 3);
      const Color petals = kind < 1   ? Color{206, 58, 46}
                           : kind < 2 ? Color{238, 206, 74}
                                      : Color{240, 238, 232};
      const double size = 0.8 + near * dice.between(3, 6.5);
      LayEllipse(canvas, tip, size, size * 0.8, petals);
      LayEllipse(canvas, tip + Point{0, size * 0.15}, size * 0.35, size * 0.3, {84, 62, 36});
    }
  }
}

}  // namespace

Canvas PaintLandscape() {
  Canvas canvas(kWidth, kHeight);
  Fill(canvas, WholeOf(canvas), [](Point at, Color) { return SkyAt(at); });
  for (const Range& range : kRanges) LayRange(canvas, range);
  LayMeadow(canvas);
  LayTrack(canvas);
  Dice dice(121);
  for (int tree = 0; tree < 11; ++tree) {  // a row of trees along the far edge of the meadow
    PlantTree(canvas, {40 + tree * 92 + dice.between(-30, 30), 622 + dice.between(-4, 16)},
              dice.between(44, 86), 130 + static_cast<std::uint32_t>(tree) * 7);
  }
  PlantTree(canvas, {1452, 706}, 270, 201);
  PlantTree(canvas, {1536, 724}, 210, 211);
  BuildHouse(canvas, {1040, 706});
  PlantTree(canvas, {960, 716}, 150, 221);
  GrowFlowers(canvas);
  PlantTree(canvas, {262, 930}, 640, 231);
  BuildFence(canvas);
  Soften(canvas, 1);
  Fill(canvas, WholeOf(canvas), [](Point, Color color) { return Mix(color, kHaze, 0.3); });
  AddGrain(canvas, 2.5, 251);
  return canvas;
}

}  // namespace samples
