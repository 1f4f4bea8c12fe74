// Search and reduction at a point against their plain references.
#include <gtest/gtest.h>

#include <tuple>

#include "imaging/redeye/build_kind.h"
#include "imaging/redeye/faces.h"
#include "imaging/redeye/plain_red_eye.h"
#include "imaging/redeye/reduce.h"
#include "imaging/results.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using faces::Picture;

constexpr faces::Rgb kGray = {128, 128, 128};
constexpr std::uint32_t kHuge = 0xFFFFFFFF;

using Outcome = std::tuple<int, std::uint32_t, std::uint32_t, std::uint32_t>;  // code, x, y, radius

Outcome Searched(const Picture& picture, std::uint32_t x, std::uint32_t y) {
  const auto& [width, height, depth] = picture.image;
  PupilCircle found{};
  const int code = ImgSearchRedEyeRegion(picture.bytes.data(), width, height, x, y, &found);
  PupilCircle plainly{};
  const int plainCode = plain::Search(picture.bytes.data(), picture.image, x, y, plainly);
  const Outcome outcome = {code, found.x, found.y, found.radius};
  EXPECT_EQ(outcome, (Outcome{plainCode, plainly.x, plainly.y, plainly.radius}))
      << picture.image.name() << " at " << x << ", " << y;
  return outcome;
}

TEST(Search, DiskWithCatchLight) {
  for (const int light : {0, 1, 3, 5}) {
    Picture picture(100, 80, 1);
    picture.fill(kGray);
    picture.ellipse(50, 40, 10, 10, faces::kRed);
    if (light > 0) picture.ellipse(50, 40, light + 0.1, light + 0.1, faces::kWhite);
    // A wide one cuts the point off from the ring.
    EXPECT_EQ(Searched(picture, 50, 40),
              light > 1 ? (Outcome{kImgNotFound, 50, 40, 2}) : (Outcome{kImgDone, 50, 40, 10}));
    EXPECT_EQ(std::get<0>(Searched(picture, 57, 42)), kImgDone);
    EXPECT_EQ(Searched(picture, 20, 40), (Outcome{kImgNotFound, 20, 40, 2}));
  }
}

// The reach doubles at 1024 pixels, and the border limits it on all sides at once.
TEST(Search, ReachOfTheSquare) {
  for (const auto& [width, radius] : {std::pair{1023, 28U}, {1024, 56U}}) {
    Picture picture(width, 700, 1);
    picture.fill(faces::kRed);
    EXPECT_EQ(Searched(picture, 400, 300), (Outcome{kImgDone, 400, 300, radius}));
    for (const std::uint32_t y : {0U, 1U, 2U, 3U, 24U, 51U, 650U, 697U, 698U, 699U}) {
      EXPECT_EQ(std::get<0>(Searched(picture, 500, y)), y < 3 || y > 696 ? kImgNotFound : kImgDone);
    }
  }
}

// Chains of crosses that hang together by their tips alone: what is seen of them ends where one is
// cut off, but for a wider look.
TEST(Search, ChainsThatLeadAway) {
  Picture picture(1100, 200, 1);
  picture.fill(kGray);
  for (int i = -45; i <= 45; ++i) {
    const int beside = i % 3 == 0 ? 1 : 0;
    picture.rectangle(500 + i, 100 - beside, 500 + i, 100 + beside, faces::kRed);
    picture.rectangle(500 - beside, 100 + i, 500 + beside, 100 + i, faces::kRed);
  }
  for (const std::uint32_t i : {0U, 1U, 2U}) {
    for (const auto& [dx, dy] : {std::pair{i, 0U}, {0, i}}) {
      const auto [code, x, y, radius] = Searched(picture, 500 + dx, 100 + dy);
      EXPECT_GT(radius, 8U);
    }
  }
}

TEST(Search, EveryPointOfSmallNoise) {
  const std::pair<int, int> sizes[] = {{1, 1}, {1, 9}, {2, 5}, {3, 3}, {9, 11}, {30, 23}, {61, 60}};
  int found = 0;
  for (const auto& [width, height] : sizes) {
    Picture picture(width, height, 1);
    picture.fill(faces::kRed, 30);
    for (int i = width * height / 6; i > 0; --i) {
      picture.dot(picture.pick(0, width - 1), picture.pick(0, height - 1), kGray);
    }
    for (std::uint32_t y = 0; y <= picture.image.height; ++y) {
      for (std::uint32_t x = 0; x <= picture.image.width; ++x) {
        found += std::get<0>(Searched(picture, x, y)) == kImgDone ? 1 : 0;
      }
    }
    for (const auto& [x, y] : {std::pair{kHuge, 0U}, {0, kHuge}, {kHuge, kHuge}}) {
      EXPECT_EQ(Searched(picture, x, y), (Outcome{kImgNotFound, x, y, 0}));
    }
  }
  EXPECT_GT(found, 100);
}

