#include <gtest/gtest.h>

#include <algorithm>

#include "adjusted.h"

namespace {

using adjusted::ColorAt;
using adjusted::Rgb;
using adjusted::StrayChange;
using pictures::Locked;

// The nine pixels one by one, those beyond the border taken from the nearest inside.
Rgb Reference(const Locked& image, int x, int y, int change) {
  const orvo::DibLayout layout = image.layout();
  Rgb sharp = ColorAt(image, x, y);
  Rgb mean{};
  for (int i = 0; i < 9; ++i) {
    const Rgb near = ColorAt(image, std::clamp(x + i % 3 - 1, 0, layout.width - 1),
                             std::clamp(y + i / 3 - 1, 0, layout.height - 1));
    for (std::size_t c = 0; c < 3; ++c) mean[c] += near[c] / 9;
  }
  const double amount = change > 0 ? change / 250.0 : change / 1000.0;
  for (std::size_t c = 0; c < 3; ++c) {
    sharp[c] = std::clamp(sharp[c] + (sharp[c] - mean[c]) * amount, 0.0, 255.0);
  }
  return sharp;
}

double SquaredDistance(const Rgb& a, const Rgb& b) {
  return std::pow(a[0] - b[0], 2) + std::pow(a[1] - b[1], 2) + std::pow(a[2] - b[2], 2);
}

double LeastDistance(const Locked& image, const Rgb& wanted) {
  double least = 1e9;
  for (std::size_t i = orvo::kDibHeaderBytes; i < image.layout().pixelOffset; i += 4) {
    const std::uint8_t* entry = image.bytes() + i;
    least = std::min(
        least, SquaredDistance({double(entry[2]), double(entry[1]), double(entry[0])}, wanted));
  }
  return least;
}

void ExpectSharpened(const Locked& before, const Locked& after, bool byPalette, int change) {
  const orvo::DibLayout layout = before.layout();
  for (int y = 0; y < layout.height; ++y) {
    for (int x = 0; x < layout.width; ++x) {
      Rgb wanted = Reference(before, x, y, change);
      const Rgb got = ColorAt(after, x, y);
      if (byPalette) {
        for (double& tone : wanted) tone = std::floor(tone + 0.5 + 1e-6);
        ASSERT_EQ(SquaredDistance(got, wanted), LeastDistance(before, wanted)) << x << ", " << y;
        continue;
      }
      for (std::size_t c = 0; c < 3; ++c) {
        ASSERT_LE(std::abs(wanted[c] - got[c]), adjusted::Slack(layout.depth)) << x << ", " << y;
      }
    }
  }
}

TEST(Sharpen, agrees_with_the_nine_pixels_of_each_neighbourhood) {
  constexpr std::pair<int, int> kSizes[] = {{1, 1}, {1, 5}, {6, 1}, {2, 2}, {3, 9}, {37, 23}};
  for (const adjusted::Kind kind : adjusted::kKinds) {
    for (const auto& [width, height] : kSizes) {
      const orvo::OwnedDib source = Picture(kind, width, height);
      for (const int change : {-1000, -400, 130, 1000}) {
        for (const StatusCallback status :
             {StatusCallback{nullptr}, StatusCallback{adjusted::GoOn}}) {
          SCOPED_TRACE(testing::Message() << width << " x " << height << " at " << kind.depth
                                          << " bits, change " << change);
          const adjusted::Watched callback(status);
          orvo::OwnedDib got = pictures::CopyOf(source.get());
          const auto sharpen = [change](auto* bitmap) { return L_SharpenBitmap(bitmap, change); };
          ASSERT_EQ(adjusted::Apply(sharpen, got), kModuleSuccess);
          ASSERT_NO_FATAL_FAILURE(ExpectSharpened(Locked(source.get()), Locked(got.get()),
                                                  kind.depth <= 8 && !kind.grayByTone, change));
          ASSERT_EQ(StrayChange(source.get(), got.get(), false), -1);
        }
      }
    }
  }
}

TEST(Sharpen, a_repeated_palette_colour_keeps_its_index) {
  for (const int depth : {4, 8}) {
    orvo::OwnedDib source = adjusted::Picture({depth, false}, 31, 12);
    std::fill_n(Locked(source.get()).palette(), 1 << depth, RGBQUAD{9, 8, 7, 6});
    orvo::OwnedDib got = pictures::CopyOf(source.get());
    adjusted::Apply([](auto* bitmap) { return L_SharpenBitmap(bitmap, 1000); }, got);
    EXPECT_EQ(pictures::Difference(source.get(), got.get()), "");
  }
}

}  // namespace
