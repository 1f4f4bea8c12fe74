// Turning, sizing and trimming against plain forms that take each new pixel from the old ones.
#include <limits>
#include <numbers>

#include "modules/fixture.h"

namespace {

using rig::Changed;
using rig::Color;
using rig::Do;
using rig::kKinds;
using rig::ModuleTest;
using rig::OwnedDib;
using rig::View;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr unsigned kBlue = 0xFF0000;  // red lies in the lowest byte

// Where the middle of a new pixel lies in the old image, in stored coordinates.
struct Place {
  double x, y;
};
Place TurnedFrom(const View& from, const View& to, int angle, int x, int y) {
  const bool quarter = angle % 9000 == 0;
  const double radians = std::remainder(angle, 36000) * std::numbers::pi / 18000;
  const double cosine = quarter ? std::round(std::cos(radians)) : std::cos(radians);
  const double sine = quarter ? std::round(std::sin(radians)) : std::sin(radians);
  const double dx = x + 0.5 - to.width() / 2.0;
  const double dy = y + 0.5 - to.height() / 2.0;
  return {from.width() / 2.0 + dx * cosine - dy * sine,
          from.height() / 2.0 + dx * sine + dy * cosine};
}

// The smallest size that holds the turned image, or its own.
std::pair<int, int> SizeOf(const View& from, int angle, bool grows) {
  if (!grows) return {from.width(), from.height()};
  const double radians = std::remainder(angle, 36000) * std::numbers::pi / 18000;
  const double cosine = std::fabs(std::cos(radians));
  const double sine = std::fabs(std::sin(radians));
  const auto least = [](double length) { return static_cast<int>(std::ceil(length - 1e-6)); };
  return {least(from.width() * cosine + from.height() * sine),
          least(from.width() * sine + from.height() * cosine)};
}

// The four pixels round a place by weights counted in 256ths.
Color Mixed(const View& from, Place place, const Color& background) {
  const double left = std::floor(place.x - 0.5);
  const double below = std::floor(place.y - 0.5);
  const double across = std::floor((place.x - 0.5 - left) * 256) / 256;
  const double up = std::floor((place.y - 0.5 - below) * 256) / 256;
  Color sum{};
  for (int i = 0; i < 4; ++i) {
    const int x = static_cast<int>(left) + i % 2;
    const int y = static_cast<int>(below) + i / 2;
    const double weight = (i % 2 == 0 ? 1 - across : across) * (i / 2 == 0 ? 1 - up : up);
    const Color color = from.holds(x, y) ? from.color(x, y) : background;
    for (std::size_t c = 0; c < 4; ++c) sum[c] += weight * color[c];
  }
  return sum;
}

// Tones of 5 bits are off by half of one of 31 steps and by what widening adds.
void ExpectNear(const View& image, int x, int y, const Color& expected, double slack) {
  const Color got = image.color(x, y);
  if (slack > 0 && image.depth() == 16) slack += 4.6;
  for (std::size_t c = 0; c < 4; ++c) {
    ASSERT_NEAR(got[c], std::clamp(expected[c], 0.0, 255.0), slack) << x << ", " << y;
  }
}

TEST_F(ModuleTest, turned_pixels_come_from_where_the_turn_puts_them) {
  constexpr int kSizes[][2] = {{1, 1}, {9, 5}, {33, 20}, {33, 21}};
  for (const rig::Kind kind : kKinds) {
    for (const auto& [width, height] : kSizes) {
      OwnedDib source = rig::Picture(kind, width, height);
      const unsigned last = (1U << std::min(kind.depth, 8)) - 1;
      if (kind.inColors()) View(source).palette()[last] = {250, 5, 3, 0};
      for (const int angle : {0, 9000, 18000, 27000, -9000 - 360000000, 1, 700, 4507, 13333, -700,
                              std::numeric_limits<int>::min()}) {
        for (const unsigned flags : {0U, unsigned{kRotateGrows}}) {
          SCOPED_TRACE(testing::Message() << kind.depth << ", " << width << ", " << angle);
          const unsigned ground = kind.gray ? 0x808080 : kBlue;
          const OwnedDib turned = Changed(source, Do(L_RotateBitmap, angle, flags, ground));
          const View from(source);
          const View to(turned);
          ASSERT_EQ(std::pair(to.width(), to.height()), SizeOf(from, angle, flags != 0));
          if (kind.depth <= 8) {
            ASSERT_EQ(std::memcmp(from.palette(), to.palette(), orvo::DibPaletteBytes(kind.depth)),
                      0);
          }
          const Color background = kind.gray         ? Color{128, 128, 128}
                                   : kind.inColors() ? from.entry(last)
                                                     : Color{0, 0, 255};
          for (int y = 0; y < to.height(); ++y) {
            for (int x = 0; x < to.width(); ++x) {
              const Place place = TurnedFrom(from, to, angle, x, y);
              if (!kind.inColors() && angle % 9000 != 0) {
                ASSERT_NO_FATAL_FAILURE(ExpectNear(to, x, y, Mixed(from, place, background), 1.5));
                continue;
              }
              const int column = static_cast<int>(std::floor(place.x));
              const int row = static_cast<int>(std::floor(place.y));
              ASSERT_EQ(to.color(x, y),
                        from.holds(column, row) ? from.color(column, row) : background)
                  << x << ", " << y;
            }
          }
        }
      }
    }
  }
}

TEST_F(ModuleTest, a_turn_by_90_degrees_is_clockwise_and_exchanges_the_resolutions) {
  const OwnedDib page = pictures::Blank(16, 8, 8);
  View(page).row(7)[0] = 255;  // top left
  rig::Locked(page.get()).header()->biYPelsPerMeter = 3937;
  constexpr int kTurns[][4] = {{9000, 3937, 7, 15}, {-9000, 3937, 0, 0}, {18000, 11811, 15, 0}};
  for (const auto& [angle, across, x, y] : kTurns) {
    const OwnedDib turned = Changed(page, Do(L_RotateBitmap, angle, kRotateGrows, 0U));
    EXPECT_EQ(View(turned).header().biXPelsPerMeter, across);
    EXPECT_EQ(View(turned).value(x, y), 255U);
  }
}

// The share of old sample j in new sample i.
using Weight = double (*)(int i, int j, int from, int to);

double Distance(int i, int j, int from, int to) {
  return std::fabs((i + 0.5) * from / to - (j + 0.5));
}
double Nearest(int i, int j, int from, int to) {
  return (2 * i + 1) * from / (2 * to) == j ? 1 : 0;
}
double Triangle(int i, int j, int from, int to) {
  return std::max(0.0, 1 - Distance(i, j, from, to));
}
// What a new sample covers when there are fewer of them, else the cubic convolution of slope -1/2.
double Best(int i, int j, int from, int to) {
  const double scale = static_cast<double>(from) / to;
  if (scale > 1) {
    return std::max(0.0, std::min(j + 1.0, (i + 1) * scale) - std::max<double>(j, i * scale)) /
           scale;
  }
  const double d = Distance(i, j, from, to);
  if (d < 1) return 1.5 * d * d * d - 2.5 * d * d + 1;
  return d < 2 ? -0.5 * d * d * d + 2.5 * d * d - 4 * d + 2 : 0;
}

// A new pixel as the sum over all old ones, the outermost repeated beyond the edges.
Color Resampled(const View& from, int x, int y, const View& to, Weight weight) {
  Color sum{};
  for (int row = -2; row < from.height() + 2; ++row) {
    const double down = weight(y, row, from.height(), to.height());
    for (int column = -2; down != 0 && column < from.width() + 2; ++column) {
      const double share = down * weight(x, column, from.width(), to.width());
      if (share == 0) continue;
      const Color color = from.color(std::clamp(column, 0, from.width() - 1),
                                     std::clamp(row, 0, from.height() - 1));
      for (std::size_t c = 0; c < 4; ++c) sum[c] += share * color[c];
    }
  }
  return sum;
}

TEST_F(ModuleTest, sizes_agree_with_the_sum_over_all_pixels) {
  constexpr int kSizes[][2] = {{19, 14}, {7, 5}, {19, 3}, {40, 9}, {50, 31}, {1, 1}, {1, 40}};
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = rig::Picture(kind, 19, 14);
    for (const unsigned flags : {kSizeNearest, kSizeBilinear, kSizeBest}) {
      const bool mixes = !kind.inColors() && flags != kSizeNearest;
      const Weight weight = !mixes ? Nearest : flags == kSizeBest ? Best : Triangle;
      for (const auto& [width, height] : kSizes) {
        SCOPED_TRACE(testing::Message() << kind.depth << ", " << flags << ", " << width);
        const OwnedDib resized = Changed(source, Do(L_SizeBitmap, width, height, flags));
        const View from(source);
        const View to(resized);
        ASSERT_EQ(std::pair(to.width(), to.height()), std::pair(width, height));
        for (int y = 0; y < height; ++y) {
          for (int x = 0; x < width; ++x) {
            const Color expected = Resampled(from, x, y, to, weight);
            ASSERT_NO_FATAL_FAILURE(ExpectNear(to, x, y, expected, mixes ? 0.501 : 0));
          }
        }
      }
    }
  }
}

