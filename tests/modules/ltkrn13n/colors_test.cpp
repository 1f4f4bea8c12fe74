// Change of depth: what can be exact is, palettes are the fixed or the best ones, and dithering is
// that of a plain form.
#include <map>

#include "modules/fixture.h"

namespace {

using rig::Bytes;
using rig::Changed;
using rig::Color;
using rig::kKinds;
using rig::ModuleTest;
using rig::OwnedDib;
using rig::Picture;
using rig::Shown;
using rig::ToDepth;
using rig::View;

// A 24-bit picture of a rule: byte(x, y, channel), blue first.
template <class Rule>
OwnedDib Drawn(int width, int height, const Rule& rule) {
  OwnedDib dib = pictures::Blank(width, height, 24);
  const View image(dib);
  for (int i = 0; i < width * height * 3; ++i) {
    const int x = i / 3 % width;
    const int y = i / 3 / width;
    image.row(y)[3 * x + i % 3] = static_cast<std::uint8_t>(rule(x, y, i % 3));
  }
  return dib;
}
OwnedDib Ramp(int width, int height) {
  return Drawn(width, height, [=](int x, int, int) { return x * 255 / (width - 1); });
}
// Smooth, of many colours.
OwnedDib Gradients(int width, int height) {
  return Drawn(width, height, [=](int x, int y, int channel) {
    const double across = static_cast<double>(x) / width;
    const double down = static_cast<double>(y) / height;
    return channel == 0   ? 60 + 150 * down
           : channel == 1 ? 30 + 200 * across
                          : 128 + 100 * std::sin(6 * across + 4 * down);
  });
}

TEST_F(ModuleTest, depths_that_can_hold_the_colours_hold_them_exactly) {
  constexpr int kPairs[][2] = {{1, 4},  {1, 8},   {1, 24},  {4, 8},   {4, 24},  {4, 32},  {8, 24},
                               {8, 32}, {16, 24}, {16, 32}, {24, 32}, {32, 24}, {24, 24}, {16, 16}};
  for (const auto& [from, to] : kPairs) {
    const OwnedDib source = Picture({from, false}, 37, 11);
    for (const unsigned dithering : {0U, 1U, 7U}) {
      const OwnedDib wide = Changed(source, ToDepth(to, dithering));
      EXPECT_EQ(Shown(source), Shown(wide)) << from << " to " << to;
      EXPECT_EQ(rig::DepthOf(wide), to);
    }
  }
  // Bits and bytes without colour come back as 0.
  for (const int depth : {16, 32}) {
    const OwnedDib source = Changed(Picture({24, false}, 64, 4), ToDepth(depth));
    const OwnedDib back = Changed(Changed(source, ToDepth(24)), ToDepth(depth));
    EXPECT_EQ(pictures::Difference(source.get(), back.get()), "");
    for (int x = 0; x < 64; ++x) EXPECT_EQ(View(source).value(x, 1) >> (depth == 16 ? 15 : 24), 0U);
  }
  // To 16 bits each tone becomes the nearest of the 32.
  const OwnedDib ramp = Ramp(256, 1);
  const OwnedDib narrow = Changed(ramp, ToDepth(16));
  for (int x = 0; x < 256; ++x) {
    ASSERT_EQ(View(narrow).value(x, 0), static_cast<unsigned>(std::lround(x * 31 / 255.0)) * 0x421);
  }
}

TEST_F(ModuleTest, few_colours_come_over_exactly_however_they_are_dithered) {
  for (const int from : {8, 16, 24, 32}) {
    for (const int to : {4, 8}) {
      if (to >= from) continue;
      const OwnedDib source = Changed(Picture({24, false}, 1 << to, 1), ToDepth(from));
      for (unsigned dithering = 0; dithering <= 8; ++dithering) {
        EXPECT_EQ(Shown(source), Shown(Changed(source, ToDepth(to, dithering))))
            << from << " to " << to << ", " << dithering;
      }
    }
  }
}

TEST_F(ModuleTest, gray_is_the_rounded_brightness_of_each_colour) {
  const auto toGray = rig::Do(L_GrayScaleBitmap, 8);
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = Picture(kind, 61, 39);
    const OwnedDib gray = Changed(source, toGray);
    const View from(source);
    const View to(gray);
    for (int i = 0; i < 61 * 39; ++i) {
      const Color color = from.color(i % 61, i / 61);
      const double luma =
          std::floor((299 * color[0] + 587 * color[1] + 114 * color[2] + 500) / 1000);
      ASSERT_EQ(to.color(i % 61, i / 61), (Color{luma, luma, luma})) << kind.depth;
      ASSERT_EQ(to.value(i % 61, i / 61), luma);
    }
  }
  // Gray pictures of any depth become bytes that are tones.
  const OwnedDib ramp = Ramp(256, 3);
  for (const OwnedDib& gray : {Changed(ramp, ToDepth(8, 1)), Changed(ramp, toGray),
                               Changed(Changed(ramp, ToDepth(32)), ToDepth(8, 7))}) {
    for (int tone = 0; tone < 256; ++tone) {
      ASSERT_EQ(View(gray).value(tone, 2), static_cast<unsigned>(tone));
      ASSERT_EQ(View(gray).palette()[tone].rgbGreen, tone);
    }
  }
}

