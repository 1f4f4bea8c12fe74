// Which chroma a flash-lit pupil has: for each luma 0..255 a convex outline in the Cb-Cr plane.
//
// A row of no vertex accepts nothing. Rows of three or more are strictly convex and listed
// clockwise, Cb to the right and Cr upward, from a vertex of smallest Cb. The table is written by
// tools/redeye_outlines, which tells how each row comes about.
#ifndef ORVO_IMAGING_REDEYE_RED_EYE_OUTLINES_H
#define ORVO_IMAGING_REDEYE_RED_EYE_OUTLINES_H

#include <cstdint>

namespace orvo {

struct ChromaPoint {
  std::int32_t cb;
  std::int32_t cr;
};

struct RedEyeOutline {
  std::int32_t count;
  ChromaPoint vertices[20];  // zeros from count on
};

constexpr int kLumaCount = 256;

extern const RedEyeOutline RedEyeOutlines[kLumaCount];

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_RED_EYE_OUTLINES_H
