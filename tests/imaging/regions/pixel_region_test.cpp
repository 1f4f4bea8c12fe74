// Regions as sets of pixels, and the turn that sets them upright.
#include "imaging/regions/pixel_region.h"

#include <cmath>

#include "imaging/plain_image.h"
#include "imaging/regions/rounding.h"
#include "imaging/regions/skew.h"

using namespace orvo;

namespace {

// In the order in which they are stored; where a row is cut into runs is left open.
void AddPixels(const PixelRegion& region, plain::CheckSum& sum) {
  for (const PixelRow& row : region.rows()) {
    for (const PixelRun& run : row.runs) {
      for (int x = run.left; x < run.right; ++x) sum.add(row.y, x);
    }
  }
}

// Two regions that have no pixel in common, as in the finder, and the second one moved.
TEST(PixelRegion, IsASetOfPixels) {
  plain::CheckSum sum;
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    const auto pick = [&](unsigned reach) {
      return static_cast<int>(random() % (2 * reach + 1)) - static_cast<int>(reach);
    };
    PixelRegion a;
    PixelRegion b;
    for (std::size_t n = random() % 61; n > 0; --n) {
      const int x = pick(6);
      const int y = pick(6);
      if ((n % 2 == 0 ? b : a).Contains(x, y)) continue;
      ASSERT_TRUE((n % 2 == 0 ? a : b).AddPixel(x, y));
    }
    for (int i = 0; i < 15 * 15; ++i) sum.add(a.Contains(i % 15 - 7, i / 15 - 7));
    const int dx = pick(3);
    const PixelRegion moved = b.Translated(dx, pick(3));
    PixelRegion absorbed = a;
    absorbed.Absorb(PixelRegion(b));
    for (const PixelRegion& region :
         {a, a.Union(b), absorbed, moved, moved.Intersection(a), a.Union(moved)}) {
      AddPixels(region, sum);
      sum.add(region.IsEmpty(), region.RowExtentSum());
      if (region.IsEmpty()) continue;
      sum.addSides(region.BoundingRect());
      sum.add(region.Centre().x, region.Centre().y);
    }
  }
  EXPECT_EQ(sum.value(), 15731049980795866956U);
}

// --- Skew ----------------------------------------------------------------------------------------

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
