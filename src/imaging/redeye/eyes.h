#ifndef ORVO_IMAGING_REDEYE_EYES_H
#define ORVO_IMAGING_REDEYE_EYES_H

#include "imaging/redeye/color_planes.h"
#include "imaging/redeye/red_eye_scan.h"

namespace orvo {

// Working memory for one region after the other.
struct EyeMasks {
  // Room for regions of up to this many pixels; false when there is none.
  [[nodiscard]] bool allocate(std::size_t pixels) noexcept;

  RegionMask red;  // foreground: red-eye colour
  ImgArray<std::uint8_t>
      white;  // bright neutrals, laid out as the red mask; its edge is not written
};

// Looks in the rectangle of a skin region for blobs of red-eye colour that have the size, shape,
// place and surroundings of a pupil. Each one found is reduced in the planes at once, and its
// rectangle goes to eyeRects, from entry 0.
//
// planes: of the region, pixel (0, 0) being left and top of its rectangle. masks: room for the
// region's pixels. Gives the number of eyes, 0 to kMostEyes.
[[nodiscard]] int ImgFindEyesInRegion(RedEyeScan& scan, const PlaneView& planes, int region,
                                      EyeMasks& masks) noexcept;

// A square root by a few rounds of Newton's rule from the start value g (above 0), stopped as soon
// as a round moves it by less than 3; a negative v gives 1.
[[nodiscard]] std::int32_t ImgApproxSqrt(std::int32_t v, std::int32_t g) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_EYES_H
