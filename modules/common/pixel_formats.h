// How single pixels lie in a row, depth by depth.
#ifndef MODULES_COMMON_PIXEL_FORMATS_H
#define MODULES_COMMON_PIXEL_FORMATS_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "common/color.h"

namespace modules {

// Several pixels to a byte, the leftmost in the highest bits.
template <unsigned kBits>
struct PackedFormat {
  using Value = std::uint8_t;
  static constexpr std::size_t kPerByte = 8 / kBits;
  static constexpr unsigned kMask = (1U << kBits) - 1;

  static unsigned shiftOf(std::size_t x) {
    return 8 - kBits - static_cast<unsigned>(x % kPerByte) * kBits;
  }
  static Value read(const std::uint8_t* row, std::size_t x) {
    return static_cast<Value>(row[x / kPerByte] >> shiftOf(x) & kMask);
  }
  // The other pixels of the byte stay.
  static void write(std::uint8_t* row, std::size_t x, Value value) {
    const unsigned shift = shiftOf(x);
    const unsigned others = row[x / kPerByte] & ~(kMask << shift);
    row[x / kPerByte] = static_cast<std::uint8_t>(others | unsigned{value} << shift);
  }
};

// One or more bytes to a pixel.
template <class Pixel>
struct WholeFormat {
  using Value = Pixel;

  static Value read(const std::uint8_t* row, std::size_t x) {
    Value value;
    std::memcpy(&value, row + x * sizeof value, sizeof value);
    return value;
  }
  static void write(std::uint8_t* row, std::size_t x, Value value) {
    std::memcpy(row + x * sizeof value, &value, sizeof value);
  }
};

// Blue, green, red and a byte that holds no colour.
struct WideColor {
  Color color;
  std::uint8_t rest;
};
static_assert(sizeof(WideColor) == 4);

using Format1 = PackedFormat<1>;
using Format2 = PackedFormat<2>;
using Format4 = PackedFormat<4>;
using Format8 = WholeFormat<std::uint8_t>;
using Format16 = WholeFormat<std::uint16_t>;
using Format24 = WholeFormat<Color>;
using Format32 = WholeFormat<WideColor>;

// Runs work with the format of a depth: work(Format24{}). 2 bits are for rows out of files.
template <class Work>
auto WithIndexFormat(int depth, Work&& work) {
  switch (depth) {
    case 1:
      return work(Format1{});
    case 2:
      return work(Format2{});
    case 4:
      return work(Format4{});
    default:
      return work(Format8{});
  }
}
template <class Work>
auto WithColorFormat(int depth, Work&& work) {
  switch (depth) {
    case 16:
      return work(Format16{});
    case 24:
      return work(Format24{});
    default:
      return work(Format32{});
  }
}
template <class Work>
auto WithFormat(int depth, Work&& work) {
  return depth <= 8 ? WithIndexFormat(depth, work) : WithColorFormat(depth, work);
}

// Colours of pixels of 16 bits and above.
constexpr Color ColorOf(std::uint16_t pixel) {
  return ColorOf555(pixel);
}
constexpr Color ColorOf(Color pixel) {
  return pixel;
}
constexpr Color ColorOf(WideColor pixel) {
  return pixel.color;
}

// The same pixels given another colour; what holds no colour stays.
constexpr std::uint16_t Recolored(std::uint16_t pixel, Color color) {
  return With555(pixel, color);
}
constexpr Color Recolored(Color /*pixel*/, Color color) {
  return color;
}
constexpr WideColor Recolored(WideColor pixel, Color color) {
  return {color, pixel.rest};
}

}  // namespace modules

#endif  // MODULES_COMMON_PIXEL_FORMATS_H
