// The YCbCr conversion of all colour work: the JFIF matrix, its chroma weights written to four
// decimals. Every conversion to an integer truncates toward zero; nothing is rounded.
#ifndef ORVO_IMAGING_ADJUST_YCBCR_H
#define ORVO_IMAGING_ADJUST_YCBCR_H

#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

// Chroma in real form: doubles centred on 0.
ORVO_ALWAYS_INLINE double CbOf(double red, double green, double blue) {
  return 0.5 * blue - (0.1687 * red + 0.3313 * green);
}
ORVO_ALWAYS_INLINE double CrOf(double red, double green, double blue) {
  return 0.5 * red - 0.4187 * green - 0.0813 * blue;
}

ORVO_ALWAYS_INLINE double RedOf(double y, double cr) {
  return y + 1.402 * cr;
}
ORVO_ALWAYS_INLINE double GreenOf(double y, double cb, double cr) {
  return y - 0.34414 * cb - 0.71414 * cr;
}
ORVO_ALWAYS_INLINE double BlueOf(double y, double cb) {
  return y + 1.772 * cb;
}

// A rebuilt channel: truncated first, limited to 0..255 after.
ORVO_ALWAYS_INLINE std::uint8_t ChannelByte(double value) {
  const int truncated = static_cast<int>(value);
  return static_cast<std::uint8_t>(truncated < 0 ? 0 : truncated > 255 ? 255 : truncated);
}

// Byte form, in which 128 stands for no chroma. Taken exactly, in integers: in doubles the last bit
// would make a gray's chroma 127 now and then. All three stay in 0..255 by the weights themselves.
struct YCbCrBytes {
  std::uint8_t y;
  std::uint8_t cb;
  std::uint8_t cr;
};

ORVO_ALWAYS_INLINE constexpr YCbCrBytes ToYCbCrBytes(int red, int green, int blue) {
  constexpr int kMiddle = 128 * 10000;
  return {static_cast<std::uint8_t>((299 * red + 587 * green + 114 * blue) / 1000),
          static_cast<std::uint8_t>((kMiddle + 5000 * blue - 1687 * red - 3313 * green) / 10000),
          static_cast<std::uint8_t>((kMiddle + 5000 * red - 4187 * green - 813 * blue) / 10000)};
}

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_YCBCR_H
