#include "plain_finder.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "imaging/regions/skew.h"
#include "support/pictures.h"

using namespace orvo;

namespace plain {

namespace {

// A pixel as 0xRRGGBB; y from the top.
unsigned ColorAt(const pictures::Locked& image, int x, int y) {
  const orvo::DibLayout layout = image.layout();
  const std::uint8_t* const row = image.row(layout.height - 1 - y);
  const auto color = [](const std::uint8_t* blueFirst) {
    return static_cast<unsigned>(blueFirst[2] << 16 | blueFirst[1] << 8 | blueFirst[0]);
  };
  if (layout.depth <= 8) {
    const int perByte = 8 / layout.depth;
    const int shift = 8 - layout.depth * (x % perByte + 1);
    const int index = row[x / perByte] >> shift & ((1 << layout.depth) - 1);
    return color(image.bytes() + orvo::kDibHeaderBytes + 4 * index);
  }
  if (layout.depth > 16) return color(row + x * (layout.depth / 8));
  const auto value = static_cast<unsigned>(row[2 * x] | row[2 * x + 1] << 8);
  unsigned rgb = 0;
  for (const unsigned shift : {10U, 5U, 0U}) {
    const unsigned tone = value >> shift & 31U;
    rgb = rgb << 8 | tone << 3 | tone >> 2;
  }
  return rgb;
}

int Area(const RECT& box) {
  return (box.bottom - box.top) * (box.right - box.left);
}

int OverlapArea(const PixelRegion& a, const PixelRegion& b) {
  const RECT boxA = a.BoundingRect();
  const RECT boxB = b.BoundingRect();
  RECT shared;
  return IntersectRect(&shared, &boxA, &boxB) != 0 ? Area(shared) : 0;
}

int AreaOfTurn(const PixelRegion& region, double angle) {
  return Area(RotatedOutline(region, angle).BoundingRect());
}

}  // namespace

Mask MaskOf(DibHandle handle, int whiteLevel) {
  const pictures::Locked image(handle);
  const orvo::DibLayout layout = image.layout();
  const double scale = std::min(layout.width, layout.height) * 0.005 + 1.0;
  Mask mask{static_cast<int>(layout.width / scale), static_cast<int>(layout.height / scale), {}};
  std::vector<unsigned> colors(mask.index(0, mask.height), 0xFFFFFF);
  mask.bytes.resize(colors.size());
  if (colors.empty()) return mask;
  for (int y = 0; y < layout.height; ++y) {
    for (int x = 0; x < layout.width; ++x) {
      colors[mask.index(x * mask.width / layout.width, y * mask.height / layout.height)] &=
          ColorAt(image, x, y);
    }
  }
  for (std::size_t i = 0; i < colors.size(); ++i) {
    const auto red = static_cast<int>(colors[i] >> 16);
    const auto green = static_cast<int>(colors[i] >> 8 & 255);
    const auto blue = static_cast<int>(colors[i] & 255);
    mask.bytes[i] = (4 * red + 3 * green + blue) / 8 < whiteLevel ? 1 : 0;
  }
  return mask;
}

// --- Segmentation --------------------------------------------------------------------------------

Finder::Finder(Mask mask, int mergeReach, int seedStep)
    : mask_(std::move(mask)), mergeReach_(mergeReach), seedStep_(seedStep) {}

bool Finder::IsForeground(int y, int x) const {
  return y >= 0 && y < mask_.height && x >= 0 && x < mask_.width &&
         mask_.bytes[mask_.index(x, y)] == 1;
}

bool Finder::FloodFrom(int y, int x) {
  bool took = false;
  std::vector<POINT> stack{{x, y}};
  while (!stack.empty()) {
    const POINT point = stack.back();
    stack.pop_back();
    if (!IsForeground(point.y, point.x)) continue;
    took = true;
    mask_.bytes[mask_.index(point.x, point.y)] = 0;
    if (!spare_.IsEmpty() && spare_.Contains(point.x, point.y)) continue;
    if (!spare_.AddPixel(point.x, point.y)) throw std::bad_alloc();
    constexpr POINT kNeighbours[] = {{1, 0},  {1, 1},   {0, 1},  {-1, 1},
                                     {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
    for (const POINT& step : kNeighbours) {
      const POINT next{point.x + step.x, point.y + step.y};
      if (IsForeground(next.y, next.x)) stack.push_back(next);
    }
  }
  return took;
}

void Finder::WalkSeeds() {
  for (int y = 0; y < mask_.height; y += seedStep_) {
    for (int x = (y % 2) * (seedStep_ / 2); x < mask_.width; x += seedStep_) {
      const bool taken = std::any_of(regions.begin(), regions.end(),
                                     [&](const PixelRegion& r) { return r.Contains(x, y); });
      if (!taken && FloodFrom(y, x)) regions.push_back(std::exchange(spare_, {}));
    }
  }
}

// --- Clean-up ------------------------------------------------------------------------------------

template <class Test, class OnTurn>
void Finder::WalkPairs(Test test, OnTurn onTurn) {
  const auto count = [&] { return static_cast<int>(regions.size()); };
  const auto at = [&](int k) -> PixelRegion& { return regions[static_cast<std::size_t>(k)]; };
  int j = 0;
  if (count() - 1 <= 0) return;
  do {
    onTurn(at(j));
    int i = 0;
    while (i < count()) {
      if (j >= count()) j = count() - 1;
      if (i != j && test(at(j), at(i))) {
        MergeInto(j, i);
      } else {
        ++i;
      }
    }
    ++j;
  } while (j < count() - 1);
}

void Finder::MergeInto(int j, int i) {
  PixelRegion& into = regions[static_cast<std::size_t>(j)];
  into = into.Union(regions[static_cast<std::size_t>(i)]);
  regions.erase(regions.begin() + i);
}

bool Finder::AreNear(const PixelRegion& a, const PixelRegion& b) const {
  const int d = mergeReach_;
  constexpr POINT kNone{0, 0};
  const POINT shifts[] = {kNone, {-d, 0}, {d, 0}, {0, -d}, {0, d}};
  return std::any_of(std::begin(shifts), std::end(shifts), [&](const POINT& shift) {
    return !b.Translated(shift.x, shift.y).Intersection(a).IsEmpty();
  });
}

bool Finder::IsBigEnough(const PixelRegion& region) const {
  const RECT box = region.BoundingRect();
  return std::abs(box.bottom - box.top) > seedStep_ && std::abs(box.right - box.left) > seedStep_;
}

void Finder::Segment() {
  WalkSeeds();
  WalkPairs([&](const auto& a, const auto& b) { return AreNear(a, b); }, [](const auto&) {});
  seedStep_ *= 5;
  std::erase_if(regions, [&](const PixelRegion& region) { return !IsBigEnough(region); });
  seedStep_ /= 5;
  WalkPairs(
      [](const PixelRegion& a, const PixelRegion& b) {
        const int shared = OverlapArea(a, b);
        return shared != 0 &&
               (shared >= Area(a.BoundingRect()) / 2 || shared >= Area(b.BoundingRect()) / 2);
      },
      [](const auto&) {});
}

void Finder::SegmentForDeskew() {
  WalkSeeds();
  if (regions.empty()) return;
  int largest = 0;
  const auto measure = [&](const PixelRegion& region) {
    if (region.RowExtentSum() >= largest) largest = region.RowExtentSum();
  };
  WalkPairs([&](const auto& a, const auto& b) { return AreNear(a, b); }, measure);
  measure(regions.back());
  std::erase_if(regions, [&](const PixelRegion& region) {
    return !IsBigEnough(region) || region.RowExtentSum() < largest;
  });
  while (regions.size() > 1) MergeInto(0, 1);
}

// --- Skew ----------------------------------------------------------------------------------------

PixelRegion RotatedOutline(const PixelRegion& region, double angle) {
  PixelRegion turned;
  const POINT centre = region.Centre();
  const double a = angle * 0.017453292519943295;
  const auto turn = [&](int x, int y) {
    const double dx = x - centre.x;
    const double dy = y - centre.y;
    const POINT point =
        RoundPoint(dx * std::cos(a) - dy * std::sin(a), dx * std::sin(a) + dy * std::cos(a));
    if (!turned.AddPixel(point.x + centre.x, point.y + centre.y)) throw std::bad_alloc();
  };
  for (const PixelRow& row : region.rows()) {
    if (row.y == region.rows().front().y || row.y == region.rows().back().y) {
      for (int x = row.left(); x < row.right(); ++x) turn(x, row.y);
    } else {
      turn(row.left(), row.y);
      turn(row.right(), row.y);
    }
  }
  return turned;
}

double FindSkew(const PixelRegion& region, RECT* box) {
  *box = region.BoundingRect();
  int least = Area(*box);
  int direction = 0;
  for (const double angle : {7.0, -7.0, 1.0, -1.0}) {
    if (direction == 0 && least >= AreaOfTurn(region, angle)) direction = angle > 0 ? 1 : -1;
  }
  if (direction == 0) return 0.0;
  double best = 0.0;
  for (double angle = 7.0; angle <= 49.0; angle += 7.0) {
    const int area = AreaOfTurn(region, direction * angle);
    if (least > area) {
      least = area;
      best = direction * angle;
      *box = RotatedOutline(region, best).BoundingRect();
    }
  }
  double result = best;
  for (double angle = best - 6.0; angle <= best + 6.0; angle += 1.0) {
    const int area = AreaOfTurn(region, angle);
    if (least >= area) {
      least = area;
      result = angle;
      *box = RotatedOutline(region, angle).BoundingRect();
    }
  }
  return result;
}

}  // namespace plain
