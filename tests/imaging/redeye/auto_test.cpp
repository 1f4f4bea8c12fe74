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

// Skin all over, about the least size that counts; twelve patches, of which ten are taken; faces;
// and long regions, whose edges are thinned, with slopes, arcs and steps.
TEST(SkinRegions, FacesAndEdgesOfAllKinds) {
  CheckSum sum;
  for (int i = 0; i < 25; ++i) {
    Picture picture(12 + i % 5, 22 + i / 5, 1);
    picture.fill(faces::kSkin);
    AddRegions(picture, 2, sum);
  }
  Picture patches(250, 120, 5);
  for (int i = 0; i < 12; ++i) {
    const int x = 5 + i % 6 * 40;
    patches.rectangle(x, 5 + i / 6 * 60, x + 30, 55 + i / 6 * 60, faces::kSkin, 5);
  }
  AddRegions(patches, 1, sum);
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
  EXPECT_EQ(sum.value(), 10533096771509448023U);
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

// On skin a shadow, a line of white so many columns beside, and a pupil of two bars: one of some
// width, one of some height, both equally thick.
TEST(EyesInRegion, PlaceAndShapeOfThePupilAndWhiteBeside) {
  CheckSum sum;
  const auto add = [&](int x, int y, int wide, int tall, int thick, int beside, int reach) {
    Picture picture(100, 120, 1);
    picture.fill(faces::kSkin, 5);
    picture.rectangle(x - 10, y + 8, x + 10, y + 14, faces::kGray);
    picture.rectangle(x + beside, y - reach, x + beside, y, faces::kWhite);
    const auto bar = [&](int w, int h) {
      const int left = x - w / 2;
      picture.rectangle(left, y - h / 2, left + w - 1, y - h / 2 + h - 1, faces::kRed);
    };
    bar(wide, thick);
    bar(thick, tall);
    sum.add(EyesOf(PlanesOf(picture)));
  };
  for (int i = 0; i < 32 * 11; ++i) add(50, 60, 9, 9, 9, i % 32 - 18, i / 32);
  for (int i = 3; i < 20; ++i) {
    for (int k = 3; k < 20; ++k) {
      add(50, 60, i, k, 3, 14, 12);
      add(50, 60, i, k, std::min(i, k), 14, 12);
    }
  }
  for (int x = 0; x < 100; ++x) add(x, 60, 7, 7, 7, x < 50 ? 6 : -6, 6);
  for (int y = 0; y < 120; ++y) add(50, y, 7, 7, 7, 6, 6);
  EXPECT_EQ(sum.value(), 17474231058794536568U);
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

// Of luma, and of each chroma.
TEST(EyesInRegion, LeastSpread) {
  CheckSum sum;
  for (int i = 0; i < 10; ++i) {
    sum.add(EyesOfFaint(37 + i, 9, 20, 40), EyesOfFaint(70, 3, 10 + i, 40),
            EyesOfFaint(70, 9, 20, 14 + i));
  }
  for (int v = -5; v < 70000; ++v) {
    sum.add(ImgApproxSqrt(v, 1), ImgApproxSqrt(v, 10), ImgApproxSqrt(v, 300));
  }
  EXPECT_EQ(sum.value(), 11537617616856879383U);
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

int RunOn(const Picture& picture, const std::uint8_t* source, std::uint8_t* target) {
  return ImgAutoRedEye(source, target, picture.image.width, picture.image.height);
}

TEST(AutoRedEye, CrowdsOfAllSizes) {
  CheckSum sum;
  const auto add = [&](const Picture& picture) {
    sum.addBoth(picture.bytes, [&](const std::uint8_t* from, std::uint8_t* to) {
      return RunOn(picture, from, to);
    });
  };
  for (int seed = 0; seed < 200; ++seed) {
    const int side = seed % 4 == 3 ? 520 : 60;
    add(faces::Crowd(side + seed * 37 % 300, side + seed * 53 % 200, static_cast<unsigned>(seed)));
  }
  add(faces::Crowd(2600, 1800, 40));
  for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {3, 40}, {511, 1}, {4, 2600}}) {
    Picture picture(width, height, 1);
    picture.fill(faces::kSkin);
    add(picture);
  }
  EXPECT_EQ(sum.value(), 1399600164073025869U);
}

// Pupils turn dark and gray; without memory the target is a copy.
TEST(AutoRedEye, PortraitsWithAndWithoutMemory) {
  for (const unsigned k : {1U, 3U}) {
    Picture picture(static_cast<int>(250 * k), static_cast<int>(300 * k), 3);
    picture.ellipse(125 * k, 150 * k, 100 * k, 130 * k, faces::kSkin, 8);
    for (const unsigned x : {85 * k, 165 * k}) {
      picture.ellipse(x, 190 * k, 31 * k, 16 * k, faces::kWhite);
      picture.ellipse(x, 190 * k, 9 * k, 9 * k, faces::kRed, 8);
    }
    const std::size_t blocks = PlatformLiveBlocks();
    plain::Bytes target(picture.bytes.size());
    int code = kImgNoMemory;
    for (int n = 1; code != kImgDone; ++n) {
      PlatformFailAllocation(n);
      code = RunOn(picture, picture.bytes.data(), target.data());
      PlatformFailAllocation(0);
      EXPECT_EQ(PlatformLiveBlocks(), blocks);
      ASSERT_TRUE(n < 20 && (code == kImgNoMemory || (code == kImgDone && n > 6)));
      EXPECT_EQ(target == picture.bytes, code == kImgNoMemory);
    }
    for (const unsigned x : {85 * k, 165 * k}) {
      const std::uint8_t* const pupil = &target[picture.image.at(x, 190 * k)];
      EXPECT_TRUE(pupil[2] < 90 && pupil[0] == pupil[2]);
    }
  }
}

}  // namespace
