// The tones of a working image: at 8 bits its own bytes, at 24 bits the truncated luma, kept in a
// plane of its own that is filled before any output is written.
#ifndef ORVO_IMAGING_ADJUST_TONES_H
#define ORVO_IMAGING_ADJUST_TONES_H

#include "imaging/adjust/luma.h"
#include "imaging/utilities.h"
#include "imaging/working_image.h"

namespace orvo {

constexpr int kToneCount = 256;

class Tones {
 public:
  // False when there is no memory for the plane of a 24-bit image.
  [[nodiscard]] bool take(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                          std::uint8_t depth) noexcept {
    const std::size_t sourceStride = WorkingStride(width, depth);
    if (depth == kGrayDepth) {
      first_ = source;
      stride_ = sourceStride;
      return true;
    }
    plane_ = ImgAllocArray<std::uint8_t>(std::size_t{width} * height);
    if (plane_ == nullptr) return false;
    first_ = plane_.get();
    stride_ = width;
    for (std::uint32_t y = 0; y < height; ++y) {
      ORVO_BEST(TonesOfColors)(source + sourceStride * y, width, plane_.get() + stride_ * y);
    }
    return true;
  }

  [[nodiscard]] const std::uint8_t* row(std::uint32_t y) const { return first_ + stride_ * y; }

 private:
  const std::uint8_t* first_ = nullptr;
  std::size_t stride_ = 0;
  ImgArray<std::uint8_t> plane_;
};

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_TONES_H
