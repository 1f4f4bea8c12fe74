// The turn that sets a region upright.
#include "imaging/regions/skew.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "imaging/regions/rounding.h"
#include "pages.h"
#include "plain_finder.h"

using namespace orvo;

namespace {

// A solid rectangle about (200, 200), turned clockwise as shown.
PixelRegion Tilted(double width, double height, double degrees) {
  const double a = degrees * std::acos(-1.0) / 180.0;
  PixelRegion region;
  for (int y = 0; y < 400; ++y) {
    for (int x = 0; x < 400; ++x) {
      const double dx = x - 200.0;
      const double dy = y - 200.0;
      const double across = dx * std::cos(a) + dy * std::sin(a);
      const double down = dy * std::cos(a) - dx * std::sin(a);
      if (std::abs(across) > width / 2 || std::abs(down) > height / 2) continue;
      EXPECT_TRUE(region.AddPixel(x, y));
    }
  }
  return region;
}

TEST(Rounding, CutsAtATenth) {
  const struct {
    double value;
    int x, y;
  } kRows[] = {{2.0, 2, 2},    {2.49, 2, 2},   {2.5, 3, 2},     {2.89, 3, 2},  {2.95, 3, 3},
               {-2.0, -2, -2}, {-2.5, -2, -3}, {-2.05, -2, -2}, {-2.6, -3, -3}};
  for (const auto& row : kRows) {
    EXPECT_EQ(RoundTenths(row.value), row.x) << row.value;
    EXPECT_EQ(RoundPoint(row.value, row.value).x, row.x) << row.value;
    EXPECT_EQ(RoundPoint(row.value, row.value).y, row.y) << row.value;
  }
}

TEST(Skew, TiltedRectanglesStandUprightAgain) {
  for (const double tilt : {-40.0, -23.0, -9.0, -4.0, -3.0, 3.0, 5.0, 12.0, 31.0, 40.0}) {
    EXPECT_NEAR(FindSkew(Tilted(140, 70, tilt), nullptr), -tilt, 1.0);
    EXPECT_NEAR(FindSkew(Tilted(60, 170, tilt), nullptr), -tilt, 1.0);
  }
  EXPECT_EQ(FindSkew(Tilted(120, 80, 50), nullptr), 40) << "onto its other side";
  EXPECT_EQ(FindSkew(Tilted(120, 80, -50), nullptr), -40);
  EXPECT_EQ(SkewDirection(Tilted(120, 80, 0)), 0);
  EXPECT_EQ(FindSkew(Tilted(120, 80, 0), nullptr), 0);
  EXPECT_EQ(SkewDirection(Tilted(120, 80, 10)), -1);
}

TEST(Skew, RandomRegionsEqualThePlainForm) {
  int turned = 0;
  for (unsigned seed = 0; seed < 150; ++seed) {
    pages::Dice dice(seed);
    PixelRegion region = Tilted(1 + dice.upTo(60), 1 + dice.upTo(60), dice.upTo(100) - 50);
    for (int n = dice.upTo(6); n > 0; --n) {
      ASSERT_TRUE(region.AddPixel(170 + dice.upTo(60), 170 + dice.upTo(60)));
    }
    if (region.IsEmpty()) continue;
    RECT box;
    RECT expectedBox;
    ASSERT_EQ(FindSkew(region, &box), plain::FindSkew(region, &expectedBox)) << "seed " << seed;
    ASSERT_EQ(std::memcmp(&box, &expectedBox, sizeof box), 0) << "seed " << seed;
    turned += FindSkew(region, nullptr) != 0 ? 1 : 0;
  }
  EXPECT_GT(turned, 75);
}

// Areas beyond 32 bits. The line tilts by 42 degrees, and the first turn that helps goes on to the
// vertical.
TEST(Skew, LongRegionsDoNotOverflow) {
  PixelRegion line;
  for (int n = 0; n < 90000; ++n) ASSERT_TRUE(line.AddPixel(n, n * 9 / 10));
  EXPECT_EQ(FindSkew(line, nullptr), 48);
}

}  // namespace