TEST_F(ModuleTest, a_trimmed_image_is_the_rectangle_of_stored_rows) {
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = rig::Picture(kind, 37, 12);
    for (const int left : {0, 1, 3, 8, 36}) {
      const int width = std::min(11, 37 - left);
      const OwnedDib cut = Changed(source, Do(L_TrimBitmap, left, 2, width, 10));
      const View from(source);
      const View to(cut);
      ASSERT_EQ(std::pair(to.width(), to.height()), std::pair(width, 10));
      for (int i = 0; i < 10 * width; ++i) {
        ASSERT_EQ(to.color(i % width, i / width), from.color(left + i % width, 2 + i / width));
      }
    }
  }
}

TEST_F(ModuleTest, measures_that_cannot_be_leave_the_image) {
  const OwnedDib source = rig::Picture({24, false}, 10, 8);
  const auto expect = [&](const rig::Operation& operation, int code) {
    OwnedDib image = pictures::CopyOf(source.get());
    EXPECT_EQ(rig::Apply(operation, image), code);
    EXPECT_EQ(pictures::Difference(source.get(), image.get()), "");
  };
  constexpr int kRectangles[][4] = {
      {-1, 0, 5, 5}, {0, -1, 5, 5}, {0, 0, 11, 8}, {0, 0, 10, 9}, {6, 0, 5, 5},        {0, 4, 5, 5},
      {0, 0, 0, 5},  {0, 0, 5, 0},  {10, 0, 1, 1}, {0, 8, 1, 1},  {1, 1, kMost, kMost}};
  for (const auto& row : kRectangles) {
    expect(Do(L_TrimBitmap, row[0], row[1], row[2], row[3]), kModuleBadParameter);
  }
  for (const unsigned flags : {kSizeNearest, kSizeBilinear, kSizeBest}) {
    for (const auto& [width, height] : {std::pair{0, 8}, {8, 0}, {-5, 8}, {kMost, kMost}}) {
      expect(Do(L_SizeBitmap, width, height, flags),
             width == kMost ? kModuleNoMemory : kModuleBadParameter);
    }
  }
}

}  // namespace
