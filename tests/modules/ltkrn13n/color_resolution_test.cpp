#include <algorithm>
#include <bit>
#include <cmath>
#include <set>

#include "kernel_fixture.h"

namespace {

using kernel::Changed;
using kernel::ColorAt;
using kernel::ColorDifference;
using kernel::KernelTest;
using kernel::Picture;
using kernel::Rgb;
using kernel::ToDepth;

std::size_t ColorCount(const orvo::OwnedDib& dib) {
  const pictures::Locked image(dib.get());
  std::set<Rgb> colors;
  for (int y = 0; y < image.layout().height; ++y) {
    for (int x = 0; x < image.layout().width; ++x) colors.insert(ColorAt(image, x, y));
  }
  return colors.size();
}

// Root of the mean squared difference of all channels.
double Error(const orvo::OwnedDib& expected, const orvo::OwnedDib& got) {
  const pictures::Locked a(expected.get());
  const pictures::Locked b(got.get());
  double sum = 0;
  for (int y = 0; y < a.layout().height; ++y) {
    for (int x = 0; x < a.layout().width; ++x) {
      const Rgb one = ColorAt(a, x, y);
      const Rgb other = ColorAt(b, x, y);
      for (std::size_t c = 0; c < 3; ++c) sum += std::pow(one[c] - other[c], 2);
    }
  }
  return std::sqrt(sum / (3.0 * a.layout().width * a.layout().height));
}

// A smooth picture of many colours.
orvo::OwnedDib Gradients(int width, int height) {
  orvo::OwnedDib dib = pictures::Blank(width, height, 24);
  const pictures::Locked image(dib.get());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double across = static_cast<double>(x) / width;
      const double down = static_cast<double>(y) / height;
      std::uint8_t* const pixel = image.row(y) + 3 * x;
      pixel[0] = static_cast<std::uint8_t>(60 + 150 * down);
      pixel[1] = static_cast<std::uint8_t>(30 + 200 * across);
      pixel[2] = static_cast<std::uint8_t>(128 + 100 * std::sin(6 * across + 4 * down));
    }
  }
  return dib;
}

TEST_F(KernelTest, depths_that_can_hold_the_colours_hold_them_exactly) {
  for (const auto& [from, to] : {std::pair{1, 4},
                                 {1, 8},
                                 {1, 24},
                                 {4, 8},
                                 {4, 24},
                                 {4, 32},
                                 {8, 24},
                                 {8, 32},
                                 {16, 24},
                                 {16, 32},
                                 {24, 32},
                                 {32, 24}}) {
    const orvo::OwnedDib source = Picture(37, 11, from);
    for (const unsigned dithering : {0U, 1U, 7U}) {
      const orvo::OwnedDib wide = Changed(source, ToDepth(to, dithering));
      EXPECT_EQ(ColorDifference(source, wide), "") << from << " to " << to;
    }
  }
}

TEST_F(KernelTest, sixteen_and_thirty_two_bits_survive_the_way_through_24) {
  for (const int depth : {16, 32}) {
    orvo::OwnedDib source = Picture(64, 40, depth);
    {  // padding and the bits without colour come back as 0
      const pictures::Locked image(source.get());
      for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 64; ++x) {
          image.row(y)[x * depth / 8 + depth / 8 - 1] &= depth == 16 ? 0x7F : 0;
        }
      }
    }
    const orvo::OwnedDib back = Changed(Changed(source, ToDepth(24)), ToDepth(depth));
    EXPECT_EQ(pictures::Difference(source.get(), back.get()), "");
  }
}

