// The three colour tests against their plain forms, over all colours.
#include <gtest/gtest.h>

#include "imaging/adjust/ycbcr.h"
#include "imaging/redeye/build_kind.h"
#include "imaging/redeye/color_tests.h"
#include "imaging/redeye/plain_shapes.h"

using namespace orvo;

namespace {

TEST(RedEyeColors, EqualThePlainFormsEverywhere) {
  std::array<int, 3> wrong{};
  std::array<int, 3> accepted{};
  const auto tally = [&](std::size_t test, bool expected, bool got) {
    wrong[test] += expected == got ? 0 : 1;
    accepted[test] += expected ? 1 : 0;
  };
  for (int i = 0; i < 1 << 24; ++i) {
    const int luma = i >> 16;
    if (kSanitized && luma % 4 != 0) continue;
    const auto y = static_cast<std::uint8_t>(luma);
    const auto cb = static_cast<std::uint8_t>(i >> 8);
    const auto cr = static_cast<std::uint8_t>(i);
    tally(0, plain::SeesOutline(y, cb, cr), ImgIsRedEyeColor(y, cb, cr));
    tally(1, plain::IsWhite(y, cb, cr), ImgIsBrightNeutral(y, cb, cr));
    tally(2, plain::IsSkin(y, cb, cr), ImgIsSkinColor(y, cb, cr));
  }
  EXPECT_EQ(wrong, (std::array<int, 3>{}));
  for (const int count : accepted) EXPECT_GT(count, 10000);
}

struct Example {
  int y, cb, cr;
  std::optional<bool> red;  // nothing where the outlines are free
  bool white, skin;
};

TEST(RedEyeColors, Examples) {
  const Example examples[] = {
      {0, 125, 151, false, false, false},   {255, 125, 151, false, false, true},
      {13, 125, 151, true, false, false},   {13, 126, 151, false, false, false},
      {14, 126, 151, true, false, false},   {170, 113, 189, true, false, false},
      {170, 113, 190, false, false, false}, {132, 100, 200, true, false, false},
      {132, 128, 128, false, true, false},  {129, 128, 128, false, true, false},
      {128, 128, 128, false, false, false}, {129, 119, 116, false, true, false},
      {129, 118, 116, false, false, false}, {129, 119, 115, false, false, false},
      {255, 137, 139, false, true, false},  {255, 138, 139, false, false, false},
      {255, 137, 140, false, false, false}, {128, 109, 152, {}, false, true},
      {200, 109, 152, {}, false, true},     {124, 109, 152, {}, false, true},
      {100, 109, 152, {}, false, false},    {50, 181, 218, false, false, true},
      {49, 181, 218, false, false, false},
  };
  for (const Example& e : examples) {
    SCOPED_TRACE(testing::Message() << e.y << ", " << e.cb << ", " << e.cr);
    const auto y = static_cast<std::uint8_t>(e.y);
    const auto cb = static_cast<std::uint8_t>(e.cb);
    const auto cr = static_cast<std::uint8_t>(e.cr);
    EXPECT_EQ(ImgIsRedEyeColor(y, cb, cr), e.red.value_or(ImgIsRedEyeColor(y, cb, cr)));
    EXPECT_EQ(ImgIsBrightNeutral(y, cb, cr), e.white);
    EXPECT_EQ(ImgIsSkinColor(y, cb, cr), e.skin);
  }
  for (const auto& [r, g, b] : {std::array{200, 30, 30}, {230, 30, 60}}) {
    const YCbCrBytes pupil = ToYCbCrBytes(r, g, b);
    EXPECT_TRUE(ImgIsRedEyeColor(pupil.y, pupil.cb, pupil.cr));
    EXPECT_FALSE(ImgIsSkinColor(pupil.y, pupil.cb, pupil.cr));
  }
  for (const auto& [r, g, b] : {std::array{220, 170, 140}, {180, 120, 100}}) {
    const YCbCrBytes skin = ToYCbCrBytes(r, g, b);
    EXPECT_FALSE(ImgIsRedEyeColor(skin.y, skin.cb, skin.cr));
    EXPECT_TRUE(ImgIsSkinColor(skin.y, skin.cb, skin.cr));
  }
}

}  // namespace
