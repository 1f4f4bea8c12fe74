// Sharpness, histogram and exposure, and the colours that they share.
#include "imaging/adjust/exposure.h"
#include "imaging/adjust/histogram.h"
#include "imaging/adjust/sharpness.h"
#include "imaging/adjust/ycbcr.h"
#include "imaging/plain_image.h"
#include "imaging/results.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using plain::Bytes;
using plain::Image;

const struct {
  const char* name;
  int (*run)(const std::uint8_t*, std::uint8_t*, std::uint32_t, std::uint32_t, std::uint8_t,
             std::uint8_t) noexcept;
  std::uint64_t sum;
} kOperations[] = {{"sharpness", ImgSharpnessAdjust, 9462178684851564229U},
                   {"histogram", ImgHistogramAdjust, 9166207117664059705U},
                   {"exposure", ImgExposureAdjust, 5099946571640690347U}};

// All small widths; then where sizes matter: the steps of sharpness at 512 and its like, its strips
// of 256 columns and bands of 16 rows, the tiles and windows of exposure.
TEST(Adjust, AllSizesDepthsAndLevels) {
  const std::uint32_t sides[][2] = {{127, 130}, {128, 128}, {129, 143}, {136, 128}, {144, 145},
                                    {200, 183}, {201, 184}, {255, 137}, {256, 129}, {511, 7},
                                    {512, 7},   {7, 1023},  {1024, 7},  {1535, 7},  {1536, 7},
                                    {331, 131}, {259, 20},  {260, 36},  {261, 21},  {516, 19}};
  for (const auto& [name, run, expected] : kOperations) {
    plain::CheckSum sum;
    unsigned seed = 0;
    for (const int depth : {8, 24}) {
      const auto add = [&](std::uint32_t width, std::uint32_t height, int content, unsigned level) {
        sum.addBoth(plain::Fill({width, height, depth}, content, seed),
                    [&](const std::uint8_t* from, std::uint8_t* to) {
                      return run(from, to, width, height, static_cast<std::uint8_t>(depth),
                                 static_cast<std::uint8_t>(level));
                    });
        seed += 7;
      };
      for (std::uint32_t width = 1; width <= 40; ++width) {
        for (const std::uint32_t height : {1U, 2U, 4U, 5U, 6U, 11U, 30U}) {
          add(width, height, static_cast<int>(width % plain::kContents), seed % 11);
        }
      }
      for (const auto& [width, height] : sides) {
        for (int content = 0; content < plain::kContents; ++content) {
          add(width, height, content, seed % 11);
        }
      }
      for (unsigned level = 0; level <= 10; ++level) {
        add(150, 140, plain::kSoft, level);
        add(150, 140, plain::kNoise, level);
      }
    }
    EXPECT_EQ(sum.value(), expected) << name;
  }
}

TEST(Adjust, RefusalsLeaveTheTargetOrACopy) {
  const Bytes source = plain::Fill({140, 130, 24}, plain::kNoise, 3);
  const std::size_t blocks = PlatformLiveBlocks();
  for (const auto& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    Bytes target(source.size());
    const auto run = [&](std::uint8_t depth) {
      return operation.run(source.data(), target.data(), 140, 130, depth, 9);
    };
    for (const std::uint8_t depth : Bytes{1, 4, 16, 32}) EXPECT_EQ(run(depth), kImgUnsuitable);
    EXPECT_EQ(target, Bytes(source.size()));
    int code = kImgNoMemory;
    for (int n = 1; code != kImgDone; ++n) {
      PlatformFailAllocation(n);
      code = run(24);
      PlatformFailAllocation(0);
      EXPECT_EQ(PlatformLiveBlocks(), blocks);
      ASSERT_TRUE(n < 12 && (code == kImgNoMemory || (code == kImgDone && n > 1)));
      EXPECT_EQ(target == source, code == kImgNoMemory);
    }
  }
}

TEST(YCbCr, ByteForms) {
  plain::CheckSum sum;
  for (int color = 0; color < 1 << 24; color += 5) {
    const YCbCrBytes bytes = ToYCbCrBytes(color >> 16, color >> 8 & 255, color & 255);
    sum.add(bytes.y, bytes.cb, bytes.cr);
  }
  EXPECT_EQ(sum.value(), 12704445395678806619U);
}

}  // namespace
