#include "landscape_parts.h"

#include "noise.h"

namespace samples {
namespace {

constexpr Color kShadow{38, 46, 34};

// A wall or a roof: its colour varied by noise that is stretched along the courses.
void LayMasonry(Canvas& canvas, const Path& corners, Color color, double course, double contrast) {
  Lay(
      canvas, BoundsOf(corners), [&](Point at) { return DistanceToPolygon(at, corners); },
      [&](Point at) {
        const double grain = LayeredNoise(at.x / 9, at.y / course, 301, 3) - 0.5;
        const double joint = at.y / course - std::floor(at.y / course) < 0.22 ? -0.5 : 0.0;
        return Scaled(color, 1 + contrast * (grain + joint));
      });
}

void LayWindow(Canvas& canvas, const Box& box) {
  const Path frame{{box.left, box.top}, {box.right, box.top},
                   {box.right, box.bottom}, {box.left, box.bottom}};
  LayPolygon(canvas, frame, {236, 234, 226});
  const double middle = (box.left + box.right) / 2;
  const double bar = box.top + (box.bottom - box.top) * 0.4;
  for (const Box& pane : {Box{box.left + 4, box.top + 4, middle - 2, bar - 2},
                          Box{middle + 2, box.top + 4, box.right - 4, bar - 2},
                          Box{box.left + 4, bar + 2, middle - 2, box.bottom - 4},
                          Box{middle + 2, bar + 2, box.right - 4, box.bottom - 4}}) {
    Lay(
        canvas, pane, [&](Point at) { return DistanceToBox(at, pane); },
        [&](Point at) {
          const double sheen = Step(0, 1, (at.x - box.left + at.y - box.top) / 90);
          return Mix({44, 56, 70}, {120, 142, 160}, sheen);
        });
  }
}

}  // namespace

void PlantTree(Canvas& canvas, Point foot, double height, std::uint32_t seed) {
  Dice dice(seed);
  LayEllipse(canvas, foot + Point{height * 0.14, height * 0.01}, height * 0.42, height * 0.05,
             kShadow, {.opacity = 0.55, .softness = height * 0.08});
  const double stem = height * 0.05;
  const Point fork = foot + Point{0, -height * 0.4};
  LayPath(canvas, Smoothed({foot, foot + Point{-stem / 2, -height * 0.2}, fork}), stem,
          {70, 56, 44});
  for (const double lean : {-0.2, -0.05, 0.12, 0.22}) {
    LayPath(canvas, {fork, foot + Point{height * lean, -height * 0.66}}, stem * 0.45, {64, 52, 40});
  }
  // Twigs of leaves around some boughs, the shaded ones first so that the lit ones lie over them.
  constexpr int kBoughs = 26;
  constexpr int kLeaves = 46;
  const Color dark{34, 58, 30};
  const Color light{136, 158, 66};
  for (int layer = 0; layer < 4; ++layer) {
    Dice boughs(seed + 1);
    for (int bough = 0; bough < kBoughs; ++bough) {
      const double turn = boughs.between(-1, 1);
      const double rise = boughs.between(-1, 1);
      const double squeeze = std::sqrt(std::max(0.05, 1 - rise * rise));
      const Point heart = foot + Point{turn * squeeze * height * 0.32,
                                       -height * 0.66 + rise * height * 0.27};
      for (int leaf = 0; leaf < kLeaves; ++leaf) {
        const Point off{dice.between(-1, 1), dice.between(-1, 1)};
        const Point place = heart + off * (height * (0.1 - 0.012 * layer)) +
                            Point{-layer * height * 0.012, -layer * height * 0.018};
        const double lit = layer / 4.0 - 0.22 * rise - 0.12 * turn - 0.12 * (off.x + off.y) +
                           dice.between(-0.14, 0.14);
        const double size = height * dice.between(0.008, 0.016);
        LayEllipse(canvas, place, size, size * dice.between(0.5, 1), Mix(dark, light, lit));
      }
    }
  }
}

void BuildHouse(Canvas& canvas, Point corner) {
  const auto place = [&](double x, double y) { return corner + Point{x, -y}; };
  LayPolygon(canvas, {place(-20, 4), place(330, 2), place(390, -16), place(30, -22)}, kShadow,
             {.opacity = 0.5, .softness = 14});
  // The gable with the door looks left and is in the light; the long wall lies in shade.
  LayMasonry(canvas, {place(0, 0), place(0, 106), place(60, 176), place(120, 112), place(120, -6)},
             {222, 208, 178}, 8, 0.16);
  LayMasonry(canvas, {place(120, -6), place(120, 112), place(318, 100), place(318, 2)},
             {164, 150, 130}, 8, 0.18);
  LayMasonry(canvas, {place(236, 150), place(236, 218), place(266, 218), place(266, 150)},
             {146, 88, 70}, 6, 0.3);
  LayPolygon(canvas, {place(232, 214), place(232, 222), place(270, 222), place(270, 214)},
             {104, 78, 70});
  LayMasonry(canvas, {place(56, 184), place(134, 102), place(334, 90), place(280, 178)},
             {150, 74, 54}, 7, 0.34);
  LayPath(canvas, {place(-10, 98), place(58, 182), place(134, 102)}, 7, {110, 62, 48});
  LayPath(canvas, {place(134, 100), place(334, 88)}, 5, {92, 60, 50});
  LayWindow(canvas, {corner.x + 76, corner.y - 92, corner.x + 108, corner.y - 44});
  LayWindow(canvas, {corner.x + 148, corner.y - 82, corner.x + 194, corner.y - 36});
  LayWindow(canvas, {corner.x + 236, corner.y - 78, corner.x + 282, corner.y - 34});
  LayPolygon(canvas, {place(18, 0), place(18, 72), place(54, 74), place(54, -2)}, {52, 84, 88});
  LayPath(canvas, {place(36, 0), place(36, 72)}, 2, {34, 58, 62});
  LayEllipse(canvas, place(48, 34), 2.5, 2.5, {214, 190, 110});
  Dice dice(77);
  for (int bush = 0; bush < 420; ++bush) {  // shrubs along the shaded wall, some in flower
    const double x = dice.between(140, 330);
    const double y = dice.between(-18, 20) - std::abs(x - 235) * 0.06;
    const Color leaf = Mix({40, 62, 34}, {112, 134, 60}, dice.between(0, 1));
    const bool flower = dice.between(0, 1) > 0.88;
    LayEllipse(canvas, place(x, y), 3.4, 2.6, flower ? Color{214, 92, 110} : leaf);
  }
}

void BuildFence(Canvas& canvas) {
  const Color wood{146, 128, 106};
  const auto top = [](double x) { return 936 + x * 0.03; };
  for (const double rail : {34.0, 92.0}) {
    for (double x = -40; x < 1640; x += 210) {
      const Path plank{{x, top(x) + rail}, {x + 212, top(x + 212) + rail - 4}};
      LayPath(canvas, plank, 17, Scaled(wood, 0.62));
      LayPath(canvas, {plank[0] + Point{0, -3}, plank[1] + Point{0, -3}}, 9, wood);
    }
  }
  for (double x = -40; x < 1640; x += 210) {
    const Path post{{x - 13, top(x)}, {x + 13, top(x) - 4}, {x + 14, top(x) + 200},
                    {x - 14, top(x) + 200}};
    Lay(
        canvas, BoundsOf(post), [&](Point at) { return DistanceToPolygon(at, post); },
        [&](Point at) {
          const double grain = LayeredNoise(at.x / 4, at.y / 60, 411, 3) - 0.5;
          return Scaled(wood, 1.0 - 0.4 * Step(-4, 13, at.x - x) + 0.5 * grain);
        });
  }
}

}  // namespace samples
