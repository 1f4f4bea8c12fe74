#ifndef ORVO_IMAGING_ADJUST_HISTOGRAM_H
#define ORVO_IMAGING_ADJUST_HISTOGRAM_H

#include <cstdint>

namespace orvo {

// Stretches the tones of the whole image to 0..255. The level (0..10) is the share of pixels that
// may be cut off at each end, half a percent a level, at most 25 tones. Colours are stretched by
// luma.
//
// source and target: rows of a working image of this depth (8 or 24 bits); equal for in place,
// which gives the same result.
//
// kImgUnsuitable for another depth, with nothing written; kImgNoMemory with the target an exact
// copy of the source.
[[nodiscard]] int ImgHistogramAdjust(const std::uint8_t* source, std::uint8_t* target,
                                     std::uint32_t width, std::uint32_t height, std::uint8_t depth,
                                     std::uint8_t level) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_HISTOGRAM_H
