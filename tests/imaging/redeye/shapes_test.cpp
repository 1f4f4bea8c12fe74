// Openings, fills and hulls against their plain forms.
#include <gtest/gtest.h>

#include <random>

#include "imaging/redeye/hull.h"
#include "imaging/redeye/plain_shapes.h"

using namespace orvo;

namespace {

using plain::Points;

// --- Masks ---------------------------------------------------------------------------------------

// The same mask in the shipped form.
RegionMask Shipped(plain::Mask& mask) {
  RegionMask shipped;
  EXPECT_TRUE(shipped.allocate(mask.bytes.size() / 3));
  shipped.start(mask.width, mask.height);
  mask.eachInner(
      [&](int x, int y) { shipped.foreground[shipped.at(x, y)] = mask.foreground(x, y); });
  return shipped;
}

std::string Text(plain::Mask& mask) {
  std::string text;
  for (int i = 0; i < mask.width * mask.height; ++i) {
    if (i % mask.width == 0) text += '\n';
    text += mask.foreground(i % mask.width, i / mask.width) != 0 ? '#' : '.';
  }
  return text;
}
std::string Text(const RegionMask& mask) {
  plain::Mask same(mask.width, mask.height);
  for (std::size_t i = 0; i < mask.pixelCount(); ++i) same.bytes[3 * i + 1] = mask.foreground[i];
  return Text(same);
}

TEST(Masks, OpeningKeepsWhatTheElementCovers) {
  const std::string drawn =
      "\n............\n.####...#...\n.####..###..\n.####...#..."
      "\n.######.....\n.......####.\n............";
  plain::Mask mask(12, 7);
  mask.eachInner([&](int x, int y) {
    mask.foreground(x, y) = drawn[static_cast<std::size_t>(y * 13 + x + 1)] == '#' ? 1 : 0;
  });
  ASSERT_EQ(Text(mask), drawn);
  RegionMask opened = Shipped(mask);
  ImgOpenMask(opened);
  EXPECT_EQ(Text(opened),
            "\n............\n..##....#...\n.####..###..\n.####...#..."
            "\n..##........\n............\n............");
  opened = Shipped(mask);
  OpenMaskBySquares(opened);
  EXPECT_EQ(Text(opened),
            "\n............\n.####.......\n.####.......\n.####......."
            "\n.####.......\n............\n............");
}

void ExpectSameFill(int x, int y, plain::Mask& mask, RegionMask& shipped) {
  const plain::Blob expected = plain::Fill(x, y, mask);
  const FilledRegion got = ImgFillRegion(x, y, shipped);
  EXPECT_EQ(got.area, expected.area);
  EXPECT_EQ(std::pair(got.x, got.y), std::pair(expected.x, expected.y));
  const auto sides = [](const Box& b) { return std::array{b.left, b.top, b.right, b.bottom}; };
  EXPECT_EQ(sides(got.box), sides(expected.box));
  std::set<std::size_t> members(got.members.begin(), got.members.end());
  EXPECT_EQ(members.size(), got.members.size());
  for (int k = 0; k < mask.height; ++k) {
    for (int c = 0; c < mask.width; ++c) {
      ASSERT_EQ(shipped.visited[shipped.at(c, k)], mask.visited(c, k)) << c << ", " << k;
      ASSERT_EQ(members.erase(shipped.at(c, k)), mask.member(c, k)) << c << ", " << k;
      mask.member(c, k) = 0;
    }
  }
}

TEST(Masks, OpeningsAndFillsOfNoise) {
  std::mt19937 random(1);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    const int width = 1 + static_cast<int>(random() % 40);
    const int height = 1 + static_cast<int>(random() % 40);
    plain::Mask mask(width, height);
    const unsigned percent = 20 + static_cast<unsigned>(round) % 80;
    mask.eachInner([&](int x, int y) { mask.foreground(x, y) = random() % 100 < percent ? 1 : 0; });
    RegionMask shipped = Shipped(mask);
    if (round % 3 > 0) {
      plain::Open(mask, round % 3 == 1 ? plain::kCross : plain::kSquare);
      (round % 3 == 1 ? ImgOpenMask : OpenMaskBySquares)(shipped);
      ASSERT_EQ(Text(shipped), Text(mask));
    }
    // Seeds may be clear, and a later fill finds pixels that an earlier one has taken.
    for (int fill = 0; fill < 4 && width > 2 && height > 2; ++fill) {
      const int x = 1 + static_cast<int>(random() % static_cast<unsigned>(width - 2));
      const int y = 1 + static_cast<int>(random() % static_cast<unsigned>(height - 2));
      ASSERT_NO_FATAL_FAILURE(ExpectSameFill(x, y, mask, shipped));
    }
  }
}

