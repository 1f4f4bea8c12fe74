// The shipped adjust functions against their plain references, in both forms.
#include <gtest/gtest.h>

#include "imaging/adjust/exposure.h"
#include "imaging/adjust/histogram.h"
#include "imaging/adjust/plain_adjust.h"
#include "imaging/adjust/sharpness.h"
#include "imaging/results.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using plain::Content;
using plain::Image;

struct Operation {
  const char* name;
  int (*shipped)(const std::uint8_t*, std::uint8_t*, std::uint32_t, std::uint32_t, std::uint8_t,
                 std::uint8_t) noexcept;
  void (*reference)(const std::uint8_t*, std::uint8_t*, const Image&, int);
  int codeBelow128;  // for an image with a side below 128
};

const Operation kOperations[] = {
    {"sharpness", ImgSharpnessAdjust, plain::Sharpen, kImgDone},
    {"histogram", ImgHistogramAdjust,
     [](const std::uint8_t* source, std::uint8_t* target, const Image& image, int level) {
       plain::StretchHistogram(source, target, image, static_cast<std::uint32_t>(level));
     },
     kImgDone},
    {"exposure", ImgExposureAdjust, plain::EqualizeExposure, kImgNotFound},
};

class Adjust : public testing::TestWithParam<Operation> {
 protected:
  void expectReference(const Image& image, Content content, int level, unsigned seed) {
    SCOPED_TRACE(image.name() + ", level " + std::to_string(level) + ", content " +
                 std::to_string(static_cast<int>(content)) + ", seed " + std::to_string(seed));
    const Operation& operation = GetParam();
    const std::vector<std::uint8_t> source = plain::Fill(image, content, seed);
    const bool small = image.width < 128 || image.height < 128;
    const int code = small ? operation.codeBelow128 : static_cast<int>(kImgDone);
    const auto run = [&](const std::uint8_t* from, std::uint8_t* to) {
      return operation.shipped(from, to, image.width, image.height,
                               static_cast<std::uint8_t>(image.depth),
                               static_cast<std::uint8_t>(level));
    };

    std::vector<std::uint8_t> expected(source.size());
    std::vector<std::uint8_t> got(source.size());
    operation.reference(source.data(), expected.data(), image, level);
    ASSERT_EQ(run(source.data(), got.data()), code);
    ASSERT_EQ(plain::Difference(expected, got, image), "");

    expected = source;
    got = source;
    operation.reference(expected.data(), expected.data(), image, level);
    ASSERT_EQ(run(got.data(), got.data()), code);
    ASSERT_EQ(plain::Difference(expected, got, image), "") << "in place";
  }
};

TEST_P(Adjust, SmallImagesOfEveryWidth) {
  unsigned seed = 0;
  for (const int depth : {8, 24}) {
    for (std::uint32_t width = 1; width <= 40; ++width) {
      for (const std::uint32_t height : {1U, 2U, 4U, 5U, 6U, 11U, 30U}) {
        expectReference({width, height, depth}, static_cast<Content>(seed % plain::kContents),
                        static_cast<int>(seed % 11), seed);
        ++seed;
      }
    }
  }
}

// Where sizes matter: the steps of sharpness at 512 and its like, its strips of 256 columns and
// bands of 16 rows, the tiles and windows of exposure.
TEST_P(Adjust, SizesWhereRulesChange) {
  const std::uint32_t sides[][2] = {
      {127, 130}, {128, 128}, {129, 143}, {136, 128}, {144, 145}, {200, 183}, {201, 184},
      {255, 137}, {256, 129}, {263, 150}, {511, 7},   {512, 7},   {7, 1023},  {1024, 7},
      {1535, 7},  {1536, 7},  {331, 131}, {259, 20},  {260, 36},  {261, 21},  {516, 19}};
  unsigned seed = 100;
  for (const auto& side : sides) {
    for (const int depth : {8, 24}) {
      for (int content = 0; content < plain::kContents; ++content) {
        expectReference({side[0], side[1], depth}, static_cast<Content>(content),
                        static_cast<int>(seed % 11), seed);
        seed += 7;
      }
    }
  }
}

TEST_P(Adjust, EveryLevelAndFlatTone) {
  for (int level = 0; level <= 10; ++level) {
    for (const int depth : {8, 24}) {
      expectReference({150, 140, depth}, Content::kSoft, level, 3);
      expectReference({150, 140, depth}, Content::kNoise, level, 4);
    }
  }
  for (unsigned tone = 0; tone < 256; tone += 5) {
    expectReference({130, 128, 8}, Content::kFlat, 10, tone);
    expectReference({12, 11, 24}, Content::kFlat, static_cast<int>(tone % 11), tone);
  }
}

TEST_P(Adjust, OtherDepthsAreUnsuitableAndWriteNothing) {
  std::vector<std::uint8_t> source(4000, 1);
  std::vector<std::uint8_t> target(4000, 2);
  for (const std::uint8_t depth : std::initializer_list<std::uint8_t>{1, 4, 16, 32}) {
    EXPECT_EQ(GetParam().shipped(source.data(), target.data(), 20, 20, depth, 5), kImgUnsuitable);
  }
  EXPECT_EQ(target, std::vector<std::uint8_t>(4000, 2));
}

TEST_P(Adjust, WithoutMemoryTheTargetIsACopy) {
  const Image image{140, 130, 24};
  const std::vector<std::uint8_t> source = plain::Fill(image, Content::kNoise, 3);
  const std::size_t blocks = PlatformLiveBlocks();
  int failures = 0;
  for (int n = 1;; ++n) {
    std::vector<std::uint8_t> target(source.size());
    PlatformFailAllocation(n);
    const int code = GetParam().shipped(source.data(), target.data(), 140, 130, 24, 9);
    PlatformFailAllocation(0);
    EXPECT_EQ(PlatformLiveBlocks(), blocks);
    if (code == kImgDone) break;
    EXPECT_EQ(code, kImgNoMemory);
    EXPECT_EQ(target, source);
    ++failures;
  }
  EXPECT_GE(failures, 1);
}

INSTANTIATE_TEST_SUITE_P(All, Adjust, testing::ValuesIn(kOperations),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
