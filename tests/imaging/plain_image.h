// Working images for tests of pixel functions, the comparison of a function with its plain form
// (the same steps, written down as slowly and simply as possible), and check sums of what others
// write.
#ifndef TESTS_IMAGING_PLAIN_IMAGE_H
#define TESTS_IMAGING_PLAIN_IMAGE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace plain {

using Bytes = std::vector<std::uint8_t>;

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
    return testing::PrintToString(std::tuple(width, height, depth));
  }
};

inline std::uint8_t Limited(int value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

enum Content { kNoise, kFlat, kSteps, kSoft, kContents };

// Rows full of something, padding included.
inline Bytes Fill(const Image& image, int content, unsigned seed) {
  Bytes bytes(image.stride() * image.height);
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::size_t x = i % image.stride();
    const std::size_t y = i / image.stride();
    const std::size_t of[kContents] = {random(), seed, (x / 7 + y / 5) % 2 == 0 ? 255U : 0U,
                                       60 + (x + 2 * y) % 90 + random() % 4};
    bytes[i] = static_cast<std::uint8_t>(of[content]);
  }
  return bytes;
}

// Compares what two functions write from a source to a target, apart and in place; neither touches
// what lies round the rows.
template <class Shipped, class Plain>
void ExpectSame(const Image& image, const Bytes& source, Shipped shipped, Plain plainly) {
  constexpr std::size_t kAround = 64;
  constexpr std::uint8_t kMarker = 0xA5;
  for (const bool inPlace : {false, true}) {
    Bytes expected(source.size() + 2 * kAround, kMarker);
    if (inPlace) std::copy(source.begin(), source.end(), expected.begin() + kAround);
    Bytes got = expected;
    std::uint8_t* const expectedRows = &expected[kAround];
    std::uint8_t* const rows = &got[kAround];
    plainly(inPlace ? expectedRows : source.data(), expectedRows);
    shipped(inPlace ? rows : source.data(), rows);
    const auto at = std::mismatch(expected.begin(), expected.end(), got.begin()).first -
                    expected.begin() - static_cast<std::ptrdiff_t>(kAround);
    const auto stride = static_cast<std::ptrdiff_t>(image.stride());
    ASSERT_TRUE(expected == got) << (inPlace ? "in place" : "apart") << ", first in row "
                                 << at / stride << ", byte " << at % stride;
  }
}

// One number that stands for many results, for steps whose plain form would be the same code again:
// the constants in the tests come from runs that were proved against such forms.
class CheckSum {  // FNV-1a, a value at a time
 public:
  template <class... Values>
  void add(Values... values) {
    ((value_ = (value_ ^ static_cast<std::uint64_t>(values)) * 0x100000001B3), ...);
  }
  void addAll(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) add(byte);
  }
  // A rectangle.
  template <class Box>
  void addSides(const Box& box) {
    add(box.left, box.top, box.right, box.bottom);
  }
  // Adds what a function returns and writes from a source to a target, apart and in place, with
  // what lies round the rows.
  template <class Function>
  void addBoth(const Bytes& source, Function function) {
    constexpr std::size_t kAround = 64;
    for (const bool inPlace : {false, true}) {
      Bytes target(source.size() + 2 * kAround, 0xA5);
      std::uint8_t* const rows = &target[kAround];
      if (inPlace) std::copy(source.begin(), source.end(), rows);
      add(function(inPlace ? rows : source.data(), rows));
      addAll(target);
    }
  }
  [[nodiscard]] std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325;
};

}  // namespace plain

#endif  // TESTS_IMAGING_PLAIN_IMAGE_H
