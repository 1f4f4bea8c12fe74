#include "polygon.h"

#include <algorithm>
#include <cmath>

namespace orvo {

namespace {

// Where all colours of the table lie.
constexpr int kLeastCb = 69;
constexpr int kMostCb = 156;
constexpr int kLeastCr = 137;
constexpr int kMostCr = 253;

// Goes along sorted points, always turning right.
void WalkRight(auto first, auto last, Polygon& chain) {
  for (; first != last; ++first) {
    while (chain.size() > 1 && TwiceArea(chain[chain.size() - 2], chain.back(), *first) >= 0) {
      chain.pop_back();
    }
    chain.push_back(*first);
  }
}

}  // namespace

Polygon HullOf(Polygon points) {
  const auto before = [](const ChromaPoint& a, const ChromaPoint& b) {
    return a.cb != b.cb ? a.cb < b.cb : a.cr < b.cr;
  };
  const auto equal = [](const ChromaPoint& a, const ChromaPoint& b) {
    return a.cb == b.cb && a.cr == b.cr;
  };
  std::sort(points.begin(), points.end(), before);
  points.erase(std::unique(points.begin(), points.end(), equal), points.end());
  if (points.size() < 3) return points;
  Polygon upper;
  Polygon lower;
  WalkRight(points.begin(), points.end(), upper);
  WalkRight(points.rbegin(), points.rend(), lower);
  upper.insert(upper.end(), lower.begin() + 1, lower.end() - 1);
  return upper;
}

Extents ExtentsOf(const Polygon& polygon) {
  Extents extents{};
  for (int i = 0; i < kDirections; ++i) {
    const double c = std::cos(AngleOf(i));
    const double s = std::sin(AngleOf(i));
    double most = -1e9;
    for (const ChromaPoint& point : polygon) most = std::max(most, point.cb * c + point.cr * s);
    extents[static_cast<std::size_t>(i)] = most;
  }
  return extents;
}

Polygon GridPolygon(const Extents& extents) {
  constexpr double kTolerance = 1e-6;  // of a grid point on the edge
  Polygon points;
  for (int cb = kLeastCb; cb <= kMostCb; ++cb) {
    double least = kLeastCr;
    double most = kMostCr;
    for (int i = 0; i < kDirections; ++i) {
      const double s = std::sin(AngleOf(i));
      const double left =
          extents[static_cast<std::size_t>(i)] + kTolerance - std::cos(AngleOf(i)) * cb;
      if (std::fabs(s) < 1e-9) {
        if (left < 0) most = least - 1;
      } else if (s > 0) {
        most = std::min(most, left / s);
      } else {
        least = std::max(least, left / s);
      }
    }
    const int first = static_cast<int>(std::ceil(least));
    const int last = static_cast<int>(std::floor(most));
    if (first > last) continue;
    points.push_back({cb, first});
    points.push_back({cb, last});
  }
  return HullOf(std::move(points));
}

int LossOf(const Polygon& polygon, std::size_t vertex) {
  const std::size_t count = polygon.size();
  return -TwiceArea(polygon[(vertex + count - 1) % count], polygon[vertex],
                    polygon[(vertex + 1) % count]);
}

std::size_t LeastVertex(const Polygon& polygon) {
  std::size_t least = 0;
  for (std::size_t i = 1; i < polygon.size(); ++i) {
    if (LossOf(polygon, i) < LossOf(polygon, least)) least = i;
  }
  return least;
}

}  // namespace orvo
