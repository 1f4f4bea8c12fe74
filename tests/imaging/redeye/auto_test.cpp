// The automatic run, step by step and as a whole, on drawn faces.
#include "imaging/redeye/auto_red_eye.h"
#include "imaging/redeye/decisions.h"
#include "imaging/redeye/eyes.h"
#include "imaging/redeye/faces.h"
#include "imaging/redeye/hull.h"
#include "imaging/redeye/skin_regions.h"
#include "imaging/results.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using faces::Picture;
using plain::CheckSum;

// The planes of a picture, in memory that the next call takes.
PlaneView PlanesOf(const Picture& picture) {
  static ColorPlanes planes;
  EXPECT_TRUE(planes.allocate(static_cast<std::size_t>(picture.w() * picture.h())));
  const PlaneView view = planes.view(picture.w(), picture.h());
  for (std::uint32_t y = 0; y < picture.image.height; ++y) {
    FillPlaneRow(&picture.bytes[picture.image.at(0, y)], picture.w(), 1, view,
                 static_cast<std::int32_t>(y));
  }
  return view;
}

// --- Skin regions --------------------------------------------------------------------------------

void AddRegions(const Picture& picture, int reduction, CheckSum& sum) {
  RedEyeScan scan{};
  const auto count =
      ImgFindSkinRegions(scan, PlanesOf(picture), picture.w(), picture.h(), reduction);
  sum.add(count.value(), scan.reduction);
  for (int i = 0; i < *count; ++i) {
    sum.addSides(scan.regionRects[i]);
    for (int k = 0; k < scan.outlineCounts[i]; ++k) {
      sum.add(scan.outlines[i][k].x, scan.outlines[i][k].y);
    }
  }
}

// The first pixel of a region is left out of its outline, which cuts that corner.
TEST(SkinRegions, SkinAllOver) {
  for (const auto& [width, height, count] :
       {std::array{14, 24, 1}, {13, 24, 0}, {14, 23, 0}, {40, 50, 1}}) {
    Picture picture(width, height, 1);
    picture.fill(faces::kSkin);
    RedEyeScan scan{};
    ASSERT_EQ(ImgFindSkinRegions(scan, PlanesOf(picture), width, height, 2), count);
    if (width < 40) continue;
    const std::array<int, 2> outline[] = {{0, 2}, {0, 94}, {74, 94}, {74, 0}, {2, 0}};
    ASSERT_EQ(scan.outlineCounts[0], 5);
    for (std::size_t k = 0; k < 5; ++k) {
      EXPECT_EQ((std::array{scan.outlines[0][k].x, scan.outlines[0][k].y}), outline[k]);
    }
  }
}

// Faces; and long regions, whose edges are thinned, with slopes, arcs and steps.
TEST(SkinRegions, FacesAndEdgesOfAllKinds) {
  CheckSum sum;
  for (int seed = 0; seed < 120; ++seed) {
    AddRegions(faces::Crowd(1 + seed * 37 % 511, 1 + seed * 91 % 511, static_cast<unsigned>(seed)),
               1 + seed % 9, sum);
  }
  for (int round = 0; round < 200; ++round) {
    Picture picture(200 + round * 37 % 312, 160, static_cast<unsigned>(round));
    picture.fill(faces::kGray);
    const int w = picture.w();
    const int reach = picture.pick(1, 60);
    for (int x = 0; x < w; ++x) {
      const int u = 2 * x - w;
      const int tops[] = {reach * x / w, reach * u / w * u / w, x / 20 % 2, picture.pick(0, 3)};
      const int top = tops[round % 4];
      picture.rectangle(x, top, x, 159 - (round % 3 == 0 ? top : reach - reach * x / w),
                        faces::kSkin);
    }
    AddRegions(picture, 1, sum);
  }
  EXPECT_EQ(sum.value(), 6721855894432037273U);
}

// --- Eyes ----------------------------------------------------------------------------------------

