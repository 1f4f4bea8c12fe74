// The two shapes in which pixel functions see an image: 8 bits, one tone a byte, and 24 bits, blue,
// green, red. Rows lie as stored, each padded to a multiple of 4 bytes.
#ifndef ORVO_IMAGING_WORKING_IMAGE_H
#define ORVO_IMAGING_WORKING_IMAGE_H

#include <cstddef>
#include <cstdint>

namespace orvo {

constexpr int kGrayDepth = 8;
constexpr int kColorDepth = 24;

constexpr std::size_t WorkingStride(std::uint32_t width, std::uint8_t depth) {
  return (std::size_t{width} * (depth / 8U) + 3) / 4 * 4;
}

}  // namespace orvo

#endif  // ORVO_IMAGING_WORKING_IMAGE_H
