#include <cmath>
#include <limits>
#include <numbers>

#include "kernel_fixture.h"

namespace {

using kernel::Changed;
using kernel::KernelTest;
using kernel::Operation;
using kernel::Picture;
using kernel::ValueAt;

constexpr unsigned kBlue = 0xFF0000;  // red lies in the lowest byte

Operation RotateBy(int angle, unsigned flags, unsigned color = kModuleWhite) {
  return [=](auto* bitmap) { return L_RotateBitmap(bitmap, angle, flags, color); };
}

// A picture as it is shown: columns from the left, lines from the top.
class Shown {
 public:
  explicit Shown(const orvo::OwnedDib& dib) : image_(dib.get()) {}
  [[nodiscard]] int width() const { return image_.layout().width; }
  [[nodiscard]] int height() const { return image_.layout().height; }
  [[nodiscard]] unsigned value(int x, int y) const { return ValueAt(image_, x, height() - 1 - y); }
  [[nodiscard]] kernel::Rgb color(int x, int y) const {
    return kernel::ColorAt(image_, x, height() - 1 - y);
  }
  [[nodiscard]] bool holds(int x, int y) const {
    return x >= 0 && y >= 0 && x < width() && y < height();
  }

 private:
  pictures::Locked image_;
};

TEST_F(KernelTest, a_quarter_turn_moves_the_top_left_to_the_top_right) {
  struct Size {
    int width, height;
  };
  for (const int depth : kernel::kDepths) {
    for (const Size size : {Size{1, 1}, Size{9, 5}, Size{33, 20}}) {
      const orvo::OwnedDib source = Picture(size.width, size.height, depth);
      orvo::OwnedDib expected = pictures::CopyOf(source.get());
      for (const int angle : {9000, 18000, 27000, 36000, 45000, -9000 - 360000000}) {
        const orvo::OwnedDib turned = Changed(source, RotateBy(angle, kRotateGrows));
        const int quarters = (angle / 9000 % 4 + 4) % 4;
        const Shown from(source);
        const Shown to(turned);
        ASSERT_EQ(to.width(), quarters % 2 == 1 ? size.height : size.width);
        ASSERT_EQ(to.height(), quarters % 2 == 1 ? size.width : size.height);
        for (int y = 0; y < size.height; ++y) {
          for (int x = 0; x < size.width; ++x) {
            int placeX = x;
            int placeY = y;
            int height = size.height;
            int width = size.width;
            for (int i = 0; i < quarters; ++i) {
              placeX = std::exchange(placeY, placeX);
              placeX = height - 1 - placeX;
              std::swap(width, height);
            }
            ASSERT_EQ(to.value(placeX, placeY), from.value(x, y)) << depth << ", " << angle;
          }
        }
      }
    }
  }
}

TEST_F(KernelTest, a_quarter_turn_that_keeps_its_size_is_centred_on_white) {
  for (const int depth : kernel::kDepths) {
    const orvo::OwnedDib source = pictures::Noise(33, 21, depth, 3);
    const orvo::OwnedDib kept = Changed(source, RotateBy(9000, 0));
    const orvo::OwnedDib grown = Changed(source, RotateBy(9000, kRotateGrows));
    const Shown all(grown);
    const Shown got(kept);
    ASSERT_EQ(got.width(), 33);
    ASSERT_EQ(got.height(), 21);
    for (int y = 0; y < 21; ++y) {
      for (int x = 0; x < 33; ++x) {
        const kernel::Rgb white{255, 255, 255};
        ASSERT_EQ(got.color(x, y), x >= 6 && x < 27 ? all.color(x - 6, y + 6) : white) << depth;
      }
    }
  }
}

TEST_F(KernelTest, a_quarter_turn_exchanges_the_resolutions) {
  orvo::OwnedDib page = Picture(16, 8, 1);
  pictures::Locked(page.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(100);
  for (const auto& [angle, across] : {std::pair{9000, 100}, {27000, 300}, {100, 300}}) {
    ASSERT_EQ(kernel::Apply(RotateBy(angle, kRotateGrows), page), kModuleSuccess);
    EXPECT_EQ(pictures::Locked(page.get()).header()->biXPelsPerMeter, orvo::PixelsPerMetre(across));
  }
}

// Where the middle of a new pixel comes from, counted from the middle of the top left pixel.
struct Place {
  double x, y;
};
Place TurnedFrom(const Shown& source, const Shown& target, int angle, int x, int y) {
  const double radians = std::remainder(angle, 36000) * std::numbers::pi / 18000;
  const double dx = x + 0.5 - target.width() / 2.0;
  const double dy = y + 0.5 - target.height() / 2.0;
  return {source.width() / 2.0 + dx * std::cos(radians) + dy * std::sin(radians) - 0.5,
          source.height() / 2.0 - dx * std::sin(radians) + dy * std::cos(radians) - 0.5};
}

// The mean of the four pixels round a place, in real numbers.
std::array<double, 3> MixedAt(const Shown& source, Place place, const kernel::Rgb& background) {
  std::array<double, 3> sum{};
  for (const int right : {0, 1}) {
    for (const int down : {0, 1}) {
      const int column = static_cast<int>(std::floor(place.x)) + right;
      const int line = static_cast<int>(std::floor(place.y)) + down;
      const double weight = (1 - std::fabs(place.x - column)) * (1 - std::fabs(place.y - line));
      const kernel::Rgb color =
          source.holds(column, line) ? source.color(column, line) : background;
      for (std::size_t c = 0; c < 3; ++c) sum[c] += weight * color[c];
    }
  }
  return sum;
}

TEST_F(KernelTest, other_angles_mix_four_pixels) {
  for (const int depth : {8, 16, 24, 32}) {
    const orvo::OwnedDib source = pictures::Noise(41, 23, depth, 9);
    for (const int angle : {1, 700, 4500, 13333, -700, std::numeric_limits<int>::min()}) {
      for (const unsigned flags : {0U, 1U}) {
        const unsigned color = depth == 8 ? 0x808080 : kBlue;
        const kernel::Rgb background =
            depth == 8 ? kernel::Rgb{128, 128, 128} : kernel::Rgb{0, 0, 255};
        const orvo::OwnedDib turned = Changed(source, RotateBy(angle, flags, color));
        const Shown from(source);
        const Shown to(turned);
        if (flags == 0) {
          ASSERT_EQ(to.width(), 41);
          ASSERT_EQ(to.height(), 23);
        }
        for (int y = 0; y < to.height(); ++y) {
          for (int x = 0; x < to.width(); ++x) {
            const auto expected = MixedAt(from, TurnedFrom(from, to, angle, x, y), background);
            const kernel::Rgb got = to.color(x, y);
            // Weights are counted in 256ths; 16 bits add half of their step.
            const double slack = depth == 16 ? 7.5 : 2.5;
            for (std::size_t c = 0; c < 3; ++c) {
              ASSERT_NEAR(got[c], expected[c], slack) << angle << ": " << x << ", " << y;
            }
          }
        }
      }
    }
  }
}

TEST_F(KernelTest, grown_sizes_are_the_smallest_that_hold_the_image) {
  struct Row {
    int angle, width, height;
  };
  // 36.87 degrees are a trace more than the angle of the triangle of sides 3, 4 and 5.
  for (const Row& row : {Row{0, 80, 60}, Row{9000, 60, 80}, Row{18000, 80, 60}, Row{3687, 100, 97},
                         Row{3000, 100, 92}, Row{1, 81, 61}}) {
    const orvo::OwnedDib turned = Changed(Picture(80, 60, 4), RotateBy(row.angle, kRotateGrows));
    EXPECT_EQ(Shown(turned).width(), row.width) << row.angle;
    EXPECT_EQ(Shown(turned).height(), row.height) << row.angle;
  }
}

TEST_F(KernelTest, palettes_keep_their_entries_and_fill_with_the_nearest) {
  for (const int depth : {1, 4, 8}) {
    orvo::OwnedDib source = pictures::NoiseInColor(41, 31, depth, 4);
    const unsigned last = (1U << depth) - 1;
    pictures::Locked(source.get()).palette()[last] = {250, 5, 3, 0};
    const orvo::OwnedDib turned = Changed(source, RotateBy(2500, kRotateGrows, kBlue));
    EXPECT_EQ(std::memcmp(pictures::Locked(source.get()).palette(),
                          pictures::Locked(turned.get()).palette(), orvo::DibPaletteBytes(depth)),
              0);
    const Shown from(source);
    const Shown to(turned);
    for (int y = 0; y < to.height(); ++y) {
      for (int x = 0; x < to.width(); ++x) {
        const Place place = TurnedFrom(from, to, 2500, x, y);
        const int column = static_cast<int>(std::lround(place.x));
        const int line = static_cast<int>(std::lround(place.y));
        ASSERT_EQ(to.value(x, y), from.holds(column, line) ? from.value(column, line) : last)
            << depth << ": " << place.x << ", " << place.y;
      }
    }
  }
}

TEST_F(KernelTest, a_trimmed_image_is_the_rectangle_of_stored_rows) {
  for (const int depth : kernel::kDepths) {
    const orvo::OwnedDib source = Picture(37, 12, depth);
    for (const int left : {0, 1, 3, 8, 36}) {
      const int width = std::min(11, 37 - left);
      const orvo::OwnedDib cut =
          Changed(source, [=](auto* bitmap) { return L_TrimBitmap(bitmap, left, 2, width, 10); });
      const pictures::Locked from(source.get());
      const pictures::Locked to(cut.get());
      ASSERT_EQ(to.layout().width, width);
      ASSERT_EQ(to.layout().height, 10);
      for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < width; ++x) {
          ASSERT_EQ(ValueAt(to, x, y), ValueAt(from, left + x, 2 + y)) << depth;
        }
      }
    }
  }
}

TEST_F(KernelTest, rectangles_that_are_empty_or_leave_the_image_are_refused) {
  constexpr int kMost = std::numeric_limits<int>::max();
  const orvo::OwnedDib source = Picture(10, 8, 24);
  const std::array<int, 4> rectangles[] = {{-1, 0, 5, 5},    {0, -1, 5, 5}, {0, 0, 11, 8},
                                           {0, 0, 10, 9},    {6, 0, 5, 5},  {0, 4, 5, 5},
                                           {0, 0, 0, 5},     {0, 0, 5, -1}, {1, 1, kMost, kMost},
                                           {kMost, 0, 1, 1}, {10, 0, 1, 1}};
  for (const auto& [left, top, width, height] : rectangles) {
    orvo::OwnedDib image = pictures::CopyOf(source.get());
    const auto trim = [&, l = left, t = top, w = width, h = height](auto* bitmap) {
      return L_TrimBitmap(bitmap, l, t, w, h);
    };
    EXPECT_EQ(kernel::Apply(trim, image), kModuleBadParameter);
    EXPECT_EQ(pictures::Difference(source.get(), image.get()), "");
  }
}

}  // namespace
