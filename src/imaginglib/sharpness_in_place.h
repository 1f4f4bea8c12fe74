#ifndef ORVO_IMAGINGLIB_SHARPNESS_IN_PLACE_H
#define ORVO_IMAGINGLIB_SHARPNESS_IN_PLACE_H

#include <cstdint>

#include "imaginglib/sharpness_kernel.h"

// Sharpens 8-bit rows where they are: each neighbourhood holds what was just written above and to
// the left. Both sides have at least five pixels.
void SharpenTonesInPlace(std::uint8_t* tones, std::uint32_t width, std::uint32_t height,
                         KernelWeights weights) noexcept;

#endif  // ORVO_IMAGINGLIB_SHARPNESS_IN_PLACE_H
