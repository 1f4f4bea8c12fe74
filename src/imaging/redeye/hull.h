// Convex hulls by gift wrapping, on stretches of a point list.
//
// Coordinates stay below 2^15. x points right, y up. Which of several points on one line stay is
// part of the result: the walk may keep one more than needed or miss a corner by a pixel.
#ifndef ORVO_IMAGING_REDEYE_HULL_H
#define ORVO_IMAGING_REDEYE_HULL_H

#include <cstddef>
#include <span>

#include <orvo/platform.h>

namespace orvo {

// Brings the hull's vertices to the front, in walk order: clockwise, upward from the first point,
// which has the smallest x and, among those, the smallest y. Behind them follow copies of the last
// one. Gives their number; a walk that finds no way back ends after as many steps as there are
// points. The stretch is not empty.
std::size_t ImgConvexHull(std::span<POINT> stretch) noexcept;

// The index of the vertex after `current`, or the length of the stretch when there is none. The
// vertex before stands right in front of the current one.
[[nodiscard]] std::size_t ImgNextHullVertex(std::span<const POINT> stretch,
                                            std::size_t current) noexcept;

// Keeps one of each run of equal neighbours, moved to the front. Gives the new count.
std::size_t ImgRemoveRepeats(std::span<POINT> points) noexcept;

// By rising x, and by rising y within one x.
void ImgSortPoints(std::span<POINT> points) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_HULL_H
