// The steps of the automatic run against their plain references: skin regions, eyes in one of them,
// decisions.
#include <gtest/gtest.h>

#include "imaging/redeye/build_kind.h"
#include "imaging/redeye/decisions.h"
#include "imaging/redeye/eyes.h"
#include "imaging/redeye/faces.h"
#include "imaging/redeye/plain_auto.h"
#include "imaging/redeye/skin_regions.h"

using namespace orvo;

namespace {

using faces::Picture;

std::string Text(const Box& b) {
  return testing::PrintToString(std::array{b.left, b.top, b.right, b.bottom});
}

std::string Text(const RedEyeScan& scan, int regions) {
  std::string text = std::to_string(scan.reduction);
  for (int i = 0; i < regions; ++i) {
    text += Text(scan.regionRects[i]);
    for (int k = 0; k < scan.outlineCounts[i]; ++k) {
      text += testing::PrintToString(std::pair(scan.outlines[i][k].x, scan.outlines[i][k].y));
    }
  }
  return text;
}

std::vector<std::string> Eyes(const RedEyeScan& scan, int count) {
  std::vector<std::string> eyes;
  for (int i = 0; i < count; ++i) eyes.push_back(Text(scan.eyeRects[i]));
  return eyes;
}

PlaneView ViewOf(plain::Planes& planes) {
  std::uint8_t* const bytes = planes.bytes.data();
  const std::size_t plane = planes.bytes.size() / 3;
  return {bytes, bytes + plane, bytes + 2 * plane, static_cast<std::size_t>(planes.width)};
}

plain::Planes PlanesOf(const Picture& picture) {
  plain::Planes planes(picture.image.width, picture.image.height);
  for (int y = 0; y < picture.h(); ++y) {
    for (int x = 0; x < picture.w(); ++x) {
      planes.set(x, y, plain::ColorAt(picture.bytes.data(), picture.image, x, y));
    }
  }
  return planes;
}

TEST(SkinRegions, RectanglesAndOutlines) {
  for (int seed = 0; seed < (kSanitized ? 40 : 250); ++seed) {
    plain::Planes planes = PlanesOf(
        faces::Crowd(1 + seed * 37 % 511, 1 + seed * 91 % 511, static_cast<unsigned>(seed)));
    RedEyeScan expected{};
    RedEyeScan got{};
    const int s = 1 + seed % 9;
    const int count = plain::FindRegions(expected, planes, s);
    ASSERT_EQ(ImgFindSkinRegions(got, ViewOf(planes), planes.width, planes.height, s), count);
    ASSERT_EQ(Text(got, count), Text(expected, count)) << seed;
  }
}

// The first pixel of a region is left out of its outline, which cuts that corner.
TEST(SkinRegions, SkinAllOver) {
  Picture picture(40, 50, 1);
  picture.fill(faces::kSkin);
  plain::Planes planes = PlanesOf(picture);
  RedEyeScan scan{};
  ASSERT_EQ(ImgFindSkinRegions(scan, ViewOf(planes), 40, 50, 2), 1);
  EXPECT_EQ(Text(scan, 1), "2{ 2, 2, 76, 96 }(0, 2)(0, 94)(74, 94)(74, 0)(2, 0)");
}

// Long regions, whose edges are thinned, with slopes, arcs and steps; and around the least width
// and height of a region.
TEST(SkinRegions, EdgesOfAllKinds) {
  std::mt19937 random(5);
  const auto pick = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  for (int round = 0; round < (kSanitized ? 40 : 300); ++round) {
    const bool isLong = round % 3 > 0;
    const int width = isLong ? pick(200, 511) : pick(10, 15);
    const int height = isLong ? 160 : pick(20, 26);
    const int reach = isLong ? pick(1, 60) : 0;
    const int kind = pick(0, 3);
    plain::Planes planes(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
    for (int x = 0; x < width; ++x) {
      const double u = 2.0 * x / width - 1;
      const int a = kind == 0   ? reach * x / width
                    : kind == 1 ? static_cast<int>(reach * u * u)
                    : kind == 2 ? x / pick(20, 21) % 2
                                : pick(0, 3);
      const int b = height - 1 - (round % 2 == 0 ? a : reach - reach * x / width);
      for (int y = a; y <= b; ++y) planes.set(x, y, {200, 109, 152});
    }
    RedEyeScan expected{};
    RedEyeScan got{};
    const int count = plain::FindRegions(expected, planes, 1);
    ASSERT_EQ(ImgFindSkinRegions(got, ViewOf(planes), width, height, 1), count) << round;
    ASSERT_EQ(Text(got, count), Text(expected, count)) << round;
  }
}

// Rectangles anywhere on drawn faces, so that eyes lie at their edges too, and any reduction. What
// was reduced in the planes stays there, whatever becomes of it.
TEST(EyesInRegion, RectanglesAndPlanes) {
  EyeMasks masks;  // one after the other in the same memory
  ASSERT_TRUE(masks.allocate(360 * 360));
  int eyes = 0;
  for (int seed = 0; seed < (kSanitized ? 60 : 500); ++seed) {
    Picture picture =
        faces::Crowd(60 + seed * 37 % 300, 60 + seed * 53 % 300, static_cast<unsigned>(seed));
    const int left = picture.pick(0, picture.w() / 3);
    const int top = picture.pick(0, picture.h() / 3);
    RedEyeScan scan{};
    scan.regionRects[3] = {left, top, picture.pick(left + picture.w() / 2, picture.w() - 1),
                           picture.pick(top + picture.h() / 2, picture.h() - 1)};
    scan.reduction = 1 + seed % 7;
    RedEyeScan expected = scan;
    const Box& rect = scan.regionRects[3];
    if (seed % 3 == 0) {  // a pupil whose box is cut off at a side
      const int across = rect.width() / 15;
      const int x = seed % 2 == 0 ? left + 6 : rect.right - 6 - across;
      const int y = (rect.top + rect.bottom) / 2;
      picture.ellipse(x + across / 2.0, y, 3 * across, across, faces::kWhite, 8);
      picture.rectangle(x, y - across, x + across, y + across - 1, faces::kRed);
    }
    plain::Planes plainly = PlanesOf(picture);
    plain::Planes planes = plainly;
    const int count = plain::EyeSearch(expected, plainly, 3).run();
    const int got = ImgFindEyesInRegion(scan, ViewOf(planes).from(left, top), 3, masks);
    ASSERT_EQ(Eyes(scan, got), Eyes(expected, count)) << seed;
    ASSERT_TRUE(planes.bytes == plainly.bytes) << seed;
    eyes += count;
  }
  EXPECT_GT(eyes, kSanitized ? 10 : 100);
  EXPECT_GT(plain::decisions["box cut"][1], kSanitized ? 1 : 10);
}

int EyesOf(plain::Planes planes) {
  RedEyeScan scan{};
  scan.regionRects[0] = {0, 0, planes.width - 1, planes.height - 1};
  EyeMasks masks;
  EXPECT_TRUE(masks.allocate(planes.bytes.size() / 3));
  return ImgFindEyesInRegion(scan, ViewOf(planes), 0, masks);
}

// Skin with a shadow, white and red, told from the middle of the pupil.
int EyesOf(const Box& white, const std::vector<Box>& red) {
  Picture picture(100, 120, 1);
  picture.fill(faces::kSkin, 5);
  const auto draw = [&](const Box& b, const faces::Rgb& color) {
    picture.rectangle(50 + b.left, 60 + b.top, 50 + b.right, 60 + b.bottom, color);
  };
  draw({-10, 8, 10, 14}, {90, 90, 90});
  draw(white, faces::kWhite);
  if (red.empty()) picture.ellipse(50, 60, 5, 5, faces::kRed);
  for (const Box& part : red) draw(part, faces::kRed);
  return EyesOf(PlanesOf(picture));
}

// The sides of a disk of radius 5 differ by a column.
TEST(EyesInRegion, WhiteBesideThePupil) {
  const std::pair<Box, int> patches[] = {
      {{-6, -5, -6, 5}, 1},  {{-5, -5, -5, 5}, 0}, {{-20, -5, -20, 5}, 1}, {{-21, -5, -21, 5}, 0},
      {{5, -5, 5, 5}, 1},    {{4, -5, 4, 5}, 0},   {{19, -5, 19, 5}, 1},   {{20, -5, 20, 5}, 0},
      {{10, -5, 14, -5}, 1}, {{10, 5, 14, 5}, 1},  {{9, -5, 12, -5}, 0},   {{10, 6, 14, 6}, 0},
      {{10, -6, 14, -6}, 0},
  };
  for (const auto& [white, count] : patches) EXPECT_EQ(EyesOf(white, {}), count) << Text(white);
}

TEST(EyesInRegion, ShapeOfThePupil) {
  const Box white = {13, -4, 15, 4};
  EXPECT_EQ(EyesOf(white, {{-4, -2, 6, 3}}), 0);  // one side twice the other
  EXPECT_EQ(EyesOf(white, {{-4, -2, 5, 3}}), 1);
  EXPECT_EQ(EyesOf(white, {{-2, -4, 3, 6}}), 0);
  EXPECT_EQ(EyesOf(white, {{-2, -4, 3, 5}}), 1);
  EXPECT_EQ(EyesOf(white, {{-7, -1, 8, 1}, {-1, -8, 1, 9}}), 0);  // a third of 15 x 17
  EXPECT_EQ(EyesOf(white, {{-7, -1, 8, 1}, {-1, -8, 1, 8}}), 1);
}

// A pupil of 13 pixels; its square of 169 has stripes of two lumas, a few bluer pixels and a redder
// pupil, and no more. The white lies just outside.
plain::Planes Faint(int stripes, int bluer, int blue, int red) {
  plain::Planes planes(100, 120);
  const auto put = [&](int x, int y, int luma, int cb, int cr) {
    planes.set(x, y,
               {static_cast<std::uint8_t>(luma), static_cast<std::uint8_t>(cb),
                static_cast<std::uint8_t>(cr)});
  };
  for (int y = 0; y < 120; ++y) {
    for (int x = 0; x < 100; ++x) put(x, y, 110 + x % 2 * stripes, 120, 140);
    put(57, y, 200, 120, 130);
  }
  for (int i = 0; i < 25; ++i) {
    const int x = i % 5 - 2;
    const int y = i / 5 - 2;
    if (x * x + y * y <= 4) put(50 + x, 60 + y, 128, 120, 140 + red);
  }
  for (int x = 0; x < bluer; ++x)
    planes.plane(45 + x, 55, 1) = static_cast<std::uint8_t>(120 + blue);
  return planes;
}

// Three pixels bluer by 15 are just enough, as the divisor is one less than 169.
TEST(EyesInRegion, LeastSpread) {
  const auto expectBoth = [](auto planesOf) {
    std::set<int> counts;
    for (int i = 18; i < 60; ++i) {
      plain::Planes planes = planesOf(i);
      RedEyeScan scan{};
      scan.regionRects[0] = {0, 0, 99, 119};
      const int count = EyesOf(planes);
      EXPECT_EQ(count, plain::EyeSearch(scan, planes, 0).run()) << i;
      counts.insert(count);
    }
    EXPECT_EQ(counts.size(), 2U);
  };
  expectBoth([](int i) { return Faint(i, 9, 20, 40); });
  expectBoth([](int i) { return Faint(70, 3, i / 2, 40); });
  expectBoth([](int i) { return Faint(70, 9, 20, i); });
}

TEST(EyesInRegion, ApproximateRoots) {
  const std::pair<int, int> examples[] = {{-1, 1},   {0, 1},    {20, 4},   {23, 4},
                                          {24, 5},   {60, 8},   {100, 10}, {144, 12},
                                          {380, 19}, {399, 19}, {400, 20}};
  for (const auto& [v, root] : examples) EXPECT_EQ(ImgApproxSqrt(v, 10), root) << v;
  for (int v = -5; v < 70000; ++v) {
    for (const int g : {1, 2, 10, 300}) ASSERT_EQ(ImgApproxSqrt(v, g), plain::ApproxSqrt(v, g));
  }
}

// One region with the hull of a leaning ellipse, and four eyes mostly on one level.
RedEyeScan RandomScan(std::mt19937& random) {
  const auto pick = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  RedEyeScan scan{};
  scan.reduction = pick(1, 12);
  const int fw = pick(40, 300);
  const int fh = fw * pick(18, 44) / 20;
  scan.regionRects[2] = {11, 22, 10 + fw, 21 + fh};
  plain::Points points;
  const double lean = pick(0, 9) / 10.0;
  for (double turn = 0; turn < 6.28; turn += 6.28 / pick(4, 60)) {
    points.push_back({static_cast<int>((fw - 1) * (0.5 + 0.5 * std::cos(turn))),
                      static_cast<int>((fh - 1) * (0.5 + 0.5 * std::sin(turn + lean)))});
  }
  plain::Tidy(points);
  const std::size_t count = plain::Hull(points, 0, points.size()).value_or(3);
  scan.outlineCounts[2] = static_cast<int>(std::min(count, std::size_t{19}));
  std::copy_n(points.begin(), scan.outlineCounts[2], &scan.outlines[2][0]);
  const int level = pick(22, 21 + fh);
  for (Box& eye : scan.eyeRects) {
    const int r = pick(2, 6) * pick(1, 2);
    const int x = pick(11, 10 + fw);
    const int y =
        pick(0, 2) == 0 ? pick(22, 21 + fh) : std::clamp(level + pick(-3, 3), 22, 21 + fh);
    eye = {std::max(x - r, 11), std::max(y - r, 22), std::min(x + r, 10 + fw),
           std::min(y + r, 21 + fh)};
  }
  return scan;
}

TEST(Decisions, OfRandomScans) {
  std::mt19937 random(8);
  for (int round = 0; round < (kSanitized ? 4000 : 20000); ++round) {
    const RedEyeScan scan = RandomScan(random);
    const int m = round % 5;
    RedEyeScan expected = scan;
    RedEyeScan got = scan;
    int count = plain::CheckInOutline(expected, 2, m);
    ASSERT_EQ(ImgCheckEyesInOutline(got, 2, m), count) << round;
    ASSERT_EQ(Eyes(got, count), Eyes(expected, count)) << round;
    expected = got = scan;
    count = plain::Decide(expected, 2, m);
    ASSERT_EQ(KeepBelievableEyes(got, 2, m), count) << round;
    const std::vector<std::string> kept = Eyes(got, count);
    const std::vector<std::string> keptPlainly = Eyes(expected, count);
    ASSERT_TRUE(std::is_permutation(kept.begin(), kept.end(), keptPlainly.begin())) << round;
  }
}

TEST(Decisions, LimitsOfAPair) {
  RedEyeScan scan{};
  scan.eyeRects[0] = {95, 45, 105, 55};
  for (const auto& [other, pairs] : {std::pair{Box{125, 55, 135, 65}, true},
                                     {{125, 56, 135, 66}, false},
                                     {{190, 40, 210, 60}, false},
                                     {{190, 40, 209, 59}, true}}) {
    scan.eyeRects[1] = other;
    EXPECT_EQ(ImgIsEyePair(scan, 0, 1), pairs) << Text(other);
    EXPECT_EQ(ImgIsEyePair(scan, 1, 0), pairs) << Text(other);
  }
}

}  // namespace
