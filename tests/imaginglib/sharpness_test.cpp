#include "imaginglib/sharpness.h"

#include <gtest/gtest.h>

#include "imaginglib/results.h"
#include "imaginglib/sharpness_plain.h"
#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

enum class Content { kNoise, kFlat, kSteps, kSoft };

std::vector<std::uint8_t> Fill(const plain::Image& image, Content content, unsigned seed) {
  std::vector<std::uint8_t> bytes(image.stride() * image.height);
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::size_t x = i % image.stride();
    const std::size_t y = i / image.stride();
    switch (content) {
      case Content::kNoise:
        bytes[i] = static_cast<std::uint8_t>(random());
        break;
      case Content::kFlat:
        bytes[i] = static_cast<std::uint8_t>(seed);
        break;
      case Content::kSteps:
        bytes[i] = (x / 7 + y / 5) % 2 == 0 ? 255 : 0;
        break;
      case Content::kSoft:
        bytes[i] = static_cast<std::uint8_t>(x * 3 + y * 2 + random() % 4);
        break;
    }
  }
  return bytes;
}

std::string FirstDifference(const std::vector<std::uint8_t>& expected,
                            const std::vector<std::uint8_t>& got, const plain::Image& image) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (expected[i] == got[i]) continue;
    return "row " + std::to_string(i / image.stride()) + ", byte " +
           std::to_string(i % image.stride()) + ": expected " + std::to_string(expected[i]) +
           ", got " + std::to_string(got[i]);
  }
  return {};
}

void ExpectPlain(const plain::Image& image, Content content, int level, unsigned seed) {
  SCOPED_TRACE(std::to_string(image.width) + "x" + std::to_string(image.height) + ", " +
               std::to_string(image.depth) + " bits, level " + std::to_string(level));
  const std::vector<std::uint8_t> source = Fill(image, content, seed);
  const auto depth = static_cast<std::uint8_t>(image.depth);
  const auto strength = static_cast<std::uint8_t>(level);

  std::vector<std::uint8_t> expected(source.size());
  std::vector<std::uint8_t> got(source.size());
  plain::Sharpen(source.data(), expected.data(), image, level);
  ASSERT_EQ(
      ImgSharpnessAdjust(source.data(), got.data(), image.width, image.height, depth, strength),
      kImgDone);
  ASSERT_EQ(FirstDifference(expected, got, image), "");

  expected = source;
  got = source;
  plain::Sharpen(expected.data(), expected.data(), image, level);
  ASSERT_EQ(ImgSharpnessAdjust(got.data(), got.data(), image.width, image.height, depth, strength),
            kImgDone);
  ASSERT_EQ(FirstDifference(expected, got, image), "") << "in place";
}

TEST(Sharpness, EqualsThePlainFormAtEverySizeAndLevel) {
  unsigned seed = 0;
  for (const int depth : {8, 24}) {
    for (std::uint32_t width = 1; width <= 40; ++width) {
      for (const std::uint32_t height : {1U, 2U, 4U, 5U, 6U, 11U}) {
        const auto content = static_cast<Content>(seed % 4);
        ExpectPlain({width, height, depth}, content, static_cast<int>(seed % 11), seed);
        ++seed;
      }
    }
  }
}

TEST(Sharpness, StrengthFollowsTheLargerSide) {
  for (const std::uint32_t side : {260U, 261U, 511U, 512U, 1023U, 1024U, 1535U, 1536U}) {
    for (const int depth : {8, 24}) {
      ExpectPlain({side, 7, depth}, Content::kNoise, 10, side);
      ExpectPlain({7, side, depth}, Content::kSteps, 5, side);
    }
  }
}

TEST(Sharpness, EveryTone) {
  for (unsigned tone = 0; tone < 256; ++tone) {
    ExpectPlain({9, 6, 8}, Content::kFlat, static_cast<int>(tone % 11), tone);
    ExpectPlain({9, 6, 24}, Content::kFlat, 10, tone);
  }
}

TEST(Sharpness, OtherDepthsAreUnsuitableAndWriteNothing) {
  std::vector<std::uint8_t> source(400, 1);
  std::vector<std::uint8_t> target(400, 2);
  for (const std::uint8_t depth : std::initializer_list<std::uint8_t>{1, 4, 16, 32}) {
    EXPECT_EQ(ImgSharpnessAdjust(source.data(), target.data(), 6, 6, depth, 5), kImgUnsuitable);
  }
  EXPECT_EQ(target, std::vector<std::uint8_t>(400, 2));
}

TEST(Sharpness, WithoutMemoryTheTargetIsACopy) {
  const plain::Image image{20, 20, 24};
  const std::vector<std::uint8_t> source = Fill(image, Content::kNoise, 3);
  const std::size_t blocks = PlatformLiveBlocks();
  for (int n = 1; n <= 2; ++n) {
    std::vector<std::uint8_t> target(source.size());
    PlatformFailAllocation(n);
    EXPECT_EQ(ImgSharpnessAdjust(source.data(), target.data(), 20, 20, 24, 9), kImgNoMemory);
    PlatformFailAllocation(0);
    EXPECT_EQ(target, source);
    EXPECT_EQ(PlatformLiveBlocks(), blocks);
  }
}

}  // namespace
