// What becomes of the segments before they are read out: parts that belong together merge, and
// what is too small is dropped. Regions keep their order. Both throw std::bad_alloc.
#ifndef ORVO_IMAGING_REGIONS_CLEAN_UP_H
#define ORVO_IMAGING_REGIONS_CLEAN_UP_H

#include "imaging/regions/segmentation.h"

namespace orvo {

// In mask pixels, both at least 1.
struct CleanUpMeasures {
  int mergeReach;
  int seedStep;
};

// The items on a page, of which none lies mostly within another.
[[nodiscard]] std::vector<RECT> ItemBoxes(Segments segments, const CleanUpMeasures& measures);

// The one region that counts for the skew, the one with the greatest sum of row extents; empty when
// there is none.
[[nodiscard]] PixelRegion LargestRegion(Segments segments, const CleanUpMeasures& measures);

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_CLEAN_UP_H
