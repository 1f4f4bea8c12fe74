#ifndef ORVO_IMAGING_REDEYE_SKIN_REGIONS_H
#define ORVO_IMAGING_REDEYE_SKIN_REGIONS_H

#include <optional>

#include "imaging/redeye/color_planes.h"
#include "imaging/redeye/red_eye_scan.h"

namespace orvo {

// Finds the large regions of skin in a reduced image, at least 12 pixels wide and 22 tall, in the
// order of their first pixels; further ones than kMostRegions are not looked for. Writes their
// rectangles and outlines, in pixels of the full image, and the reduction into the scan.
//
// width, height: of the planes, in reduced pixels, each at most 511. Gives the number of regions;
// nothing when out of memory.
[[nodiscard]] std::optional<int> ImgFindSkinRegions(RedEyeScan& scan, const PlaneView& planes,
                                                    std::int32_t width, std::int32_t height,
                                                    std::int32_t reduction) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_SKIN_REGIONS_H
