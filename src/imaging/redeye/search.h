#ifndef ORVO_IMAGING_REDEYE_SEARCH_H
#define ORVO_IMAGING_REDEYE_SEARCH_H

#include <cstdint>

namespace orvo {

struct PupilCircle {
  std::uint32_t x;
  std::uint32_t y;
  std::uint32_t radius;
};

// Finds the red pupil at a point of a 24-bit working image, in a square round it that grows with
// the image. The point may lie on a catch-light in the pupil's middle.
//
// kImgDone with the pupil's centre and radius, 3 pixels or more. kImgNotFound with the point itself
// and the radius 2 when nothing of that size is there, or the radius 0 when the point lies outside
// the image. kImgNoMemory with nothing written.
[[nodiscard]] int ImgSearchRedEyeRegion(const std::uint8_t* source, std::uint32_t width,
                                        std::uint32_t height, std::uint32_t x, std::uint32_t y,
                                        PupilCircle* found) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_SEARCH_H
