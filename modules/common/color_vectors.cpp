#include "common/color_vectors.h"

#include <cstring>

namespace orvo::ORVO_LEVEL {

namespace {

// Of five bits, rounded: (31 * tone + 127) / 255 for every tone.
ORVO_ALWAYS_INLINE std::uint32_t FiveBits(std::uint32_t tone) {
  return ((31 * tone + 127) * 257 + 257) >> 16;
}

}  // namespace

void ColorsToTones(const std::uint8_t* __restrict colors, std::size_t count,
                   std::uint8_t* __restrict tones) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t sum =
        114U * colors[3 * i] + 587U * colors[3 * i + 1] + 299U * colors[3 * i + 2] + 500;
    // A thousandth, exact for every sum there is.
    tones[i] = static_cast<std::uint8_t>(((sum >> 3) * 33555) >> 22);
  }
}

void ColorsTo16(const std::uint8_t* __restrict colors, std::size_t count,
                std::uint16_t* __restrict pixels) {
  for (std::size_t i = 0; i < count; ++i) {
    pixels[i] =
        static_cast<std::uint16_t>(FiveBits(colors[3 * i]) | FiveBits(colors[3 * i + 1]) << 5 |
                                   FiveBits(colors[3 * i + 2]) << 10);
  }
}

void ColorsTo32(const std::uint8_t* __restrict colors, std::size_t count,
                std::uint8_t* __restrict pixels) {
  if (count == 0) return;
  // Four bytes at once, of which the next colour's goes again.
  constexpr std::uint8_t kThree[] = {255, 255, 255, 0};
  std::uint32_t mask;
  std::memcpy(&mask, kThree, sizeof mask);
  for (std::size_t i = 0; i + 1 < count; ++i) {
    std::uint32_t pixel;
    std::memcpy(&pixel, colors + 3 * i, sizeof pixel);
    pixel &= mask;
    std::memcpy(pixels + 4 * i, &pixel, sizeof pixel);
  }
  for (std::size_t c = 0; c < 4; ++c) {
    pixels[4 * (count - 1) + c] = c < 3 ? colors[3 * (count - 1) + c] : std::uint8_t{0};
  }
}

void ColorsFrom32(const std::uint8_t* __restrict pixels, std::size_t count,
                  std::uint8_t* __restrict colors) {
  for (std::size_t i = 0; i < count; ++i) {
    colors[3 * i] = pixels[4 * i];
    colors[3 * i + 1] = pixels[4 * i + 1];
    colors[3 * i + 2] = pixels[4 * i + 2];
  }
}

}  // namespace orvo::ORVO_LEVEL
