// Rows of colours brought to other forms, a form for each level of vector instructions.
#ifndef MODULES_COMMON_COLOR_VECTORS_H
#define MODULES_COMMON_COLOR_VECTORS_H

#include <cstddef>
#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

// Colours are three bytes each: blue, green, red. What they become is LumaOf and Recolored of
// common/color.h and common/pixel_formats.h.
// clang-format off
ORVO_EACH_LEVEL(
  void ColorsToTones(const std::uint8_t* colors, std::size_t count, std::uint8_t* tones);
  void ColorsTo16(const std::uint8_t* colors, std::size_t count, std::uint16_t* pixels);
  void ColorsTo32(const std::uint8_t* colors, std::size_t count, std::uint8_t* pixels);
  void ColorsFrom32(const std::uint8_t* pixels, std::size_t count, std::uint8_t* colors);
)
// clang-format on

}  // namespace orvo

#endif  // MODULES_COMMON_COLOR_VECTORS_H