// Rectangles anywhere on drawn faces, so that eyes lie at their edges too, and any reduction. What
// was reduced in the planes stays there, whatever becomes of it.
TEST(EyesInRegion, RectanglesAndPlanes) {
  EyeMasks masks;  // one after the other in the same memory
  ASSERT_TRUE(masks.allocate(360 * 360));
  CheckSum sum;
  for (int seed = 0; seed < 300; ++seed) {
    Picture picture =
        faces::Crowd(60 + seed * 37 % 300, 60 + seed * 53 % 300, static_cast<unsigned>(seed));
    const int left = picture.pick(0, picture.w() / 3);
    const int top = picture.pick(0, picture.h() / 3);
    RedEyeScan scan{};
    Box& rect = scan.regionRects[3];
    rect = {left, top, picture.pick(left + picture.w() / 2, picture.w() - 1),
            picture.pick(top + picture.h() / 2, picture.h() - 1)};
    scan.reduction = 1 + seed % 7;
    if (seed % 3 == 0) {  // a pupil whose box is cut off at a side
      const int across = rect.width() / 15;
      const int x = seed % 2 == 0 ? left + 6 : rect.right - 6 - across;
      const int y = (rect.top + rect.bottom) / 2;
      picture.ellipse(x + across / 2.0, y, 3 * across, across, faces::kWhite, 8);
      picture.rectangle(x, y - across, x + across, y + across - 1, faces::kRed);
    }
    const PlaneView planes = PlanesOf(picture);
    const int count = ImgFindEyesInRegion(scan, planes.from(left, top), 3, masks);
    for (int i = 0; i < count; ++i) sum.addSides(scan.eyeRects[i]);
    sum.addAll({planes.y, 3 * planes.at(0, picture.h())});
  }
  EXPECT_EQ(sum.value(), 11754634100476435151U);
}

int EyesOf(const PlaneView& planes) {
  RedEyeScan scan{};
  scan.regionRects[0] = {0, 0, 99, 119};
  EyeMasks masks;
  EXPECT_TRUE(masks.allocate(100 * 120));
  return ImgFindEyesInRegion(scan, planes, 0, masks);
}

// Skin with a shadow, white and red, told from the middle of the pupil.
int EyesOf(const Box& white, const std::vector<Box>& red) {
  Picture picture(100, 120, 1);
  picture.fill(faces::kSkin, 5);
  const auto draw = [&](const Box& b, const faces::Rgb& color) {
    picture.rectangle(50 + b.left, 60 + b.top, 50 + b.right, 60 + b.bottom, color);
  };
  draw({-10, 8, 10, 14}, faces::kGray);
  draw(white, faces::kWhite);
  if (red.empty()) picture.ellipse(50, 60, 5, 5, faces::kRed);
  for (const Box& part : red) draw(part, faces::kRed);
  return EyesOf(PlanesOf(picture));
}

// The sides of a disk of radius 5 differ by a column; of a pupil neither side is twice the other,
// and it fills more than a third of its box.
TEST(EyesInRegion, WhiteBesideAndShapeOfThePupil) {
  const std::pair<Box, int> patches[] = {
      {{-6, -5, -6, 5}, 1},  {{-5, -5, -5, 5}, 0},  {{5, -5, 5, 5}, 1},  {{4, -5, 4, 5}, 0},
      {{10, -5, 14, -5}, 1}, {{10, -6, 14, -6}, 0}, {{9, -5, 12, -5}, 0}};
  for (const auto& [white, count] : patches) {
    EXPECT_EQ(EyesOf(white, {}), count) << white.left << ", " << white.top;
  }
  const Box white = {13, -4, 15, 4};
  EXPECT_EQ(EyesOf(white, {{-4, -2, 6, 3}}), 0);
  EXPECT_EQ(EyesOf(white, {{-4, -2, 5, 3}}), 1);
  EXPECT_EQ(EyesOf(white, {{-2, -4, 3, 6}}), 0);
  EXPECT_EQ(EyesOf(white, {{-2, -4, 3, 5}}), 1);
  EXPECT_EQ(EyesOf(white, {{-7, -1, 8, 1}, {-1, -8, 1, 9}}), 0);
  EXPECT_EQ(EyesOf(white, {{-7, -1, 8, 1}, {-1, -8, 1, 8}}), 1);
}

