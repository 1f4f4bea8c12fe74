// The colour of one pixel, whatever the depth that it came from.
#ifndef PROVIDERS_LTIMG13N_COLOR_H
#define PROVIDERS_LTIMG13N_COLOR_H

#include <algorithm>
#include <cstdint>

namespace provider {

struct Color {
  std::uint8_t blue;
  std::uint8_t green;
  std::uint8_t red;
  bool operator==(const Color&) const = default;
};

constexpr std::uint8_t ClampedTone(int tone) {
  return static_cast<std::uint8_t>(std::clamp(tone, 0, 255));
}

// Channels of 16-bit pixels. Both ways round to nearest, so a channel that nothing changes comes
// back as it was, and a negative of the wide form is one of the narrow form.
constexpr int kMost5 = 31;
constexpr std::uint8_t Widened5(int tone5) {
  return static_cast<std::uint8_t>((tone5 * 255 + kMost5 / 2) / kMost5);
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

}  // namespace provider

#endif  // PROVIDERS_LTIMG13N_COLOR_H
