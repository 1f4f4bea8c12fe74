// Convex polygons on the grid of chroma bytes, and the same shapes by their extent in a number of
// directions.
#ifndef TOOLS_REDEYE_OUTLINES_POLYGON_H
#define TOOLS_REDEYE_OUTLINES_POLYGON_H

#include <array>
#include <numbers>
#include <vector>

#include "imaging/redeye/red_eye_outlines.h"

namespace orvo {

// Clockwise, Cb to the right and Cr upward, from the lowest vertex of smallest Cb.
using Polygon = std::vector<ChromaPoint>;

// How far a shape reaches in each of kDirections directions, against the clock from the right.
constexpr int kDirections = 48;
using Extents = std::array<double, kDirections>;

constexpr double AngleOf(int direction) {
  return 2 * std::numbers::pi * direction / kDirections;
}

// Twice the area of the triangle, positive against the clock.
constexpr int TwiceArea(const ChromaPoint& a, const ChromaPoint& b, const ChromaPoint& c) {
  return (b.cb - a.cb) * (c.cr - a.cr) - (b.cr - a.cr) * (c.cb - a.cb);
}

[[nodiscard]] Polygon HullOf(Polygon points);
[[nodiscard]] Extents ExtentsOf(const Polygon& polygon);

// The hull of the grid points within these extents; empty when there is none.
[[nodiscard]] Polygon GridPolygon(const Extents& extents);

// Twice the area that the polygon loses with this vertex, and the vertex that loses least.
[[nodiscard]] int LossOf(const Polygon& polygon, std::size_t vertex);
[[nodiscard]] std::size_t LeastVertex(const Polygon& polygon);

}  // namespace orvo

#endif  // TOOLS_REDEYE_OUTLINES_POLYGON_H