// A pupil of 13 pixels; its square of 169 has stripes of two lumas, a few bluer pixels and a redder
// pupil, and no more. The white lies just outside.
int EyesOfFaint(int stripes, int bluer, int blue, int red) {
  const PlaneView planes = PlanesOf(Picture(100, 120, 1));
  const auto set = [&](int x, int y, int luma, int cb, int cr) {
    planes.y[planes.at(x, y)] = static_cast<std::uint8_t>(luma);
    planes.cb[planes.at(x, y)] = static_cast<std::uint8_t>(cb);
    planes.cr[planes.at(x, y)] = static_cast<std::uint8_t>(cr);
  };
  for (int y = 0; y < 120; ++y) {
    for (int x = 0; x < 100; ++x) {
      const int distance = (x - 50) * (x - 50) + (y - 60) * (y - 60);
      const int cb = y == 55 && x >= 45 && x < 45 + bluer ? 120 + blue : 120;
      set(x, y, distance <= 4 ? 128 : 110 + x % 2 * stripes, cb, distance <= 4 ? 140 + red : 140);
    }
    set(57, y, 200, 120, 130);
  }
  return EyesOf(planes);
}

// Three pixels bluer by 15 are just enough, as the divisor is one less than 169.
TEST(EyesInRegion, LeastSpread) {
  EXPECT_EQ(EyesOfFaint(41, 9, 20, 40), 0);
  EXPECT_EQ(EyesOfFaint(42, 9, 20, 40), 1);
  EXPECT_EQ(EyesOfFaint(70, 3, 14, 40), 0);
  EXPECT_EQ(EyesOfFaint(70, 3, 15, 40), 1);
  EXPECT_EQ(EyesOfFaint(70, 9, 20, 18), 0);
  EXPECT_EQ(EyesOfFaint(70, 9, 20, 19), 1);
}

TEST(EyesInRegion, ApproximateRoots) {
  const std::pair<int, int> examples[] = {{-1, 1}, {0, 1},    {20, 4},   {23, 4},   {24, 5},
                                          {60, 8}, {100, 10}, {144, 12}, {380, 19}, {400, 20}};
  for (const auto& [v, root] : examples) EXPECT_EQ(ImgApproxSqrt(v, 10), root) << v;
  CheckSum sum;
  for (int v = 0; v < 70000; ++v) sum.add(ImgApproxSqrt(v, 1), ImgApproxSqrt(v, 300));
  EXPECT_EQ(sum.value(), 325708182921197630U);
}

// --- Decisions -----------------------------------------------------------------------------------

// One region with the hull of scattered points, and four eyes mostly on one level.
RedEyeScan RandomScan(Picture& dice) {
  RedEyeScan scan{};
  scan.reduction = dice.pick(1, 12);
  const int fw = dice.pick(40, 300);
  const int fh = fw * dice.pick(18, 44) / 20;
  scan.regionRects[2] = {11, 22, 10 + fw, 21 + fh};
  std::vector<POINT> points;
  const int skipped = dice.pick(0, fw / 3);  // columns without a mark
  for (int i = dice.pick(4, 60); i > 0; --i) {
    points.push_back({dice.pick(skipped, fw - 1), dice.pick(0, fh - 1)});
  }
  ImgSortPoints(points);
  points.resize(std::min(ImgConvexHull(points), std::size_t{kMostOutlineVertices}));
  scan.outlineCounts[2] = static_cast<int>(points.size());
  std::copy(points.begin(), points.end(), &scan.outlines[2][0]);
  const int level = dice.pick(22, 21 + fh);
  for (Box& eye : scan.eyeRects) {
    const int r = dice.pick(2, 6) * (dice.chance(50) ? 1 : 2);
    const int x = dice.pick(11, 10 + fw);
    const int y = dice.chance(33) ? dice.pick(22, 21 + fh) : level + dice.pick(-3, 3);
    eye = {x - r, y - r, x + r, y + r};
  }
  return scan;
}

