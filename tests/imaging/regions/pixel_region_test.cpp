// The turn that sets regions upright; that they are sets of pixels a fuzzer looks after.
#include "imaging/regions/pixel_region.h"

#include <cmath>

#include "imaging/plain_image.h"
#include "imaging/regions/rounding.h"
#include "imaging/regions/skew.h"

using namespace orvo;

namespace {

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

// A solid rectangle about (200, 200), turned clockwise as shown.
PixelRegion Tilted(double width, double height, double degrees) {
  const double a = degrees * std::acos(-1.0) / 180.0;
  PixelRegion region;
  for (int y = 80; y < 320; ++y) {
    for (int x = 80; x < 320; ++x) {
      const double across = (x - 200) * std::cos(a) + (y - 200) * std::sin(a);
      const double down = (y - 200) * std::cos(a) - (x - 200) * std::sin(a);
      if (std::abs(across) > width / 2 || std::abs(down) > height / 2) continue;
      EXPECT_TRUE(region.AddPixel(x, y));
    }
  }
  return region;
}

TEST(Skew, TiltedRectanglesStandUprightAgain) {
  for (const double tilt : {-40.0, -23.0, -9.0, -4.0, -3.0, 3.0, 5.0, 12.0, 31.0, 40.0}) {
    EXPECT_NEAR(FindSkew(Tilted(140, 70, tilt), nullptr), -tilt, 1.0);
    EXPECT_NEAR(FindSkew(Tilted(60, 170, tilt), nullptr), -tilt, 1.0);
  }
  EXPECT_EQ(FindSkew(Tilted(120, 80, 50), nullptr), 40) << "onto its other side";
  EXPECT_EQ(FindSkew(Tilted(120, 80, -50), nullptr), -40);
  EXPECT_EQ(SkewDirection(Tilted(120, 80, 0)), 0);
  EXPECT_EQ(SkewDirection(Tilted(120, 80, 10)), -1);
  // Areas beyond 32 bits. The line tilts by 42 degrees, and the first turn that helps goes on to
  // the vertical.
  PixelRegion line;
  for (int n = 0; n < 90000; ++n) ASSERT_TRUE(line.AddPixel(n, n * 9 / 10));
  EXPECT_EQ(FindSkew(line, nullptr), 48);
}

TEST(Skew, RandomRegions) {
  plain::CheckSum sum;
  for (unsigned seed = 0; seed < 150; ++seed) {
    std::mt19937 random(seed);
    const auto pick = [&](unsigned most) { return static_cast<int>(random() % (most + 1)); };
    PixelRegion region;
    for (int slope = pick(40) - 20, n = pick(60); n >= 0; --n) {
      const int left = 100 + n * slope / 20 - pick(4);
      for (int x = left + 5 + pick(40); x >= left; --x) ASSERT_TRUE(region.AddPixel(x, n));
    }
    RECT box;
    sum.add(FindSkew(region, &box), SkewDirection(region));
    sum.addSides(box);
  }
  EXPECT_EQ(sum.value(), 16804731405629195694U);
}

}  // namespace