TEST_F(KernelTest, without_dithering_each_pixel_shows_its_nearest_entry) {
  const orvo::OwnedDib source = Picture(50, 40, 24);
  for (const auto& [bits, flags] : {std::pair{4, 0U}, {4, 1U}, {8, 0U}, {8, 1U}}) {
    const orvo::OwnedDib got = Changed(source, ToDepth(bits, 0, flags));
    const pictures::Locked from(source.get());
    const pictures::Locked to(got.get());
    const auto distance = [](const Rgb& a, const Rgb& b) {
      return std::pow(a[0] - b[0], 2) + std::pow(a[1] - b[1], 2) + std::pow(a[2] - b[2], 2);
    };
    for (int y = 0; y < 40; ++y) {
      for (int x = 0; x < 50; ++x) {
        const Rgb color = ColorAt(from, x, y);
        const double shown = distance(color, ColorAt(to, x, y));
        for (int i = 0; i < 1 << bits; ++i) {
          const RGBQUAD& entry = to.palette()[i];
          ASSERT_LE(shown, distance(color, {entry.rgbRed, entry.rgbGreen, entry.rgbBlue}));
        }
      }
    }
  }
}

TEST_F(KernelTest, few_colours_come_over_exactly_however_they_are_dithered) {
  for (const int from : {8, 16, 24, 32}) {
    for (const int to : {4, 8}) {
      if (to >= from) continue;
      const int colors = 1 << to;
      const orvo::OwnedDib palette = Picture(colors, 1, 24);
      orvo::OwnedDib source = Changed(palette, ToDepth(from));  // 256 are exact at 8 bits too
      ASSERT_LE(ColorCount(source), static_cast<std::size_t>(colors));
      for (unsigned dithering = 0; dithering <= 8; ++dithering) {
        const orvo::OwnedDib got = Changed(source, ToDepth(to, dithering));
        EXPECT_EQ(ColorDifference(source, got), "") << from << " to " << to << ", " << dithering;
      }
    }
  }
}

TEST_F(KernelTest, gray_pictures_of_any_depth_become_gray_bytes) {
  const orvo::OwnedDib ramp = kernel::GrayRamp(256, 3);
  for (const orvo::OwnedDib& gray :
       {Changed(ramp, ToDepth(8, 1)), Changed(Changed(ramp, ToDepth(32)), ToDepth(8, 7)),
        Changed(ramp, [](auto* bitmap) { return L_GrayScaleBitmap(bitmap, 8); })}) {
    const pictures::Locked image(gray.get());
    for (int tone = 0; tone < 256; ++tone) {
      ASSERT_EQ(kernel::ValueAt(image, tone, 2), static_cast<unsigned>(tone));
      ASSERT_EQ(image.palette()[tone].rgbGreen, tone);
    }
  }
}

TEST_F(KernelTest, gray_is_the_rounded_brightness_of_each_colour) {
  for (const int depth : kernel::kDepths) {
    const orvo::OwnedDib source = Picture(21, 9, depth);
    const orvo::OwnedDib gray = Changed(source, [](auto* b) { return L_GrayScaleBitmap(b, 8); });
    const pictures::Locked from(source.get());
    const pictures::Locked to(gray.get());
    for (int y = 0; y < 9; ++y) {
      for (int x = 0; x < 21; ++x) {
        const Rgb color = ColorAt(from, x, y);
        const double luma = 0.299 * color[0] + 0.587 * color[1] + 0.114 * color[2];
        ASSERT_NEAR(ColorAt(to, x, y)[0], luma, 0.5 + 1e-9) << depth;
      }
    }
  }
}

TEST_F(KernelTest, dithering_to_black_and_white_keeps_each_tone) {
  constexpr int kSide = 256;  // errors that leave at the edges count little
  for (unsigned dithering = 1; dithering <= 8; ++dithering) {
    // Sixteen thresholds can only show every sixteenth part of white.
    const double bound = dithering == 8 ? 255 / 32.0 : 1.5;
    for (const int tone : {0, 1, 40, 100, 127, 128, 200, 250, 255}) {
      orvo::OwnedDib flat = pictures::Blank(kSide, kSide, 8);
      std::fill_n(pictures::Locked(flat.get()).row(0), kSide * kSide,
                  static_cast<std::uint8_t>(tone));
      ASSERT_EQ(kernel::Apply(ToDepth(1, dithering), flat), kModuleSuccess);
      const pictures::Locked image(flat.get());
      int white = 0;
      for (int i = 0; i < kSide * kSide / 8; ++i) white += std::popcount(image.row(0)[i]);
      const bool isEnd = tone == 0 || tone == 255;
      EXPECT_NEAR(255.0 * white / kSide / kSide, tone, isEnd ? 0 : bound) << dithering;
    }
  }
}

