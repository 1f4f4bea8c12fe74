// Luma and chroma of 24-bit rows, for the functions that work on luma and keep the chroma.
#ifndef ORVO_IMAGING_ADJUST_LUMA_H
#define ORVO_IMAGING_ADJUST_LUMA_H

#include <cstddef>
#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

// The order of these sums is part of the results: it differs from the JFIF matrix's own in the last
// bit, which shows in the truncated tones of some colours.
ORVO_ALWAYS_INLINE double LumaOf(double red, double green, double blue) {
  return green * 0.587 + blue * 0.114 + red * 0.299;
}

ORVO_EACH_LEVEL(
    // Tones of a row of 24-bit pixels: luma, truncated.
    void TonesOfColors(const std::uint8_t* pixels, std::size_t count, std::uint8_t* tones);

    // Writes a row of 24-bit pixels that has a new luma and the chroma of the source's pixels.
    // source and target may be equal.
    void StoreColors(const double* luma, std::size_t count, const std::uint8_t* source,
                     std::uint8_t* target);)

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_LUMA_H
