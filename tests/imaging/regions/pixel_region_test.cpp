// Regions as sets of pixels, and the turn that sets them upright.
#include "imaging/regions/pixel_region.h"

#include <array>
#include <cmath>
#include <set>

#include "imaging/plain_image.h"
#include "imaging/regions/rounding.h"
#include "imaging/regions/skew.h"

using namespace orvo;

namespace {

using Pixels = std::vector<std::array<int, 2>>;  // (y, x)

// In the order in which they are stored.
Pixels PixelsOf(const PixelRegion& region) {
  Pixels pixels;
  for (const PixelRow& row : region.rows()) {
    for (const PixelRun& run : row.runs) {
      for (int x = run.left; x < run.right; ++x) pixels.push_back({row.y, x});
    }
  }
  return pixels;
}

// Against a set of pixels; the two regions are apart for the union, as in the finder.
TEST(PixelRegion, IsASetOfPixels) {
  const auto listed = [](const auto& set) { return Pixels(set.begin(), set.end()); };
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    const auto pick = [&](unsigned reach) {
      return static_cast<int>(random() % (2 * reach + 1)) - static_cast<int>(reach);
    };
    std::array<PixelRegion, 2> regions;
    std::array<std::set<std::array<int, 2>>, 2> sets;
    for (std::size_t n = random() % 61; n > 0; --n) {
      const std::array<int, 2> pixel = {pick(6), pick(6)};
      if (sets[(n + 1) % 2].contains(pixel)) continue;
      ASSERT_TRUE(regions[n % 2].AddPixel(pixel[1], pixel[0]));
      sets[n % 2].insert(pixel);
    }
    const auto& [a, b] = regions;
    ASSERT_EQ(PixelsOf(a), listed(sets[0]));
    auto both = sets[0];
    both.insert(sets[1].begin(), sets[1].end());
    EXPECT_EQ(PixelsOf(a.Union(b)), listed(both));
    PixelRegion absorbed = a;
    absorbed.Absorb(PixelRegion(b));
    EXPECT_EQ(PixelsOf(absorbed), listed(both));

    const int dx = pick(3);
    const int dy = pick(3);
    std::set<std::array<int, 2>> moved;
    for (const auto& [y, x] : sets[1]) moved.insert({y + dy, x + dx});
    EXPECT_EQ(PixelsOf(b.Translated(dx, dy)), listed(moved));
    const bool meets = std::any_of(moved.begin(), moved.end(),
                                   [&](const auto& pixel) { return sets[0].contains(pixel); });
    const PixelRegion shared = b.Translated(dx, dy).Intersection(a);
    EXPECT_EQ(shared.IsEmpty(), !meets);
    for (const auto& pixel : PixelsOf(shared)) {
      ASSERT_TRUE(sets[0].contains(pixel) && moved.contains(pixel));
    }
    for (int i = 0; i < 15 * 15; ++i) {
      ASSERT_EQ(a.Contains(i % 15 - 7, i / 15 - 7), sets[0].contains({i / 15 - 7, i % 15 - 7}));
    }
    if (a.IsEmpty()) continue;
    std::set<int> columns;
    for (const auto& [y, x] : sets[0]) columns.insert(x);
    const RECT box = a.BoundingRect();
    EXPECT_EQ((std::array{box.left, box.top, box.right, box.bottom}),
              (std::array{*columns.begin(), (*sets[0].begin())[0], *columns.rbegin() + 1,
                          (*sets[0].rbegin())[0] + 1}));
    int extents = 0;
    for (const PixelRow& row : a.rows()) extents += row.right() - row.left();
    EXPECT_EQ(a.RowExtentSum(), extents);
    EXPECT_EQ(a.Centre().x, (box.left + box.right) / 2);
    EXPECT_EQ(a.Centre().y, (box.top + box.bottom) / 2);
  }
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
