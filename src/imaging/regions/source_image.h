// What the reduction needs to know of an image: where its rows are and how a pixel becomes a
// colour.
#ifndef ORVO_IMAGING_REGIONS_SOURCE_IMAGE_H
#define ORVO_IMAGING_REGIONS_SOURCE_IMAGE_H

#include <cstddef>
#include <cstdint>

namespace orvo {

// The bits of a pixel's little-endian value that carry each channel.
struct ChannelMasks {
  std::uint32_t red;
  std::uint32_t green;
  std::uint32_t blue;
};

struct SourceImage {
  int width;
  int height;
  int depth;                    // 1, 4, 8, 16, 24 or 32
  const std::uint8_t* palette;  // 4 bytes a colour, blue first; null above 8 bits
  ChannelMasks masks;           // above 8 bits
  const std::uint8_t* rows;     // the bottom line of the picture first
  std::size_t stride;

  // Row 0 is the top line as shown.
  [[nodiscard]] const std::uint8_t* rowFromTop(int y) const {
    return rows + stride * static_cast<std::size_t>(height - 1 - y);
  }
};

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_SOURCE_IMAGE_H
