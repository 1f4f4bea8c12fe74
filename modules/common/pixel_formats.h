// How single pixels lie in a row, depth by depth, for code that moves pixels about without a look
// at their colours.
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
using Format4 = PackedFormat<4>;
using Format8 = WholeFormat<std::uint8_t>;
using Format16 = WholeFormat<std::uint16_t>;
using Format24 = WholeFormat<Color>;
using Format32 = WholeFormat<WideColor>;

// Runs work with the format of a depth: work(Format24{}).
template <class Work>
auto WithFormat(int depth, Work&& work) {
  switch (depth) {
    case 1:
      return work(Format1{});
    case 4:
      return work(Format4{});
    case 8:
      return work(Format8{});
    case 16:
      return work(Format16{});
    case 24:
      return work(Format24{});
    default:
      return work(Format32{});
  }
}

}  // namespace modules

#endif  // MODULES_COMMON_PIXEL_FORMATS_H
