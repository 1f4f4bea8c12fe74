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

void AddSearch(const Picture& picture, std::uint32_t x, std::uint32_t y, plain::CheckSum& sum) {
  PupilCircle found{};
  sum.add(ImgSearchRedEyeRegion(picture.bytes.data(), picture.image.width, picture.image.height, x,
                                y, &found));
  sum.add(found.x, found.y, found.radius);
}

TEST(Search, DisksAndTheReachOfTheSquare) {
  plain::CheckSum sum;
  for (const int radius : {2, 3, 9, 20}) {  // with a catch-light or without
    Picture picture(120, 130, 1);
    picture.fill(faces::kGray);
    picture.ellipse(50, 60, radius, radius, faces::kRed);
    for (const std::uint32_t x : {20U, 50U, 51U, 120U, kHuge}) AddSearch(picture, x, 60, sum);
    picture.dot(50, 60, faces::kWhite);
    for (const std::uint32_t y : {20U, 60U, 130U, kHuge}) AddSearch(picture, 50, y, sum);
  }
  for (const int width : {1023, 1024}) {  // which doubles the reach
    Picture picture(width, 700, 1);
    picture.fill(faces::kRed);
    for (const std::uint32_t y : {0U, 2U, 3U, 24U, 51U, 300U, 650U, 696U, 697U, 699U}) {
      AddSearch(picture, 500, y, sum);
    }
  }
  // Chains of crosses hang together by their tips alone: what is seen of them ends where one is cut
  // off, but for a wider look.
  Picture picture(1100, 200, 1);
  picture.fill(faces::kGray);
  for (int i = -45; i <= 45; ++i) {
    const int beside = i % 3 == 0 ? 1 : 0;
    picture.rectangle(500 + i, 100 - beside, 500 + i, 100 + beside, faces::kRed);
    picture.rectangle(500 - beside, 100 + i, 500 + beside, 100 + i, faces::kRed);
  }
  for (const std::uint32_t i : {0U, 1U, 2U, 4U, 5U}) {
    AddSearch(picture, 500 + i, 100, sum);
    AddSearch(picture, 500, 100 + i, sum);
  }
  EXPECT_EQ(sum.value(), 10993359302021973166U);
}

TEST(Search, SmallNoiseAndFaces) {
  plain::CheckSum sum;
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {2, 5}, {3, 3}, {9, 11}, {40, 33}}) {
    Picture picture(width, height, 1);
    picture.fill(faces::kRed, 30);
    for (int i = width * height / 6; i > 0; --i) {
      const int x = picture.pick(0, width - 1);
      picture.dot(x, picture.pick(0, height - 1), faces::kGray);
    }
    for (unsigned i = 0; i < 41 * 34; ++i) AddSearch(picture, i % 41, i / 41, sum);
  }
  for (unsigned seed = 0; seed < 60; ++seed) {
    const int width = 40 + static_cast<int>(seed % 7) * 180;
    Picture picture = faces::Crowd(width, 50 + static_cast<int>(seed % 5) * 150, seed);
    for (int i = 0; i < 20; ++i) {
      const int x = picture.pick(0, picture.w() - 1);
      const int y = picture.pick(0, picture.h() - 1);
      if (i % 2 == 0) picture.oddEye(x, y, picture.pick(2, 30));
      AddSearch(picture, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), sum);
    }
  }
  EXPECT_EQ(sum.value(), 5108466293538505399U);
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

// Radii whose five quarters pass 32 bits among them.
TEST(Reduce, EveryRadiusAndCentre) {
  plain::CheckSum sum;
  for (const auto& [width, height] : {std::pair{1U, 1U}, {2, 3}, {50, 41}, {33, 64}}) {
    Picture picture(static_cast<int>(width), static_cast<int>(height), 5);
    picture.rectangle(0, 0, picture.w() / 2, picture.h() - 1, faces::kRed, 40);
    for (const std::uint32_t radius :
         {0U, 1U, 2U, 3U, 4U, 5U, 8U, 9U, 13U, 40U, 1000U, 0xCCCCCCCDU, 0xD0000000U, kHuge}) {
      for (const std::uint32_t x : {0U, 1U, width / 2, width - 1, width, kHuge}) {
        for (const std::uint32_t y : {0U, 9U, height / 2, height - 1, height, kHuge}) {
          sum.addBoth(picture.bytes, [&](const std::uint8_t* from, std::uint8_t* to) {
            return ImgReduceRedEye(from, to, width, height, {x, y, radius});
          });
        }
      }
    }
  }
  EXPECT_EQ(sum.value(), 9180550802460660303U);
}

}  // namespace