TEST_F(ModuleTest, fixed_palettes_are_those_of_old_screens_and_a_cube) {
  const OwnedDib picture = Picture({24, false}, 3, 3);
  const auto palette = [&](int bits) {
    const OwnedDib image = Changed(picture, ToDepth(bits, 0, 0));
    std::string text;
    for (unsigned i = 0; i < 1U << bits; ++i) {
      for (std::size_t c = 0; c < 3; ++c) text += static_cast<char>(View(image).entry(i)[c]);
    }
    return text;
  };
  const std::string sixteen(
      "\0\0\0\200\0\0\0\200\0\200\200\0\0\0\200\200\0\200\0\200\200\300\300\300"
      "\200\200\200\377\0\0\0\377\0\377\377\0\0\0\377\377\0\377\0\377\377\377\377\377",
      48);
  std::string cube;
  for (int i = 0; i < 256; ++i) {
    for (const int level : {i / 36, i / 6 % 6, i % 6}) {
      cube += static_cast<char>(i < 216 ? level * 51 : (i - 215) * 255 / 41);
    }
  }
  EXPECT_EQ(palette(1), std::string("\0\0\0\377\377\377", 6));
  EXPECT_EQ(palette(4), sixteen);
  EXPECT_EQ(palette(8), cube);
}

// The weights of the errors that a pixel hands on, by mode: its own row and those below it, seven
// places each with the pixel's column in the middle, digits to the base of 36.
constexpr std::string_view kShares[] = {"",
                                        "0000700 0035100",
                                        "0000840 0248420 0124210",
                                        "0000840 0248420",
                                        "0000530 0245420 0023200",
                                        "00000w0 c0q0u0g 0c0q0c0 50c0c05",
                                        "0000750 0357530 0135310"};

int WeightAt(unsigned mode, int right, int down) {
  const auto place = static_cast<std::size_t>(8 * down + right + 3);
  const char digit = mode > 6 || place >= kShares[mode].size() ? '0' : kShares[mode][place];
  return digit <= '9' ? digit - '0' : digit - 'a' + 10;
}

// How far a colour is moved at a place, in parts of a palette's step from -1/2 to 1/2.
double MoveAt(unsigned mode, int x, int y) {
  constexpr int kDots[4][4] = {{12, 5, 6, 13}, {4, 0, 1, 7}, {11, 3, 2, 8}, {15, 10, 9, 14}};
  if (mode == 8) return (2 * kDots[y % 4][x % 4] + 1 - 16) / 32.0;
  int threshold = 0;
  for (int bit = 0; bit < 3; ++bit) {
    threshold |= ((x ^ y) >> bit & 1) << (5 - 2 * bit) | (y >> bit & 1) << (4 - 2 * bit);
  }
  return (2 * threshold + 1 - 64) / 128.0;
}

double SquaredDistance(const Color& a, const Color& b) {
  return std::pow(a[0] - b[0], 2) + std::pow(a[1] - b[1], 2) + std::pow(a[2] - b[2], 2);
}
// The mean way from each entry to its nearest other, in the channel where they differ most.
int StepOf(const std::vector<Color>& palette) {
  int sum = 0;
  for (const Color& one : palette) {
    double nearest = 255;
    for (const Color& other : palette) {
      double step = 0;
      for (std::size_t c = 0; c < 3; ++c) step = std::max(step, std::abs(one[c] - other[c]));
      if (step > 0) nearest = std::min(nearest, step);
    }
    sum += static_cast<int>(nearest);
  }
  return sum / static_cast<int>(palette.size());
}

