#include "placement.h"

#include <algorithm>
#include <cmath>

#include "documents/upright_matrices.h"

namespace client {
namespace {

// Numbers in content are rounded; a part in a thousand is a pixel or two at the far edge.
constexpr double kSlant = 1e-3;

// Of a side's part; 0 for one that is next to nothing, beside the longest of all and beside the
// side's other part: sides may be very unlike.
int SignOf(double part, double other, double scale) {
  if (std::abs(part) <= scale * kSlant && std::abs(part) < std::abs(other)) return 0;
  return part < 0 ? -1 : 1;
}

bool HasSigns(const Matrix& place, const Matrix& signs) {
  const double scale =
      std::max({std::abs(place.a), std::abs(place.b), std::abs(place.c), std::abs(place.d)});
  return SignOf(place.a, place.b, scale) == signs.a && SignOf(place.b, place.a, scale) == signs.b &&
         SignOf(place.c, place.d, scale) == signs.c && SignOf(place.d, place.c, scale) == signs.d;
}

}  // namespace

Matrix Then(const Matrix& first, const Matrix& second) {
  const Point a = At(second, {first.a, first.b});
  const Point c = At(second, {first.c, first.d});
  const Point e = At(second, {first.e, first.f});
  return {a.x - second.e, a.y - second.f, c.x - second.e, c.y - second.f, e.x, e.y};
}

Point At(const Matrix& matrix, Point point) {
  return {matrix.a * point.x + matrix.c * point.y + matrix.e,
          matrix.b * point.x + matrix.d * point.y + matrix.f};
}

Box Common(const Box& one, const Box& other) {
  return {std::max(one.left, other.left), std::max(one.bottom, other.bottom),
          std::min(one.right, other.right), std::min(one.top, other.top)};
}

bool Holds(const Box& outer, const Box& inner, double tolerance) {
  return inner.left >= outer.left - tolerance && inner.bottom >= outer.bottom - tolerance &&
         inner.right <= outer.right + tolerance && inner.top <= outer.top + tolerance;
}

Box BoxOfSquare(const Matrix& m) {
  return {m.e + std::min({0.0, m.a, m.c, m.a + m.c}), m.f + std::min({0.0, m.b, m.d, m.b + m.d}),
          m.e + std::max({0.0, m.a, m.c, m.a + m.c}), m.f + std::max({0.0, m.b, m.d, m.b + m.d})};
}

std::optional<Box> BoxOfCorners(const std::vector<Point>& corners) {
  constexpr double kNear = 0.01;  // points
  if (corners.size() < 4 || corners.size() > 5) return std::nullopt;
  Box box{corners[0].x, corners[0].y, corners[0].x, corners[0].y};
  for (const Point& corner : corners) {
    box = {std::min(box.left, corner.x), std::min(box.bottom, corner.y),
           std::max(box.right, corner.x), std::max(box.top, corner.y)};
  }
  const auto isNear = [](double one, double other) { return std::abs(one - other) <= kNear; };
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Point& corner = corners[i];
    const bool isCorner = (isNear(corner.x, box.left) || isNear(corner.x, box.right)) &&
                          (isNear(corner.y, box.bottom) || isNear(corner.y, box.top));
    // Along the edges, never across.
    const Point& before = corners[i == 0 ? 3 : i - 1];
    if (!isCorner || (!isNear(corner.x, before.x) && !isNear(corner.y, before.y))) {
      return std::nullopt;
    }
  }
  return box;
}

Matrix TurnOf(int degrees) {
  switch ((degrees % 360 + 360) % 360) {
    case 90:
      return {0, -1, 1, 0, 0, 0};
    case 180:
      return {-1, 0, 0, -1, 0, 0};
    case 270:
      return {0, 1, -1, 0, 0, 0};
    default:
      return {};
  }
}

std::optional<int> OrientationOf(const Matrix& place) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    if (HasSigns(place, UprightMatrix(orientation))) return orientation;
  }
  return std::nullopt;
}

Matrix UprightMatrix(int orientation) {
  const auto& [a, b, c, d, e, f] = modules::kUprightMatrices[orientation - 1];
  return {a, b, c, d, e, f};
}

// All undo themselves but the two quarter turns, which undo each other.
Matrix InverseOfUpright(int orientation) {
  constexpr int kClockwise = 6;
  constexpr int kCounterClockwise = 8;
  if (orientation == kClockwise) return UprightMatrix(kCounterClockwise);
  if (orientation == kCounterClockwise) return UprightMatrix(kClockwise);
  return UprightMatrix(orientation);
}

}  // namespace client
