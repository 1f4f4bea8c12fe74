// Pictures for benchmarks: tones of a photograph, not noise, since branches and caches differ.
#ifndef BENCH_PICTURES_H
#define BENCH_PICTURES_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

constexpr std::uint32_t kPhotoWidth = 4000;
constexpr std::uint32_t kPhotoHeight = 3000;

// Soft shapes with a little grain, `channels` bytes a pixel, rows padded to 4 bytes.
inline std::vector<std::uint8_t> Photo(std::uint32_t width, std::uint32_t height,
                                       std::uint32_t channels) {
  const std::size_t stride = (std::size_t{width} * channels + 3) / 4 * 4;
  std::vector<std::uint8_t> bytes(stride * height);
  std::uint32_t grain = 1;
  for (std::uint32_t y = 0; y < height; ++y) {
    for (std::uint32_t x = 0; x < width * channels; ++x) {
      grain = grain * 1664525U + 1013904223U;
      const double wave = std::sin(x * 0.003 + y * 0.001) + std::sin(y * 0.005 - x * 0.0007);
      bytes[stride * y + x] =
          static_cast<std::uint8_t>(128.0 + 55.0 * wave + static_cast<double>(grain >> 28));
    }
  }
  return bytes;
}

}  // namespace bench

#endif  // BENCH_PICTURES_H
