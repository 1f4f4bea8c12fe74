// Shapes as signed distances in pixels: below 0 inside, above 0 outside. Points count from the top
// left of the picture; pixel (0, 0) has its centre at (0.5, 0.5).
#ifndef TOOLS_SAMPLES_SHAPES_H
#define TOOLS_SAMPLES_SHAPES_H

#include <vector>

namespace samples {

struct Point {
  double x = 0;
  double y = 0;
};

inline Point operator+(Point a, Point b) {
  return {a.x + b.x, a.y + b.y};
}
inline Point operator-(Point a, Point b) {
  return {a.x - b.x, a.y - b.y};
}
inline Point operator*(Point a, double factor) {
  return {a.x * factor, a.y * factor};
}
inline Point Between(Point a, Point b, double share) {
  return a + (b - a) * share;
}

using Path = std::vector<Point>;

struct Box {
  double left, top, right, bottom;

  [[nodiscard]] Box grown(double margin) const {
    return {left - margin, top - margin, right + margin, bottom + margin};
  }
};
Box BoundsOf(const Path& path);

double DistanceToEllipse(Point at, Point centre, double radiusX, double radiusY);
double DistanceToBox(Point at, const Box& box);
// To the middle of the line from a to b; never below 0.
double DistanceToLine(Point at, Point a, Point b);
double DistanceToPolygon(Point at, const Path& corners);

// Corners cut until the path runs smoothly; an open path keeps its ends, a path whose last point is
// its first stays closed.
Path Smoothed(Path path);

// Where a tilted sheet lies: its own coordinates turned clockwise about its top left corner and
// shifted. The tilt is a tangent, so that no machine's sine can differ.
class Placement {
 public:
  explicit Placement(Point origin = {}, double tangent = 0);
  Point operator()(Point onSheet) const {
    return {origin_.x + onSheet.x * cosine_ - onSheet.y * sine_,
            origin_.y + onSheet.x * sine_ + onSheet.y * cosine_};
  }
  // The way back.
  [[nodiscard]] Point onSheet(Point at) const {
    const Point from = at - origin_;
    return {from.x * cosine_ + from.y * sine_, from.y * cosine_ - from.x * sine_};
  }
  [[nodiscard]] Path corners(double width, double height) const {
    return {(*this)({0, 0}), (*this)({width, 0}), (*this)({width, height}), (*this)({0, height})};
  }

 private:
  Point origin_;
  double cosine_;
  double sine_;
};

}  // namespace samples

#endif  // TOOLS_SAMPLES_SHAPES_H
