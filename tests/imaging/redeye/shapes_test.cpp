// What red-eye work stands on: colours, masks and hulls.
#include "imaging/plain_image.h"
#include "imaging/redeye/color_tests.h"
#include "imaging/redeye/hull.h"
#include "imaging/redeye/region_mask.h"

using namespace orvo;

namespace {

TEST(RedEyeColors, AllOfThem) {
  plain::CheckSum sum;
  for (int i = 0; i < 1 << 24; ++i) {
    const auto y = static_cast<std::uint8_t>(i >> 16);
    const auto cb = static_cast<std::uint8_t>(i >> 8);
    const auto cr = static_cast<std::uint8_t>(i);
    sum.add(ImgIsRedEyeColor(y, cb, cr), ImgIsBrightNeutral(y, cb, cr), ImgIsSkinColor(y, cb, cr));
  }
  EXPECT_EQ(sum.value(), 17724068723727462590U);
}

// Seeds may be clear, and a later fill finds pixels that an earlier one has taken. What is filled
// is told by the flags; the members, which come in no particular order, have to agree.
TEST(Masks, OpeningsAndFillsOfNoise) {
  std::mt19937 random(1);
  plain::CheckSum sum;
  RegionMask mask;
  ASSERT_TRUE(mask.allocate(40 * 40));
  for (unsigned round = 0; round < 600; ++round) {
    const int width = 1 + static_cast<int>(random() % 40);
    mask.start(width, 1 + static_cast<int>(random() % 40));
    for (int i = 0; i < mask.width * mask.height; ++i) {
      const int x = i % mask.width;
      const int y = i / mask.width;
      const bool inner = x > 0 && y > 0 && x + 1 < mask.width && y + 1 < mask.height;
      mask.foreground[mask.at(x, y)] = inner && random() % 100 < 20 + round % 80;
    }
    if (round % 3 > 0) (round % 3 == 1 ? ImgOpenMask : OpenMaskBySquares)(mask);
    const std::size_t pixels = mask.pixelCount();
    sum.addAll({mask.foreground.get(), pixels});
    const bool hasInterior = mask.width > 2 && mask.height > 2;
    const auto inside = [&](int side) {
      return hasInterior ? 1 + static_cast<int>(random() % static_cast<unsigned>(side - 2)) : 0;
    };
    for (int fill = 0; fill < (hasInterior ? 4 : 1); ++fill) {
      const int x = inside(mask.width);
      const FilledRegion region = ImgFillRegion(x, inside(mask.height), mask);
      sum.add(region.area, region.x, region.y);
      sum.addSides(region.box);
      sum.addAll({mask.visited.get(), pixels});
      ASSERT_EQ(region.members.size() + 1, static_cast<std::size_t>(region.area));
      for (const std::uint32_t member : region.members) ASSERT_EQ(mask.visited[member]++, 1);
      for (const std::uint32_t member : region.members) mask.visited[member] = 1;
    }
  }
  EXPECT_EQ(sum.value(), 914045671021993931U);
}

using Points = std::vector<POINT>;

// Stretches of columns with two points each, rough, with straight edges or sloped ones, whose walks
// close; lines and heaps, whose walks need not, inside a longer list; and any vertex of scattered
// points.
TEST(Hulls, OfColumnsHeapsAndFromAnywhere) {
  std::mt19937 random(2);
  const auto pick = [&](std::size_t below) { return static_cast<int>(random() % below); };
  plain::CheckSum sum;
  for (int round = 0; round < 1200; ++round) {
    const std::size_t reach = 1 + random() % 300;
    const int base = static_cast<int>(reach);
    Points points;
    for (int x = 0; x < 2 + round % 130; ++x) {
      const int a = round % 3 == 0 ? 5 : round % 3 == 1 ? x / 2 : pick(reach);
      const int b = base + (round % 3 == 0 ? 5 : round % 3 == 1 ? 3 * x : pick(reach));
      points.insert(points.end(), {{x + 7, a}, {x + 7, b}});
    }
    const std::size_t first = round % 2 == 0 ? 0 : 2 * (random() % (points.size() / 4));
    sum.add(ImgConvexHull(std::span(points).subspan(first, points.size() - 2 * first)));
    for (const POINT& p : points) sum.add(p.x, p.y);
    points.resize(ImgRemoveRepeats(points));
    ImgSortPoints(points);
    for (const POINT& p : points) sum.add(p.x, p.y);
  }
  for (std::size_t round = 0; round < 30000; ++round) {
    Points points(3 + random() % 9);
    for (POINT& p : points) p = {pick(2 + round % 7), pick(2 + round % 7)};
    sum.add(ImgNextHullVertex(points, random() % points.size()));
    sum.add(ImgConvexHull(std::span(points).subspan(1, points.size() - 2)));
    for (const POINT& p : points) sum.add(p.x, p.y);
  }
  EXPECT_EQ(sum.value(), 1057682331797842942U);
}

}  // namespace
