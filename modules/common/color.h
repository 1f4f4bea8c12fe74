// The colour of one pixel, whatever the depth that it came from.
#ifndef MODULES_COMMON_COLOR_H
#define MODULES_COMMON_COLOR_H

#include <algorithm>
#include <cstdint>

#include "binding/module_contract.h"

namespace modules {

// In memory just as a pixel of 24 bits.
struct Color {
  std::uint8_t blue;
  std::uint8_t green;
  std::uint8_t red;
  bool operator==(const Color&) const = default;
};
static_assert(sizeof(Color) == 3);

constexpr std::uint8_t ClampedTone(int tone) {
  return static_cast<std::uint8_t>(std::clamp(tone, 0, 255));
}

constexpr Color GrayOf(std::uint8_t tone) {
  return {tone, tone, tone};
}
constexpr bool IsGray(Color color) {
  return color.red == color.green && color.green == color.blue;
}
// Brightness as television has it (0.299, 0.587, 0.114), rounded; of a gray it is the gray itself.
constexpr std::uint8_t LumaOf(Color color) {
  return static_cast<std::uint8_t>((299 * color.red + 587 * color.green + 114 * color.blue + 500) /
                                   1000);
}

constexpr Color ColorOf(const RGBQUAD& entry) {
  return {entry.rgbBlue, entry.rgbGreen, entry.rgbRed};
}
// Of callers' numbers: red in the lowest byte, then green and blue.
constexpr Color ColorOfReference(unsigned color) {
  return {static_cast<std::uint8_t>(color >> 16), static_cast<std::uint8_t>(color >> 8),
          static_cast<std::uint8_t>(color)};
}
constexpr RGBQUAD EntryOf(Color color) {
  return {color.blue, color.green, color.red, 0};
}

// Channels of 16-bit pixels: widened by repeating their top bits, narrowed to nearest. A channel
// that nothing changes comes back as it was, and the negative of the wide form is that of the
// narrow.
constexpr int kMost5 = 31;
constexpr std::uint8_t Widened5(int tone5) {
  return static_cast<std::uint8_t>(tone5 << 3 | tone5 >> 2);
}
constexpr int Narrowed5(int tone) {
  return (tone * kMost5 + 127) / 255;
}

constexpr Color ColorOf555(std::uint16_t pixel) {
  return {Widened5(pixel & kMost5), Widened5(pixel >> 5 & kMost5), Widened5(pixel >> 10 & kMost5)};
}
// The pixel with another colour; its top bit, which holds no colour, stays.
constexpr std::uint16_t With555(std::uint16_t pixel, Color color) {
  return static_cast<std::uint16_t>((pixel & 0x8000) | Narrowed5(color.red) << 10 |
                                    Narrowed5(color.green) << 5 | Narrowed5(color.blue));
}

}  // namespace modules

#endif  // MODULES_COMMON_COLOR_H
