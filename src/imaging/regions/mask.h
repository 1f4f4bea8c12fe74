// The page at a reduced size, in two values: what is darker than near white, and the rest.
#ifndef ORVO_IMAGING_REGIONS_MASK_H
#define ORVO_IMAGING_REGIONS_MASK_H

#include <cstdint>
#include <vector>

#include "imaging/regions/source_image.h"

namespace orvo {

struct Mask {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bytes;  // 1 foreground, 0 background; row 0 is the top as shown

  [[nodiscard]] std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }
};

// Source pixels per mask pixel. It grows with the shorter side, so that the mask's shorter side
// stays below 200.
[[nodiscard]] double MaskScale(const SourceImage& image);

// The colours of all source pixels that fall on a mask pixel are combined by a bitwise AND, so that
// a thin dark line survives. Foreground is what is then below whiteLevel on a gray scale of 0 to
// 255; any level is taken. Throws std::bad_alloc.
[[nodiscard]] Mask ReduceToMask(const SourceImage& image, double scale, int whiteLevel);

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_MASK_H