// The indexes that a picture gets in a palette, row by row as stored.
Bytes Dithered(const View& image, const std::vector<Color>& palette, unsigned mode) {
  const auto step = static_cast<float>(StepOf(palette));
  float sum = 0;
  for (int i = 0; i < 28; ++i) sum += static_cast<float>(WeightAt(mode, i % 7 - 3, i / 7));
  std::map<std::pair<int, int>, std::array<float, 3>> errors;
  Bytes indexes;
  for (int i = 0; i < image.width() * image.height(); ++i) {
    const int x = i % image.width();
    const int y = i / image.width();
    Color color = image.color(x, y);
    if (palette.size() == 2) {
      const double luma = 299 * color[0] + 587 * color[1] + 114 * color[2] + 500;
      color[0] = color[1] = color[2] = std::floor(luma / 1000);
    }
    const double move =
        mode == 7 || mode == 8 ? std::round(MoveAt(mode, x, y) * static_cast<double>(step)) : 0;
    std::array<float, 3> wanted = errors[{x, y}];
    Color target{};
    for (std::size_t c = 0; c < 3; ++c) {
      wanted[c] = static_cast<float>(color[c]) + wanted[c];
      const double rounded = std::floor(static_cast<double>(wanted[c] + 1024.5F)) - 1024;
      target[c] = std::clamp(rounded + move, 0.0, 255.0);
    }
    const auto best = std::min_element(palette.begin(), palette.end(), [&](auto& a, auto& b) {
      return SquaredDistance(a, target) < SquaredDistance(b, target);
    });
    indexes.push_back(static_cast<std::uint8_t>(best - palette.begin()));
    for (int place = 0; place < 28; ++place) {
      const float part = static_cast<float>(WeightAt(mode, place % 7 - 3, place / 7)) / sum;
      for (std::size_t c = 0; sum > 0 && c < 3; ++c) {
        const float error = std::clamp(wanted[c] - static_cast<float>((*best)[c]), -step, step);
        errors[{x + place % 7 - 3, y + place / 7}][c] += error * part;
      }
    }
  }
  return indexes;
}

TEST_F(ModuleTest, dithering_is_that_of_the_plain_form) {
  for (const OwnedDib& picture : {Gradients(60, 40), Picture({24, false}, 45, 19)}) {
    for (const auto& [bits, flags] : {std::pair{1, 0U}, {4, 0U}, {4, 1U}, {8, 0U}, {8, 1U}}) {
      for (unsigned mode = 0; mode <= 9; ++mode) {
        const OwnedDib image = Changed(picture, ToDepth(bits, mode, flags));
        const View got(image);
        std::vector<Color> palette;
        for (unsigned i = 0; i < 1U << bits; ++i) palette.push_back(got.entry(i));
        const Bytes expected = Dithered(View(picture), palette, mode);
        for (int i = 0; i < got.width() * got.height(); ++i) {
          ASSERT_EQ(got.value(i % got.width(), i / got.width()),
                    expected[static_cast<std::size_t>(i)])
              << bits << " bits, mode " << mode << ", pixel " << i;
        }
      }
    }
  }
}

// Root of the mean squared difference of all channels.
double Error(const OwnedDib& picture, int bits) {
  const Bytes a = Shown(picture);
  const Bytes b = Shown(Changed(picture, ToDepth(bits)));
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += std::pow(a[i] - b[i], 2);
  return std::sqrt(sum / static_cast<double>(a.size()));
}

// Bounds lie well below what an even grid of as many boxes as the palette has colours would leave.
TEST_F(ModuleTest, an_optimised_palette_stands_for_many_colours) {
  const OwnedDib picture = Gradients(120, 80);
  EXPECT_LT(Error(picture, 8), 4.5);
  EXPECT_LT(Error(picture, 4), 18);
  // More colours than are counted one by one.
  const OwnedDib noise = Picture({24, false}, 300, 200);
  const View bytes(noise);
  const OwnedDib dark =
      Drawn(300, 200, [&](int x, int y, int channel) { return bytes.row(y)[3 * x + channel] / 4; });
  EXPECT_LT(Error(dark, 8), 3.2);
}

}  // namespace
