// Sharpness as it is defined, pixel by pixel with all 25 weights: the reference that the shipped
// form has to equal byte for byte.
#ifndef TESTS_IMAGINGLIB_SHARPNESS_PLAIN_H
#define TESTS_IMAGINGLIB_SHARPNESS_PLAIN_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace plain {

struct Image {
  std::uint32_t width;
  std::uint32_t height;
  int depth;
  [[nodiscard]] std::size_t stride() const {
    return (std::size_t{width} * static_cast<std::size_t>(depth) / 8 + 3) / 4 * 4;
  }
  [[nodiscard]] std::size_t at(std::uint32_t x, std::uint32_t y) const {
    return stride() * y + std::size_t{x} * static_cast<std::size_t>(depth) / 8;
  }
};

inline std::uint8_t Limited(int value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

inline void Sharpen(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                    int level) {
  const std::uint32_t m = std::max(image.width, image.height) / 512;
  const double s = m == 0 ? 1.0 / 4 : m == 1 ? 1.0 / 3 : m == 2 ? 1.0 / 2 : 1.0;
  const double a = (-level * s) * 0.01;
  const double b = (s * level) * 0.04;
  const double kernel[5][5] = {
      {a, a, a, a, a}, {a, 0, b, 0, a}, {a, b, 1, b, a}, {a, 0, b, 0, a}, {a, a, a, a, a}};
  if (source != target) std::memcpy(target, source, image.stride() * image.height);

  std::vector<double> luma;
  for (std::uint32_t y = 0; image.depth == 24 && y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
      const std::uint8_t* const p = source + image.at(x, y);
      luma.push_back(p[1] * 0.587 + p[0] * 0.114 + p[2] * 0.299);
    }
  }
  for (std::uint32_t y = 2; y + 2 < image.height; ++y) {
    for (std::uint32_t x = 2; x + 2 < image.width; ++x) {
      double sum = 0.0;
      for (std::uint32_t j = 0; j < 5; ++j) {
        for (std::uint32_t i = 0; i < 5; ++i) {
          const std::uint32_t column = x + i - 2;
          const std::uint32_t row = y + j - 2;
          sum += kernel[j][i] * (image.depth == 8 ? source[image.at(column, row)]
                                                  : luma[std::size_t{image.width} * row + column]);
        }
      }
      std::uint8_t* const out = target + image.at(x, y);
      if (image.depth == 8) {
        *out = static_cast<std::uint8_t>(std::clamp(sum, 0.0, 255.0));
        continue;
      }
      const double blue = source[image.at(x, y)];
      const double green = source[image.at(x, y) + 1];
      const double red = source[image.at(x, y) + 2];
      const double cb = 0.5 * blue - (0.1687 * red + 0.3313 * green);
      const double cr = 0.5 * red - 0.4187 * green - 0.0813 * blue;
      out[0] = Limited(static_cast<int>(sum + 1.772 * cb));
      out[1] = Limited(static_cast<int>(sum - 0.34414 * cb - 0.71414 * cr));
      out[2] = Limited(static_cast<int>(sum + 1.402 * cr));
    }
  }
}

}  // namespace plain

#endif  // TESTS_IMAGINGLIB_SHARPNESS_PLAIN_H
