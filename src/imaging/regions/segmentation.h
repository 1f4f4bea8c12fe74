// The mask's connected parts, as far as the seeds of a grid meet them.
#ifndef ORVO_IMAGING_REGIONS_SEGMENTATION_H
#define ORVO_IMAGING_REGIONS_SEGMENTATION_H

#include <vector>

#include "imaging/regions/mask.h"
#include "imaging/regions/pixel_region.h"

namespace orvo {

struct Segments {
  static constexpr int kNone = -1;

  int width;
  int height;
  std::vector<PixelRegion> regions;  // in the order in which seeds met them
  std::vector<int> labels;           // for each mask pixel the index of its region, or kNone
};

// Seeds lie seedStep (1 and up) mask pixels apart; on odd rows they are shifted by half a step. A
// seed on foreground takes the whole part that touches it by sides or corners. What no seed meets
// is no region. Throws std::bad_alloc.
[[nodiscard]] Segments FindSegments(Mask mask, int seedStep);

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_SEGMENTATION_H
