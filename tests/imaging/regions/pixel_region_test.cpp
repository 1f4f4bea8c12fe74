// Regions as sets of pixels, and where their rows are cut.
#include "imaging/regions/pixel_region.h"

#include <gtest/gtest.h>

#include <set>

#include "pages.h"

using namespace orvo;

namespace {

using Runs = std::vector<std::pair<int, int>>;
using Pixels = std::set<std::pair<int, int>>;  // (y, x)

Runs RunsOf(const PixelRegion& region, std::size_t row = 0) {
  Runs runs;
  for (const PixelRun& run : region.rows().at(row).runs) runs.emplace_back(run.left, run.right);
  return runs;
}

PixelRegion RowOf(const std::vector<int>& xs, int y = 0) {
  PixelRegion region;
  for (const int x : xs) EXPECT_TRUE(region.AddPixel(x, y));
  return region;
}

PixelRegion RowOfRuns(const Runs& runs) {
  PixelRegion region;
  for (const auto& [left, right] : runs) {
    for (int x = left; x < right; ++x) EXPECT_TRUE(region.AddPixel(x, 0));
  }
  return region;
}

Pixels PixelsOf(const PixelRegion& region) {
  Pixels pixels;
  for (const PixelRow& row : region.rows()) {
    for (const PixelRun& run : row.runs) {
      for (int x = run.left; x < run.right; ++x) pixels.emplace(row.y, x);
    }
  }
  return pixels;
}

TEST(PixelRegion, PixelsLengthenRunsAndNeverJoinThem) {
  const struct {
    std::vector<int> added;
    Runs runs;
  } kRows[] = {
      {{0, 1, 2}, {{0, 3}}},
      {{2, 1, 0}, {{0, 3}}},
      {{7, 7}, {{7, 8}}},
      {{0, 1, 3, 4, 2}, {{0, 3}, {3, 5}}},  // the first neighbour in the row gets the pixel
      {{4, 0, 2}, {{0, 1}, {2, 3}, {4, 5}}},
      {{4, 0, 2, 3}, {{0, 1}, {2, 4}, {4, 5}}},
      {{5, 0, 4, 1}, {{0, 2}, {4, 6}}},
      {{-3, -2}, {{-3, -1}}},
  };
  for (const auto& row : kRows) {
    const PixelRegion region = RowOf(row.added);
    EXPECT_EQ(RunsOf(region), row.runs);
    EXPECT_EQ(region.RowExtentSum(), row.runs.back().second - row.runs.front().first);
  }
}

TEST(PixelRegion, UnionAndIntersectionCutRowsTheirWay) {
  const struct {
    Runs a, b, united, shared;
  } kRows[] = {
      {{{0, 2}}, {{2, 4}}, {{0, 2}, {2, 4}}, {}},  // touching runs stay apart
      {{{2, 4}}, {{0, 9}}, {{0, 9}}, {{2, 4}}},
      {{{0, 5}}, {{3, 7}}, {{0, 7}}, {{3, 5}}},
      {{{3, 7}}, {{0, 5}}, {{0, 7}}, {{3, 5}}},
      {{{3, 7}}, {{3, 7}}, {{3, 7}}, {{3, 7}}},
      // A long run is paired with the first that it meets, and the next goes out beside it.
      {{{0, 10}}, {{2, 3}, {5, 6}}, {{0, 10}, {5, 6}}, {{2, 3}}},
      {{{0, 1}, {4, 5}}, {{2, 3}, {6, 8}}, {{0, 1}, {2, 3}, {4, 5}, {6, 8}}, {}},
  };
  for (const auto& row : kRows) {
    const PixelRegion a = RowOfRuns(row.a);
    const PixelRegion b = RowOfRuns(row.b);
    EXPECT_EQ(RunsOf(a.Union(b)), row.united);
    const PixelRegion shared = a.Intersection(b);
    ASSERT_EQ(shared.IsEmpty(), row.shared.empty());
    if (!shared.IsEmpty()) {
      EXPECT_EQ(RunsOf(shared), row.shared);
    }
  }
  const PixelRegion touching = RowOf({0, 1, 3, 4, 2});
  EXPECT_EQ(RunsOf(touching.Translated(-1, 0)), (Runs{{-1, 4}})) << "moving joins touching runs";
}

// Against a set of pixels; the two regions are apart for the union, as in the finder.
TEST(PixelRegion, IsASetOfPixels) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    pages::Dice dice(seed);
    PixelRegion a;
    PixelRegion b;
    Pixels inA;
    Pixels inB;
    for (int n = dice.upTo(60); n >= 0; --n) {
      const int x = dice.upTo(12) - 6;
      const int y = dice.upTo(12) - 6;
      const bool first = dice.upTo(1) == 0;
      if ((first ? inB : inA).contains({y, x})) continue;
      ASSERT_TRUE((first ? a : b).AddPixel(x, y));
      (first ? inA : inB).emplace(y, x);
    }
    ASSERT_EQ(PixelsOf(a), inA);
    Pixels both = inA;
    both.insert(inB.begin(), inB.end());
    EXPECT_EQ(PixelsOf(a.Union(b)), both);

    const int dx = dice.upTo(6) - 3;
    const int dy = dice.upTo(6) - 3;
    Pixels moved;
    bool meets = false;
    for (const auto& [y, x] : inB) {
      moved.emplace(y + dy, x + dx);
      meets = meets || inA.contains({y + dy, x + dx});
    }
    EXPECT_EQ(PixelsOf(b.Translated(dx, dy)), moved);
    EXPECT_EQ(b.Translated(dx, dy).Intersection(a).IsEmpty(), !meets);
    for (int y = -7; y <= 7; ++y) {
      for (int x = -7; x <= 7; ++x) ASSERT_EQ(a.Contains(x, y), inA.contains({y, x}));
    }
    if (inA.empty()) continue;
    const RECT box = a.BoundingRect();
    EXPECT_EQ(box.top, inA.begin()->first);
    EXPECT_EQ(box.bottom, inA.rbegin()->first + 1);
    for (const auto& [y, x] : inA) EXPECT_TRUE(box.left <= x && x < box.right);
    EXPECT_EQ(a.Centre().x, (box.left + box.right) / 2);
    EXPECT_EQ(a.Centre().y, (box.top + box.bottom) / 2);
  }
}

}  // namespace