TEST(Masks, RadiusOfArea) {
  for (const auto& [area, radius] :
       {std::pair{4, 1U}, {7, 1}, {8, 2}, {19, 2}, {20, 3}, {314, 10}}) {
    EXPECT_EQ(RadiusOfArea(area), radius) << area;
  }
  for (int radius = 1; radius < 11000; ++radius) {
    const auto least = static_cast<std::int64_t>((radius - 0.5) * (radius - 0.5) * 3.14159);
    for (std::int64_t area = std::max<std::int64_t>(least - 1, 1); area <= least + 2; ++area) {
      ASSERT_EQ(RadiusOfArea(area), static_cast<std::uint32_t>(plain::Radius(area))) << area;
    }
  }
}

// --- Hulls ---------------------------------------------------------------------------------------

std::string Text(std::span<const POINT> points) {
  std::string text;
  for (const POINT& p : points) text += std::to_string(p.x) + "," + std::to_string(p.y) + " ";
  return text;
}

// Two points in each column, sorted; some shapes have long straight edges.
Points Columns(int count, int kind, std::mt19937& random) {
  const auto pick = [&](int below) {
    return static_cast<int>(random() % static_cast<unsigned>(below));
  };
  const int reach = 1 + pick(300);
  Points points;
  for (int x = 0; x < count; ++x) {
    int a = pick(reach);
    int b = reach + pick(reach);
    if (kind == 1) a = 5, b = 5 + reach;
    if (kind == 2) a = x / 2, b = reach + 3 * x;
    if (kind == 3) {
      const double u = 2.0 * x / count - 1;
      a = static_cast<int>(reach * (1 - std::sqrt(1 - u * u)));
      b = 2 * reach - a + 1;
    }
    points.insert(points.end(), {{x + 7, a}, {x + 7, b}});
  }
  return points;
}

TEST(Hulls, OfColumns) {
  std::mt19937 random(2);
  std::map<std::size_t, int> sizes;
  for (int round = 0; round < 1200; ++round) {
    SCOPED_TRACE(round);
    Points expected = Columns(2 + round % 130, round / 3 % 4, random);
    const std::size_t first = round % 2 == 0 ? 0 : 2 * (random() % (expected.size() / 4));
    const std::size_t n = round % 2 == 0 ? expected.size() : expected.size() - 2 * first;
    Points got = expected;
    const auto count = plain::Hull(expected, first, n);
    ASSERT_TRUE(count.has_value());
    ASSERT_EQ(ImgConvexHull(std::span(got).subspan(first, n)), *count);
    ASSERT_EQ(Text(got), Text(expected));
    ++sizes[*count];

    plain::Tidy(expected);
    got.resize(ImgRemoveRepeats(got));
    ImgSortPoints(got);
    ASSERT_EQ(Text(got), Text(expected));
  }
  EXPECT_GT(sizes.size(), 20U);
}

// Any stretch and any current vertex, so that walks come from all directions.
TEST(Hulls, NextVertexFromAnywhere) {
  std::mt19937 random(3);
  int none = 0;
  for (int round = 0; round < 30000; ++round) {
    Points points(1 + random() % 9);
    const int side = 2 + round % 7;
    for (POINT& p : points) {
      p = {static_cast<int>(random() % static_cast<unsigned>(side)),
           static_cast<int>(random() % static_cast<unsigned>(side))};
    }
    const std::size_t current = random() % points.size();
    const std::size_t expected =
        plain::NextVertex(points, 0, current, points.size()).value_or(points.size());
    none += expected == points.size() ? 1 : 0;
    ASSERT_EQ(ImgNextHullVertex(points, current), expected) << Text(points) << "at " << current;
  }
  EXPECT_GT(none, 100);
}

// Lines, heaps and scattered points need not close; the walk then ends inside its stretch, with
// points of the stretch only.
TEST(Hulls, WalksThatDoNotCloseStayInside) {
  std::mt19937 random(4);
  int open = 0;
  for (int round = 0; round < 4000; ++round) {
    SCOPED_TRACE(round);
    Points all(3 + random() % 12);
    const int dx = static_cast<int>(random() % 3);
    const int dy = static_cast<int>(random() % 3);
    for (POINT& p : all) {
      const int t = static_cast<int>(random() % 6);
      p = round % 2 == 0 ? POINT{t * dx, t * dy}
                         : POINT{static_cast<int>(random() % 4), static_cast<int>(random() % 4)};
    }
    Points plainly = all;
    const Points before = all;
    const auto expected = plain::Hull(plainly, 1, all.size() - 2);
    const std::size_t count = ImgConvexHull(std::span(all).subspan(1, all.size() - 2));
    ASSERT_TRUE(count >= 1 && count <= all.size() - 2);
    if (expected) {
      ASSERT_EQ(Text(all), Text(plainly));
      continue;
    }
    ++open;
    ASSERT_TRUE(plain::SamePlace(all.front(), before.front()));
    ASSERT_TRUE(plain::SamePlace(all.back(), before.back()));
    for (std::size_t i = 1; i + 1 < all.size(); ++i) {
      ASSERT_TRUE(std::any_of(before.begin() + 1, before.end() - 1,
                              [&](const POINT& p) { return plain::SamePlace(p, all[i]); }));
    }
  }
  EXPECT_GT(open, 100);
}

}  // namespace
