// Helpers of the kernel module's tests: a picture in a bitmap record, and its pixels one by one.
#ifndef TESTS_MODULES_LTKRN13N_KERNEL_FIXTURE_H
#define TESTS_MODULES_LTKRN13N_KERNEL_FIXTURE_H

#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "binding/module_contract.h"
#include "platform/fault_injection.h"
#include "support/pictures.h"

using namespace orvo;

namespace kernel {

constexpr int kDepths[] = {1, 4, 8, 16, 24, 32};

using Operation = std::function<int(struct_LEAD_Bitmap*)>;
// Red, green, blue.
using Rgb = std::array<int, 3>;

// The n-th call of new from now on fails, once; 0 lets all succeed.
void FailNew(int n) noexcept;

// Runs an operation on an image in place; its owner holds the valid handle afterwards.
inline int Apply(const Operation& operation, orvo::OwnedDib& image) {
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, image.release());
  const int code = operation(&bitmap);
  image.reset(L_ChangeToDIB(&bitmap));
  return code;
}
// The changed copy of an image.
inline orvo::OwnedDib Changed(const orvo::OwnedDib& image, const Operation& operation) {
  orvo::OwnedDib copy = pictures::CopyOf(image.get());
  EXPECT_EQ(Apply(operation, copy), kModuleSuccess);
  return copy;
}

inline Operation ToDepth(int bits, unsigned dithering = 0,
                         unsigned flags = kColorResOptimisedPalette) {
  return [=](struct_LEAD_Bitmap* bitmap) {
    return L_ColorResBitmap(bitmap, bitmap, bits, flags | dithering << kColorResDitheringShift,
                            nullptr, nullptr, nullptr, nullptr, nullptr);
  };
}

// A pixel's bits in a stored row, read bit by bit.
inline unsigned ValueAt(const pictures::Locked& image, int x, int y) {
  const auto depth = static_cast<unsigned>(image.layout().depth);
  const std::uint8_t* row = image.row(y);
  if (depth < 8) {
    const unsigned bit = static_cast<unsigned>(x) * depth;
    return row[bit / 8] >> (8 - depth - bit % 8) & ((1U << depth) - 1);
  }
  unsigned value = 0;
  for (unsigned i = depth / 8; i-- > 0;) {
    value = value << 8 | row[static_cast<unsigned>(x) * depth / 8 + i];
  }
  return value;
}

// The colour that a pixel of a stored row shows.
inline Rgb ColorAt(const pictures::Locked& image, int x, int y) {
  const unsigned value = ValueAt(image, x, y);
  const int depth = image.layout().depth;
  if (depth <= 8) {
    const RGBQUAD& entry = image.palette()[value];
    return {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
  }
  const auto channel = [&](unsigned place) {
    if (depth != 16) return static_cast<int>(value >> (8 * place) & 255);
    const unsigned narrow = value >> (5 * place) & 31;
    return static_cast<int>(narrow * 8 + narrow / 4);
  };
  return {channel(2), channel(1), channel(0)};
}

// Empty when two images of one size show the same colours.
inline std::string ColorDifference(const orvo::OwnedDib& expected, const orvo::OwnedDib& got) {
  const pictures::Locked a(expected.get());
  const pictures::Locked b(got.get());
  if (a.layout().width != b.layout().width || a.layout().height != b.layout().height) {
    return "sizes differ";
  }
  for (int y = 0; y < a.layout().height; ++y) {
    for (int x = 0; x < a.layout().width; ++x) {
      if (ColorAt(a, x, y) != ColorAt(b, x, y)) {
        return "column " + std::to_string(x) + ", row " + std::to_string(y);
      }
    }
  }
  return {};
}

// Noise in the colours of its palette, or in all colours.
inline orvo::OwnedDib Picture(int width, int height, int depth) {
  return depth <= 8 ? pictures::NoiseInColor(width, height, depth, 5)
                    : pictures::Noise(width, height, depth, 5);
}

// Tones from black to white from left to right, 24 bits.
inline orvo::OwnedDib GrayRamp(int width, int height) {
  orvo::OwnedDib ramp = pictures::Blank(width, height, 24);
  const pictures::Locked image(ramp.get());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < 3 * width; ++x) {
      image.row(y)[x] = static_cast<std::uint8_t>(x / 3 * 255 / (width - 1));
    }
  }
  return ramp;
}

// Whatever a test does, it leaves no block and no lock behind.
class KernelTest : public testing::Test {
 protected:
  ~KernelTest() override {
    EXPECT_EQ(PlatformLiveBlocks(), blocks_);
    EXPECT_EQ(PlatformHeldLocks(), locks_);
  }

 private:
  std::size_t blocks_ = PlatformLiveBlocks();
  std::size_t locks_ = PlatformHeldLocks();
};

}  // namespace kernel

#endif  // TESTS_MODULES_LTKRN13N_KERNEL_FIXTURE_H