TEST_F(KernelTest, dithering_modes_differ_and_others_mean_none) {
  const orvo::OwnedDib ramp = kernel::GrayRamp(96, 24);
  const auto dithered = [&](unsigned mode) {
    const auto bytes = pictures::BytesOf(Changed(ramp, ToDepth(1, mode)).get());
    return std::string(bytes.begin(), bytes.end());
  };
  std::set<std::string> results;
  for (unsigned mode = 0; mode <= 8; ++mode) results.insert(dithered(mode));
  EXPECT_EQ(results.size(), 9U);
  EXPECT_EQ(dithered(9), dithered(0));
}

TEST_F(KernelTest, an_optimised_palette_stands_for_many_colours) {
  const orvo::OwnedDib picture = Gradients(120, 80);
  ASSERT_GT(ColorCount(picture), 5000U);
  // About what an even grid of as many boxes as the palette has colours would leave.
  EXPECT_LT(Error(picture, Changed(picture, ToDepth(8))), 6);
  EXPECT_LT(Error(picture, Changed(picture, ToDepth(4))), 22);

  const orvo::OwnedDib dark = Picture(300, 200, 24);
  {
    const pictures::Locked image(dark.get());
    for (int i = 0; i < 300 * 200 * 3; ++i) image.row(0)[i] /= 4;
  }
  ASSERT_GT(ColorCount(dark), 40000U);  // more than are counted one by one
  EXPECT_LT(Error(dark, Changed(dark, ToDepth(8))), 4);
}

// What the eye sees of a dithered picture is the mean over a few pixels.
TEST_F(KernelTest, dithering_brings_neighbourhoods_nearer_to_the_picture) {
  const orvo::OwnedDib picture = Gradients(120, 80);
  const auto seen = [](const orvo::OwnedDib& dib) {
    return Changed(Changed(dib, ToDepth(24)),
                   [](auto* bitmap) { return L_SizeBitmap(bitmap, 15, 10, kSizeBest); });
  };
  for (const int bits : {4, 8}) {
    const double plain = Error(seen(picture), seen(Changed(picture, ToDepth(bits, 0, 0))));
    for (unsigned mode = 1; mode <= 8; ++mode) {
      // A matrix knows nothing of where the palette's colours lie.
      const double bound = mode >= 7 ? plain * 0.8 : plain * 0.4;
      EXPECT_LT(Error(seen(picture), seen(Changed(picture, ToDepth(bits, mode, 0)))), bound)
          << bits << " bits, mode " << mode;
    }
  }
}

TEST_F(KernelTest, another_bitmap_may_take_the_result) {
  const orvo::OwnedDib picture = Picture(20, 10, 24);
  for (const int bits : {8, 24}) {
    struct_LEAD_Bitmap source{};
    struct_LEAD_Bitmap target{};
    L_ChangeFromDIB(&source, pictures::CopyOf(picture.get()).release());
    L_ChangeFromDIB(&target, Picture(3, 3, 1).release());
    source.xResolution = 72;
    ASSERT_EQ(
        L_ColorResBitmap(&source, &target, bits, 1, nullptr, nullptr, nullptr, nullptr, nullptr),
        kModuleSuccess);
    EXPECT_EQ(target.bitsPerPixel, bits);
    EXPECT_EQ(target.width, 20);
    EXPECT_EQ(target.xResolution, 72);
    source.xResolution = 300;
    const orvo::OwnedDib kept(L_ChangeToDIB(&source));
    EXPECT_EQ(pictures::Difference(picture.get(), kept.get()), "");
    L_FreeBitmap(&target);
  }
}

}  // namespace
