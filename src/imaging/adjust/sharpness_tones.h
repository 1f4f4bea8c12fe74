#ifndef ORVO_IMAGING_ADJUST_SHARPNESS_TONES_H
#define ORVO_IMAGING_ADJUST_SHARPNESS_TONES_H

#include <cstddef>
#include <cstdint>

#include "imaging/adjust/sharpness_kernel.h"

namespace orvo {

// Both sharpen 8-bit rows, `stride` bytes apart, but for the border; both sides have at least five
// pixels.
ORVO_EACH_LEVEL(
    // The target is another buffer.
    void SharpenTones(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                      std::uint32_t height, std::size_t stride, KernelWeights weights);

    // Each neighbourhood holds what was just written above and to the left.
    void SharpenTonesInPlace(std::uint8_t* tones, std::uint32_t width, std::uint32_t height,
                             std::size_t stride, KernelWeights weights);)

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_SHARPNESS_TONES_H
