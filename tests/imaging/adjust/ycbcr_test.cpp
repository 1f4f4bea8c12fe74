#include "imaging/adjust/ycbcr.h"

#include <gtest/gtest.h>

using namespace orvo;

namespace {

TEST(YCbCr, GraysHaveNoChromaAndWhiteIsFullLuma) {
  for (int tone = 0; tone < 256; ++tone) {
    const YCbCrBytes bytes = ToYCbCrBytes(tone, tone, tone);
    EXPECT_EQ(bytes.y, tone);
    EXPECT_EQ(bytes.cb, 128);
    EXPECT_EQ(bytes.cr, 128);
    EXPECT_NEAR(CbOf(tone, tone, tone), 0.0, 1e-12);
    EXPECT_NEAR(CrOf(tone, tone, tone), 0.0, 1e-12);
  }
}

// The byte form is the real form, truncated; where the two disagree the exact value is a whole
// number that doubles miss by their last bit.
TEST(YCbCr, ByteFormIsTheTruncatedRealForm) {
  for (int red = 0; red < 256; red += 3) {
    for (int green = 0; green < 256; green += 5) {
      for (int blue = 0; blue < 256; ++blue) {
        const YCbCrBytes bytes = ToYCbCrBytes(red, green, blue);
        const double cb = CbOf(red, green, blue) + 128.0;
        const double cr = CrOf(red, green, blue) + 128.0;
        ASSERT_LE(bytes.cb, cb + 1e-9);
        ASSERT_GT(bytes.cb, cb - 1.0);
        ASSERT_LE(bytes.cr, cr + 1e-9);
        ASSERT_GT(bytes.cr, cr - 1.0);
        ASSERT_EQ(bytes.y, (299 * red + 587 * green + 114 * blue) / 1000);
      }
    }
  }
}

TEST(YCbCr, ChannelsAreTruncatedThenLimited) {
  EXPECT_EQ(ChannelByte(-0.9), 0);
  EXPECT_EQ(ChannelByte(-7.0), 0);
  EXPECT_EQ(ChannelByte(254.999), 254);
  EXPECT_EQ(ChannelByte(255.7), 255);
  EXPECT_EQ(ChannelByte(400.0), 255);
}

}  // namespace
