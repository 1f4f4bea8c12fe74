// The working record of one automatic run.
#ifndef ORVO_IMAGING_REDEYE_RED_EYE_SCAN_H
#define ORVO_IMAGING_REDEYE_RED_EYE_SCAN_H

#include <orvo/platform.h>

#include "imaging/redeye/region_mask.h"

namespace orvo {

constexpr int kMostRegions = 10;
constexpr int kMostEyes = 4;              // of one region
constexpr int kMostOutlineVertices = 19;  // stored of one region

struct RedEyeScan {
  Box regionRects[kMostRegions];  // skin regions, in pixels of the full image
  Box eyeRects[kMostEyes];        // the eyes of the region in hand, likewise
  std::int32_t reduction;         // image pixels for each pixel of the reduced image
  std::int32_t outlineCounts[kMostRegions];
  // In the order of the walk, relative to left and top of the region's rectangle, in image pixels.
  POINT outlines[kMostRegions][kMostOutlineVertices + 1];
};

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_RED_EYE_SCAN_H