TEST(Decisions, OfRandomScans) {
  Picture dice(1, 1, 8);
  CheckSum sum;
  for (int round = 0; round < 20000; ++round) {
    const RedEyeScan before = RandomScan(dice);
    for (const bool inOutline : {true, false}) {
      RedEyeScan scan = before;
      const int kept = inOutline ? ImgCheckEyesInOutline(scan, 2, round % 5)
                                 : KeepBelievableEyes(scan, 2, round % 5);
      sum.add(kept);
      for (int i = 0; i < kept; ++i) sum.addSides(scan.eyeRects[i]);
    }
  }
  EXPECT_EQ(sum.value(), 16734495037644883564U);
}

// --- The whole run -------------------------------------------------------------------------------

int RunOn(const Picture& picture, const std::uint8_t* source, plain::Bytes& target) {
  return ImgAutoRedEye(source, target.data(), picture.image.width, picture.image.height);
}

// Adds what both forms write; gives the code.
int AddRun(const Picture& picture, CheckSum& sum) {
  plain::Bytes apart(picture.bytes.size());
  plain::Bytes same = picture.bytes;
  const int code = RunOn(picture, picture.bytes.data(), apart);
  EXPECT_EQ(code == kImgNotFound, apart == picture.bytes) << picture.image.name();
  sum.add(code, RunOn(picture, same.data(), same));
  sum.addAll(apart);
  sum.addAll(same);
  return code;
}

// One face of 200 x 260 with two eyes, all of it times `k`.
Picture Portrait(int k) {
  Picture picture(250 * k, 300 * k, 3);
  picture.ellipse(125 * k, 150 * k, 100 * k, 130 * k, faces::kSkin, 8);
  for (const int x : {85, 165}) picture.eye(x * k, 190 * k, 9 * k);
  return picture;
}

// Twelve small patches of skin; ten are looked at.
Picture Patches(int k) {
  Picture picture(250 * k, 120 * k, 5);
  for (int i = 0; i < 12; ++i) {
    const int x = (5 + i % 6 * 40) * k;
    const int y = (5 + i / 6 * 60) * k;
    picture.rectangle(x, y, x + 30 * k, y + 50 * k, faces::kSkin, 5);
    for (const int eye : {9, 21}) picture.eye(x + eye * k, y + 30 * k, 1.2 * k);
  }
  return picture;
}

TEST(AutoRedEye, CrowdsOfAllSizes) {
  CheckSum sum;
  for (int seed = 0; seed < 200; ++seed) {
    const int side = seed % 4 == 3 ? 520 : 60;
    AddRun(
        faces::Crowd(side + seed * 37 % 300, side + seed * 53 % 200, static_cast<unsigned>(seed)),
        sum);
  }
  for (const int k : {1, 3}) EXPECT_EQ(AddRun(Patches(k), sum), kImgDone);
  AddRun(faces::Crowd(2600, 1800, 40), sum);
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {3, 40}, {511, 1}, {4, 2600}}) {
    Picture picture(width, height, 1);
    picture.fill(faces::kSkin);
    EXPECT_EQ(AddRun(picture, sum), kImgNotFound);
  }
  EXPECT_EQ(sum.value(), 750752036363528457U);
}

// Pupils turn dark and gray; without memory the target is a copy.
TEST(AutoRedEye, PortraitsWithAndWithoutMemory) {
  for (const int k : {1, 3}) {
    const Picture picture = Portrait(k);
    const std::size_t blocks = PlatformLiveBlocks();
    plain::Bytes target(picture.bytes.size());
    int code = kImgNoMemory;
    for (int n = 1; code != kImgDone; ++n) {
      PlatformFailAllocation(n);
      code = RunOn(picture, picture.bytes.data(), target);
      PlatformFailAllocation(0);
      EXPECT_EQ(PlatformLiveBlocks(), blocks);
      ASSERT_TRUE(n < 20 && (code == kImgNoMemory || (code == kImgDone && n > 6)));
      EXPECT_EQ(target == picture.bytes, code == kImgNoMemory);
    }
    for (const int x : {85, 165}) {
      const std::uint8_t* const pupil = &target[picture.image.at(
          static_cast<std::uint32_t>(x * k), static_cast<std::uint32_t>(190 * k))];
      EXPECT_TRUE(pupil[2] < 90 && pupil[0] == pupil[2]);
    }
  }
}

}  // namespace
