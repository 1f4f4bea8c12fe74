// Search and reduction at a point.
#include "imaging/redeye/faces.h"
#include "imaging/redeye/reduce.h"
#include "imaging/redeye/search.h"
#include "imaging/results.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using faces::Picture;

constexpr std::uint32_t kHuge = 0xFFFFFFFF;

using Outcome = std::array<std::uint32_t, 4>;  // code, x, y, radius

Outcome Searched(const Picture& picture, std::uint32_t x, std::uint32_t y) {
  PupilCircle found{};
  const int code = ImgSearchRedEyeRegion(picture.bytes.data(), picture.image.width,
                                         picture.image.height, x, y, &found);
  return {static_cast<std::uint32_t>(code), found.x, found.y, found.radius};
}

// Disks from the least size on, with and without a catch-light; nothing where there is none.
TEST(Search, FindsCentreAndRadius) {
  for (const std::uint32_t radius : {2U, 3U, 9U, 20U}) {
    Picture picture(120, 130, 1);
    picture.fill(faces::kGray);
    picture.ellipse(50, 60, radius, radius, faces::kRed);
    for (const std::uint32_t x : {50U, 51U}) {
      const Outcome found = {kImgDone, 50, 60, radius};
      EXPECT_EQ(Searched(picture, x, 60), radius > 2 ? found : (Outcome{kImgNotFound, x, 60, 2}));
    }
    picture.dot(50, 60, faces::kWhite);
    EXPECT_EQ(Searched(picture, 50, 60)[3], radius);
    EXPECT_EQ(Searched(picture, 20, 40), (Outcome{kImgNotFound, 20, 40, 2}));
    EXPECT_EQ(Searched(picture, 120, 40), (Outcome{kImgNotFound, 120, 40, 0}));
    EXPECT_EQ(Searched(picture, kHuge, kHuge), (Outcome{kImgNotFound, kHuge, kHuge, 0}));
  }
}

// The reach doubles at 1024 pixels, and the border limits it on all sides at once. Chains of
// crosses hang together by their tips alone: what is seen of them ends where one is cut off, but
// for a wider look.
TEST(Search, ReachOfTheSquare) {
  for (const auto& [width, radius] : {std::pair{1023, 28U}, {1024, 56U}}) {
    Picture picture(width, 700, 1);
    picture.fill(faces::kRed);
    EXPECT_EQ(Searched(picture, 400, 300), (Outcome{kImgDone, 400, 300, radius}));
    for (const std::uint32_t y : {0U, 2U, 3U, 24U, 51U, 650U, 696U, 697U, 699U}) {
      EXPECT_EQ(Searched(picture, 500, y)[0], y < 3 || y > 696 ? 1U : 0U) << y;
    }
  }
  plain::CheckSum sum;
  Picture picture(1100, 200, 1);
  picture.fill(faces::kGray);
  for (int i = -45; i <= 45; ++i) {
    const int beside = i % 3 == 0 ? 1 : 0;
    picture.rectangle(500 + i, 100 - beside, 500 + i, 100 + beside, faces::kRed);
    picture.rectangle(500 - beside, 100 + i, 500 + beside, 100 + i, faces::kRed);
  }
  for (const std::uint32_t i : {0U, 1U, 2U, 4U, 5U}) {
    for (const std::uint32_t n : Searched(picture, 500 + i, 100)) sum.add(n);
    for (const std::uint32_t n : Searched(picture, 500, 100 + i)) sum.add(n);
  }
  EXPECT_EQ(sum.value(), 7809185048598679205U);
}

TEST(Search, EveryPointOfSmallNoiseAndFaces) {
  plain::CheckSum sum;
  const auto add = [&](const Picture& picture, int x, int y) {
    for (const std::uint32_t n :
         Searched(picture, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y))) {
      sum.add(n);
    }
  };
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {2, 5}, {3, 3}, {9, 11}, {40, 33}}) {
    Picture picture(width, height, 1);
    picture.fill(faces::kRed, 30);
    for (int i = width * height / 6; i > 0; --i) {
      const int x = picture.pick(0, width - 1);
      picture.dot(x, picture.pick(0, height - 1), faces::kGray);
    }
    for (int i = 0; i < (width + 1) * (height + 1); ++i) {
      add(picture, i % (width + 1), i / (width + 1));
    }
  }
  for (int seed = 0; seed < 60; ++seed) {
    Picture picture =
        faces::Crowd(40 + seed % 7 * 180, 50 + seed % 5 * 150, static_cast<unsigned>(seed));
    for (int i = 0; i < 20; ++i) {
      const int x = picture.pick(0, picture.w() - 1);
      const int y = picture.pick(0, picture.h() - 1);
      if (i % 2 == 0) picture.oddEye(x, y, picture.pick(2, 30));
      add(picture, x, y);
    }
  }
  EXPECT_EQ(sum.value(), 13378128593524742859U);
}

TEST(Search, WithoutMemoryNothingIsWritten) {
  const Picture picture(1100, 200, 1);
  const std::size_t blocks = PlatformLiveBlocks();
  for (int n = 1; n <= 3; ++n) {  // the three planes of a mask
    PupilCircle found{7, 8, 9};
    PlatformFailAllocation(n);
    EXPECT_EQ(ImgSearchRedEyeRegion(picture.bytes.data(), 1100, 200, 500, 100, &found),
              kImgNoMemory);
    EXPECT_EQ((std::array{found.x, found.y, found.radius}), (std::array{7U, 8U, 9U}));
    EXPECT_EQ(PlatformLiveBlocks(), blocks);
  }
}

// Radii whose five quarters pass 32 bits among them. In place is the same, and a centre outside
// changes nothing.
TEST(Reduce, EveryRadiusAndCentre) {
  plain::CheckSum sum;
  for (const auto& [width, height] : {std::pair{1U, 1U}, {2, 3}, {50, 41}, {33, 64}}) {
    Picture picture(static_cast<int>(width), static_cast<int>(height), 5);
    picture.rectangle(0, 0, picture.w() / 2, picture.h() - 1, faces::kRed, 40);
    for (const std::uint32_t radius :
         {0U, 1U, 2U, 3U, 4U, 5U, 8U, 9U, 13U, 40U, 1000U, 0xCCCCCCCDU, 0xD0000000U, kHuge}) {
      for (const std::uint32_t x : {0U, 1U, width / 2, width - 1, width, kHuge}) {
        for (const std::uint32_t y : {0U, 9U, height / 2, height - 1, height, kHuge}) {
          plain::Bytes apart(picture.bytes.size());
          plain::Bytes same = picture.bytes;
          for (const auto& [from, to] :
               {std::pair{picture.bytes.data(), &apart}, {same.data(), &same}}) {
            EXPECT_EQ(ImgReduceRedEye(from, to->data(), width, height, {x, y, radius}), kImgDone);
          }
          ASSERT_EQ(apart, same) << x << ", " << y << ", " << radius;
          ASSERT_TRUE((x < width && y < height) || same == picture.bytes);
          sum.addAll(same);
        }
      }
    }
  }
  EXPECT_EQ(sum.value(), 16309604324162781844U);
}

}  // namespace
