#ifndef ORVO_IMAGING_ADJUST_SHARPNESS_H
#define ORVO_IMAGING_ADJUST_SHARPNESS_H

#include <cstdint>

namespace orvo {

// Sharpens by a 5x5 kernel whose strength follows the level (0..10) and the size of the image. Two
// rows and columns at each border keep the source's bytes.
//
// source and target: rows of a working image of this depth (8 or 24 bits), equal in an in-place
// call and otherwise apart. At 8 bits an in-place call differs from a call into another buffer: its
// neighbourhoods hold pixels that the call has already written, above and to the left. At 24 bits
// both are the same.
//
// kImgUnsuitable for another depth, with nothing written; kImgNoMemory with the target an exact
// copy of the source.
[[nodiscard]] int ImgSharpnessAdjust(const std::uint8_t* source, std::uint8_t* target,
                                     std::uint32_t width, std::uint32_t height, std::uint8_t depth,
                                     std::uint8_t level) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_SHARPNESS_H
