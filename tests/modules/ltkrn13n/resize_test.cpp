#include <algorithm>
#include <cmath>
#include <limits>

#include "kernel_fixture.h"

namespace {

using kernel::Changed;
using kernel::KernelTest;
using kernel::Picture;

kernel::Operation SizeTo(int width, int height, unsigned flags) {
  return [=](auto* bitmap) { return L_SizeBitmap(bitmap, width, height, flags); };
}

// The share of old sample j in new sample i.
using Weight = std::function<double(int i, int j, int from, int to)>;

double Distance(int i, int j, int from, int to) {
  return std::fabs((i + 0.5) * from / to - (j + 0.5));
}
double Triangle(int i, int j, int from, int to) {
  return std::max(0.0, 1 - Distance(i, j, from, to));
}
// Keys' cubic convolution.
double Cubic(int i, int j, int from, int to) {
  const double d = Distance(i, j, from, to);
  if (d < 1) return 1.5 * d * d * d - 2.5 * d * d + 1;
  return d < 2 ? -0.5 * d * d * d + 2.5 * d * d - 4 * d + 2 : 0;
}
double Overlap(int i, int j, int from, int to) {
  const double scale = static_cast<double>(from) / to;
  return std::max(0.0, std::min(j + 1.0, (i + 1) * scale) - std::max<double>(j, i * scale)) / scale;
}
double Best(int i, int j, int from, int to) {
  return to < from ? Overlap(i, j, from, to) : Cubic(i, j, from, to);
}

// A new pixel as the sum over all old ones, the outermost repeated beyond the edges.
std::array<double, 3> Resampled(const pictures::Locked& image, int x, int y, int width, int height,
                                const Weight& weight) {
  const int fromWidth = image.layout().width;
  const int fromHeight = image.layout().height;
  std::array<double, 3> sum{};
  for (int row = -2; row < fromHeight + 2; ++row) {
    const double down = weight(y, row, fromHeight, height);
    if (down == 0) continue;
    for (int column = -2; column < fromWidth + 2; ++column) {
      const double share = down * weight(x, column, fromWidth, width);
      const kernel::Rgb color = kernel::ColorAt(image, std::clamp(column, 0, fromWidth - 1),
                                                std::clamp(row, 0, fromHeight - 1));
      for (std::size_t c = 0; c < 3; ++c) sum[c] += share * color[c];
    }
  }
  for (double& channel : sum) channel = std::clamp(channel, 0.0, 255.0);
  return sum;
}

struct Size {
  int width, height;
};

TEST_F(KernelTest, mixed_sizes_agree_with_the_sum_over_all_pixels) {
  for (const int depth : {8, 16, 24, 32}) {
    const orvo::OwnedDib source = pictures::Noise(19, 14, depth, 8);
    for (const auto& [flags, weight] :
         {std::pair<unsigned, Weight>{kSizeBilinear, Triangle}, {kSizeBest, Best}}) {
      for (const Size size : {Size{19, 14}, Size{7, 5}, Size{19, 3}, Size{40, 9}, Size{50, 31},
                              Size{1, 1}, Size{1, 40}}) {
        const orvo::OwnedDib resized = Changed(source, SizeTo(size.width, size.height, flags));
        const pictures::Locked from(source.get());
        const pictures::Locked to(resized.get());
        for (int y = 0; y < size.height; ++y) {
          for (int x = 0; x < size.width; ++x) {
            const auto expected = Resampled(from, x, y, size.width, size.height, weight);
            const kernel::Rgb got = kernel::ColorAt(to, x, y);
            for (std::size_t c = 0; c < 3; ++c) {
              ASSERT_NEAR(got[c], expected[c], depth == 16 ? 5.1 : 0.501)
                  << depth << " bits, flags " << flags << ", to " << size.width << ": " << x;
            }
          }
        }
      }
    }
  }
}

TEST_F(KernelTest, the_nearest_pixel_is_the_one_under_the_middle) {
  for (const int depth : kernel::kDepths) {
    const orvo::OwnedDib source = Picture(19, 14, depth);
    for (const unsigned flags : {kSizeNearest, kSizeBilinear, kSizeBest}) {
      if (depth > 8 && flags != kSizeNearest) continue;  // no palette: these are mixed
      for (const Size size : {Size{19, 14}, Size{7, 5}, Size{64, 33}, Size{1, 1}}) {
        const orvo::OwnedDib resized = Changed(source, SizeTo(size.width, size.height, flags));
        const pictures::Locked from(source.get());
        const pictures::Locked to(resized.get());
        for (int y = 0; y < size.height; ++y) {
          for (int x = 0; x < size.width; ++x) {
            const int column = (2 * x + 1) * 19 / (2 * size.width);
            const int row = (2 * y + 1) * 14 / (2 * size.height);
            ASSERT_EQ(kernel::ColorAt(to, x, y), kernel::ColorAt(from, column, row)) << depth;
          }
        }
      }
    }
  }
}

TEST_F(KernelTest, sizes_that_cannot_be_are_refused) {
  constexpr int kMost = std::numeric_limits<int>::max();
  const orvo::OwnedDib source = Picture(10, 8, 24);
  for (const unsigned flags : {kSizeNearest, kSizeBilinear, kSizeBest}) {
    for (const auto& [size, code] : {std::pair{Size{0, 8}, kModuleBadParameter},
                                     {Size{8, 0}, kModuleBadParameter},
                                     {Size{-5, 8}, kModuleBadParameter},
                                     {Size{kMost, kMost}, kModuleNoMemory}}) {
      orvo::OwnedDib image = pictures::CopyOf(source.get());
      EXPECT_EQ(kernel::Apply(SizeTo(size.width, size.height, flags), image), code);
      EXPECT_EQ(pictures::Difference(source.get(), image.get()), "");
    }
  }
}

}  // namespace