TEST(Search, FacesOfAllSizes) {
  int found = 0;
  for (int seed = 0; seed < (kSanitized ? 30 : 150); ++seed) {
    Picture picture =
        faces::Crowd(40 + seed % 7 * 180, 50 + seed % 5 * 150, static_cast<unsigned>(seed));
    for (int i = 0; i < 30; ++i) {
      const int x = picture.pick(0, picture.w() - 1);
      const int y = picture.pick(0, picture.h() - 1);
      if (i % 2 == 0) picture.oddEye(x, y, picture.pick(2, 30));
      const auto outcome =
          Searched(picture, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
      found += std::get<0>(outcome) == kImgDone ? 1 : 0;
    }
  }
  EXPECT_GT(found, kSanitized ? 100 : 600);
}

TEST(Search, WithoutMemoryNothingIsWritten) {
  Picture picture(1100, 200, 1);
  picture.fill(kGray);
  picture.ellipse(500, 100, 30, 30, faces::kRed);
  const std::size_t blocks = PlatformLiveBlocks();
  int failures = 0;
  for (;; ++failures) {
    PupilCircle found{7, 8, 9};
    PlatformFailAllocation(failures + 1);
    const int code = ImgSearchRedEyeRegion(picture.bytes.data(), 1100, 200, 500, 100, &found);
    PlatformFailAllocation(0);
    EXPECT_EQ(PlatformLiveBlocks(), blocks);
    if (code == kImgDone) break;
    ASSERT_EQ(code, kImgNoMemory);
    EXPECT_EQ(std::tuple(found.x, found.y, found.radius), std::tuple(7U, 8U, 9U));
  }
  EXPECT_GE(failures, 1);
}

std::vector<std::uint8_t> Reduced(const Picture& picture, const PupilCircle& pupil) {
  const plain::Image& image = picture.image;
  SCOPED_TRACE(testing::Message() << image.name() << " at " << pupil.x << ", " << pupil.y << ", "
                                  << pupil.radius);
  std::vector<std::uint8_t> expected(picture.bytes.size());
  std::vector<std::uint8_t> got(picture.bytes.size());
  std::vector<std::uint8_t> same = picture.bytes;
  plain::Reduce(picture.bytes.data(), expected.data(), image, pupil);
  EXPECT_EQ(ImgReduceRedEye(picture.bytes.data(), got.data(), image.width, image.height, pupil),
            kImgDone);
  EXPECT_EQ(plain::Difference(expected, got, image), "");
  EXPECT_EQ(ImgReduceRedEye(same.data(), same.data(), image.width, image.height, pupil), kImgDone);
  EXPECT_EQ(plain::Difference(expected, same, image), "") << "in place";
  return got;
}

// Radii whose five quarters pass 32 bits among them.
TEST(Reduce, EveryRadiusAndCentre) {
  for (const auto& [width, height] : {std::pair{1U, 1U}, {2, 3}, {50, 41}, {33, 64}}) {
    Picture picture(static_cast<int>(width), static_cast<int>(height), 5);
    picture.rectangle(0, 0, picture.w() / 2, picture.h() - 1, faces::kRed, 40);
    for (const std::uint32_t radius :
         {0U, 1U, 2U, 3U, 4U, 5U, 8U, 9U, 13U, 40U, 1000U, 0xCCCCCCCDU, 0xD0000000U, kHuge}) {
      for (const std::uint32_t x : {0U, 1U, width / 2, width - 1, width, kHuge}) {
        for (const std::uint32_t y : {0U, 9U, height / 2, height - 1, height, kHuge}) {
          const std::vector<std::uint8_t> got = Reduced(picture, {x, y, radius});
          EXPECT_TRUE((x < width && y < height) || got == picture.bytes);
        }
      }
    }
  }
}

// Along one row: dark and neutral inside, neutral at the radius, the ground again from five
// quarters of it.
TEST(Reduce, ProfileOfADisk) {
  Picture picture(61, 61, 1);
  picture.fill(faces::kSkin);
  const std::vector<std::uint8_t> got = Reduced(picture, {30, 30, 8});
  const auto colorAt = [&](int x) {
    const YCbCrBytes p = plain::ColorAt(got.data(), picture.image, x, 30);
    return std::array<int, 3>{p.y, p.cb, p.cr};
  };
  const YCbCrBytes skin = ToYCbCrBytes(faces::kSkin.red, faces::kSkin.green, faces::kSkin.blue);
  EXPECT_EQ(colorAt(37), (std::array<int, 3>{skin.y - skin.y / 4, 128, 128}));
  EXPECT_EQ(colorAt(38), (std::array<int, 3>{skin.y, 128, 128}));
  EXPECT_NEAR(colorAt(39)[1], (skin.cb + 128) / 2, 1);
  EXPECT_NEAR(colorAt(40)[1], skin.cb, 1);
}

}  // namespace
