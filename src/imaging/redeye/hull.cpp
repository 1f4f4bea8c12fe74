#include "imaging/redeye/hull.h"

#include <algorithm>

#include "imaging/utilities.h"

namespace orvo {

namespace {

constexpr double kDegreesPerRadian = 57.29582790879778;  // 180 / 3.14159
constexpr double kStartAngle = 180.1;  // the first vertex looks upward as if it came from below

// Degrees 0 to 360 against the clock from the right, which counts as 360; 0 stands for no distance.
double AngleTo(const POINT& from, const POINT& to) {
  const int dx = to.x - from.x;
  const int dy = to.y - from.y;
  if (dx == 0) return dy == 0 ? 0.0 : dy > 0 ? 90.0 : 270.0;
  if (dy == 0) return dx > 0 ? 360.0 : 180.0;
  const double angle = ImgAtan2(dy, dx) * kDegreesPerRadian;
  return dy > 0 ? angle : angle + 360.0;
}

int SquaredDistance(const POINT& a, const POINT& b) {
  return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

// How the angle back to the vertex before decides which angles lie a turn ahead, and which of two
// points in one direction is taken.
class TurnRule {
 public:
  explicit TurnRule(double back) : back_(back) {}

  [[nodiscard]] double raised(double angle) const {
    const bool ahead = back_ > 270.0   ? angle < 180.0
                       : back_ > 180.0 ? angle > 0.0 && angle <= 90.0
                                       : false;
    return ahead ? angle + 360.0 : angle;
  }
  [[nodiscard]] bool prefers(double angle, int distance, int best) const {
    if (back_ > 270.0) return distance < best;
    if (back_ > 180.0 && angle == 270.0) return false;
    return distance > best;
  }

 private:
  double back_;
};

}  // namespace

std::size_t ImgNextHullVertex(std::span<const POINT> stretch, std::size_t current) noexcept {
  const std::size_t none = stretch.size();
  const POINT& at = stretch[current];
  const double back = current == 0 ? kStartAngle : AngleTo(at, stretch[current - 1]);
  const TurnRule rule(back);
  double bestAngle = back;
  int bestDistance = 0;  // of the first point at this angle, also after a tie
  std::size_t candidate = none;
  for (std::size_t i = 0; i < stretch.size(); ++i) {
    const double angle = rule.raised(AngleTo(at, stretch[i]));
    if (angle > bestAngle) {
      bestAngle = angle;
      bestDistance = SquaredDistance(at, stretch[i]);
      candidate = i;
    } else if (angle == bestAngle && candidate != none && i != 0 &&
               rule.prefers(angle, SquaredDistance(at, stretch[i]), bestDistance)) {
      candidate = i;
    }
  }
  return candidate;
}

std::size_t ImgConvexHull(std::span<POINT> stretch) noexcept {
  std::size_t current = 0;
  std::size_t next = ImgNextHullVertex(stretch, current);
  while (next != 0 && next < stretch.size() && current + 1 < stretch.size()) {
    ++current;
    std::swap(stretch[current], stretch[next]);
    next = ImgNextHullVertex(stretch, current);
  }
  std::fill(stretch.begin() + static_cast<std::ptrdiff_t>(current) + 1, stretch.end(),
            stretch[current]);
  return current + 1;
}

std::size_t ImgRemoveRepeats(std::span<POINT> points) noexcept {
  const auto equal = [](const POINT& a, const POINT& b) { return a.x == b.x && a.y == b.y; };
  return static_cast<std::size_t>(std::unique(points.begin(), points.end(), equal) -
                                  points.begin());
}

void ImgSortPoints(std::span<POINT> points) noexcept {
  std::sort(points.begin(), points.end(),
            [](const POINT& a, const POINT& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
}

}  // namespace orvo
