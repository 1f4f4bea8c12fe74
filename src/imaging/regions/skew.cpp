#include "imaging/regions/skew.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "imaging/regions/rounding.h"

namespace orvo {

namespace {

constexpr double kRadiansPerDegree = 0.017453292519943295;
constexpr int kCoarseStep = 7;   // degrees
constexpr int kCoarseSteps = 7;  // as far as 49 degrees
constexpr int kFineReach = kCoarseStep - 1;
constexpr int kYUpFrom = 9;  // tenths

// 64 bits: a long region turned half upright exceeds 32.
std::int64_t Area(const RECT& box) {
  return (std::int64_t{box.bottom} - box.top) * (std::int64_t{box.right} - box.left);
}

// Turns points about a centre and keeps their bounding rectangle.
class TurnedBox {
 public:
  TurnedBox(POINT centre, int degrees)
      : centre_(centre),
        cosine_(std::cos(degrees * kRadiansPerDegree)),
        sine_(std::sin(degrees * kRadiansPerDegree)) {}

  void add(int x, int y) {
    const double dx = x - centre_.x;
    const double dy = y - centre_.y;
    const POINT turned = RoundPoint(dx * cosine_ - dy * sine_, dx * sine_ + dy * cosine_);
    box_.left = std::min(box_.left, turned.x);
    box_.top = std::min(box_.top, turned.y);
    box_.right = std::max(box_.right, turned.x + 1);
    box_.bottom = std::max(box_.bottom, turned.y + 1);
  }

  [[nodiscard]] RECT box() const {
    return {box_.left + centre_.x, box_.top + centre_.y, box_.right + centre_.x,
            box_.bottom + centre_.y};
  }

 private:
  static constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
  static constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

  POINT centre_;
  double cosine_;
  double sine_;
  RECT box_{kMost, kMost, kLeast, kLeast};
};

// The rectangle of the turned outline. The outline is every pixel of the first and the last row,
// and of the rows between the first pixel and the one past the last. Along a row both turned
// coordinates rise or fall all the way, rounding included, so its two ends bound it.
RECT BoxOfTurn(const PixelRegion& region, int degrees) {
  TurnedBox turned(region.Centre(), degrees);
  const std::vector<PixelRow>& rows = region.rows();
  for (const PixelRow& row : rows) {
    const bool isEdge = &row == &rows.front() || &row == &rows.back();
    turned.add(row.left(), row.y);
    turned.add(isEdge ? row.right() - 1 : row.right(), row.y);
  }
  return turned.box();
}

}  // namespace

POINT RoundPoint(double x, double y) {
  return {RoundTenths(x), RoundTenths(y, kYUpFrom)};
}

int SkewDirection(const PixelRegion& region) {
  const std::int64_t own = Area(region.BoundingRect());
  for (const int degrees : {kCoarseStep, -kCoarseStep, 1, -1}) {
    if (own >= Area(BoxOfTurn(region, degrees))) return degrees > 0 ? 1 : -1;
  }
  return 0;
}

int FindSkew(const PixelRegion& region, RECT* box) {
  int skew = 0;
  RECT least = region.BoundingRect();
  // Equal areas count in the fine walk only: there the greatest angle wins, in the coarse one the
  // first.
  const auto attempt = [&](int degrees, bool takesEqual) {
    const RECT turned = BoxOfTurn(region, degrees);
    if (Area(turned) > Area(least) || (Area(turned) == Area(least) && !takesEqual)) return;
    least = turned;
    skew = degrees;
  };
  if (const int direction = SkewDirection(region); direction != 0) {
    for (int step = 1; step <= kCoarseSteps; ++step) attempt(direction * kCoarseStep * step, false);
    const int middle = skew;
    for (int offset = -kFineReach; offset <= kFineReach; ++offset) attempt(middle + offset, true);
  }
  if (box != nullptr) *box = least;
  return skew;
}

}  // namespace orvo
