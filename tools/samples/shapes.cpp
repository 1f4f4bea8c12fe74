#include "shapes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace samples {
namespace {

double Dot(Point a, Point b) {
  return a.x * b.x + a.y * b.y;
}

double Length(Point a) {
  return std::sqrt(Dot(a, a));
}

bool IsClosed(const Path& path) {
  return path.size() > 2 && path.front().x == path.back().x && path.front().y == path.back().y;
}

// One round of corner cutting: each stretch keeps its middle half.
Path CutCorners(const Path& path) {
  Path cut;
  const bool closed = IsClosed(path);
  if (!closed) cut.push_back(path.front());
  for (std::size_t i = 0; i + 1 < path.size(); ++i) {
    cut.push_back(Between(path[i], path[i + 1], 0.25));
    cut.push_back(Between(path[i], path[i + 1], 0.75));
  }
  cut.push_back(closed ? cut.front() : path.back());
  return cut;
}

}  // namespace

Box BoundsOf(const Path& path) {
  Box box{path[0].x, path[0].y, path[0].x, path[0].y};
  for (const Point& point : path) {
    box = {std::min(box.left, point.x), std::min(box.top, point.y), std::max(box.right, point.x),
           std::max(box.bottom, point.y)};
  }
  return box;
}

// Exact on the outline and along the axes, close elsewhere.
double DistanceToEllipse(Point at, Point centre, double radiusX, double radiusY) {
  const Point scaled{(at.x - centre.x) / radiusX, (at.y - centre.y) / radiusY};
  const double reach = Length(scaled);
  const double slope = Length({scaled.x / radiusX, scaled.y / radiusY});
  return slope > 0 ? reach * (reach - 1) / slope : -std::min(radiusX, radiusY);
}

double DistanceToBox(Point at, const Box& box) {
  const double x = std::max(box.left - at.x, at.x - box.right);
  const double y = std::max(box.top - at.y, at.y - box.bottom);
  return std::min(std::max(x, y), 0.0) + Length({std::max(x, 0.0), std::max(y, 0.0)});
}

double DistanceToLine(Point at, Point a, Point b) {
  const Point along = b - a;
  const double square = Dot(along, along);
  const double share = square > 0 ? std::clamp(Dot(at - a, along) / square, 0.0, 1.0) : 0.0;
  return Length(at - Between(a, b, share));
}

double DistanceToPolygon(Point at, const Path& corners) {
  double nearest = std::numeric_limits<double>::max();
  bool inside = false;
  for (std::size_t i = 0, before = corners.size() - 1; i < corners.size(); before = i++) {
    const Point a = corners[before];
    const Point b = corners[i];
    nearest = std::min(nearest, DistanceToLine(at, a, b));
    if ((a.y > at.y) != (b.y > at.y) && at.x < a.x + (b.x - a.x) * (at.y - a.y) / (b.y - a.y)) {
      inside = !inside;
    }
  }
  return inside ? -nearest : nearest;
}

Path Smoothed(Path path) {
  constexpr int kRounds = 3;
  for (int round = 0; round < kRounds; ++round) path = CutCorners(path);
  return path;
}

Placement::Placement(Point origin, double tangent)
    : origin_(origin),
      cosine_(1 / std::sqrt(1 + tangent * tangent)),
      sine_(tangent / std::sqrt(1 + tangent * tangent)) {}

}  // namespace samples
