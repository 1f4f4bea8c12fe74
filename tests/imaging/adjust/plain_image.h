// What the plain references share: the shape of a working image and the arithmetic of colours, told
// once more and independently of the shipped code.
#ifndef TESTS_IMAGING_ADJUST_PLAIN_IMAGE_H
#define TESTS_IMAGING_ADJUST_PLAIN_IMAGE_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace orvo {}
using namespace orvo;

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
  [[nodiscard]] std::string name() const {
    return std::to_string(width) + "x" + std::to_string(height) + ", " + std::to_string(depth) +
           " bits";
  }
};

inline std::uint8_t Limited(int value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// Luma of every pixel of a 24-bit image.
inline std::vector<double> LumaPlane(const std::uint8_t* source, const Image& image) {
  std::vector<double> luma;
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x) {
      const std::uint8_t* const p = source + image.at(x, y);
      luma.push_back(p[1] * 0.587 + p[0] * 0.114 + p[2] * 0.299);
    }
  }
  return luma;
}

// A pixel with a new luma and the chroma of another.
inline void StoreColor(double luma, const std::uint8_t* source, std::uint8_t* target) {
  const double blue = source[0];
  const double green = source[1];
  const double red = source[2];
  const double cb = 0.5 * blue - (0.1687 * red + 0.3313 * green);
  const double cr = 0.5 * red - 0.4187 * green - 0.0813 * blue;
  target[0] = Limited(static_cast<int>(luma + 1.772 * cb));
  target[1] = Limited(static_cast<int>(luma - 0.34414 * cb - 0.71414 * cr));
  target[2] = Limited(static_cast<int>(luma + 1.402 * cr));
}

inline void CopyAll(const std::uint8_t* source, std::uint8_t* target, const Image& image) {
  if (source != target) std::memcpy(target, source, image.stride() * image.height);
}

// What the rows are filled with, padding included.
enum class Content { kNoise, kFlat, kSteps, kSoft };
constexpr int kContents = 4;

inline std::vector<std::uint8_t> Fill(const Image& image, Content content, unsigned seed) {
  std::vector<std::uint8_t> bytes(image.stride() * image.height);
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::size_t x = i % image.stride();
    const std::size_t y = i / image.stride();
    switch (content) {
      case Content::kNoise:
        bytes[i] = static_cast<std::uint8_t>(random());
        break;
      case Content::kFlat:
        bytes[i] = static_cast<std::uint8_t>(seed);
        break;
      case Content::kSteps:
        bytes[i] = (x / 7 + y / 5) % 2 == 0 ? 255 : 0;
        break;
      case Content::kSoft:
        bytes[i] = static_cast<std::uint8_t>(60 + (x + 2 * y) % 90 + random() % 4);
        break;
    }
  }
  return bytes;
}

// Empty when both agree, else the first place where they do not.
inline std::string Difference(const std::vector<std::uint8_t>& expected,
                              const std::vector<std::uint8_t>& got, const Image& image) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (expected[i] == got[i]) continue;
    return "row " + std::to_string(i / image.stride()) + ", byte " +
           std::to_string(i % image.stride()) + ": expected " + std::to_string(expected[i]) +
           ", got " + std::to_string(got[i]);
  }
  return {};
}

}  // namespace plain

#endif  // TESTS_IMAGING_ADJUST_PLAIN_IMAGE_H
