#include <gtest/gtest.h>

#include <orvo/COrvoCS.h>

#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

// Lifts what reaches the threshold, colour by colour, over `count` bytes with `step` bytes a
// colour.
void ExpectLifted(const std::uint8_t* before, const std::uint8_t* after, int colors, int step,
                  unsigned threshold) {
  for (int i = 0; i < colors; ++i) {
    const std::uint8_t* const from = before + i * step;
    const std::uint8_t* const to = after + i * step;
    const bool lifted = from[0] >= threshold && from[1] >= threshold && from[2] >= threshold;
    for (int c = 0; c < 3; ++c) ASSERT_EQ(to[c], lifted ? 255 : from[c]) << "colour " << i;
    // Behind the colours of a palette lies a reserved byte.
    ASSERT_TRUE(step == 3 || to[3] == from[3]) << "reserved byte of colour " << i;
  }
}

TEST(Whiteness, LiftsPixelsAndPalettesAndNothingElse) {
  COrvoCS toolkit;
  for (const unsigned threshold : {0U, 1U, 127U, 200U, 254U, 255U}) {
    for (const int depth : {8, 24}) {
      for (const int width : {1, 2, 3, 4, 5, 33}) {
        SCOPED_TRACE(std::to_string(threshold) + ", " + std::to_string(depth) + " bits, width " +
                     std::to_string(width));
        const orvo::OwnedDib source = depth == 8 ? pictures::NoiseInColor(width, 3, depth, 5)
                                                 : pictures::Noise(width, 3, depth, 5);
        const std::vector<std::uint8_t> before = pictures::BytesOf(source.get());
        orvo::OwnedDib result;
        ASSERT_EQ(toolkit.CSWhitenessAdjust(source.get(), result.receive(source), threshold),
                  ORVO_OK);
        EXPECT_EQ(pictures::BytesOf(source.get()), before);

        const orvo::OwnedDib inPlace = pictures::CopyOf(source.get());
        DibHandle same = inPlace.get();
        ASSERT_EQ(toolkit.CSWhitenessAdjust(same, &same, threshold), ORVO_OK);
        EXPECT_EQ(same, inPlace.get());
        EXPECT_EQ(pictures::Difference(result.get(), same), "");

        const pictures::Locked from(source.get());
        const pictures::Locked to(result.get());
        if (depth == 8) {
          ExpectLifted(from.bytes() + 40, to.bytes() + 40, 256, 4, threshold);
          EXPECT_EQ(std::memcmp(from.row(0), to.row(0), from.layout().stride * 3), 0);
          continue;
        }
        for (int y = 0; y < 3; ++y) {
          ExpectLifted(from.row(y), to.row(y), width, 3, threshold);
          const std::size_t used = static_cast<std::size_t>(width) * 3;
          EXPECT_EQ(std::memcmp(from.row(y) + used, to.row(y) + used, from.layout().stride - used),
                    0)
              << "padding";
        }
      }
    }
  }
}

struct FailureRow {
  const char* name;
  int depth;
  unsigned threshold;
  int failAllocation;
  int failLock;
  int code;
};

TEST(Whiteness, FailuresLeaveTheSourceInTheResult) {
  COrvoCS toolkit;
  const FailureRow rows[] = {
      {"threshold above 255", 24, 256, 0, 0, ORVO_ERR_OUT_OF_RANGE},
      {"no memory for the copy", 24, 9, 1, 0, ORVO_ERR_NO_MEMORY},
      {"result cannot be locked", 24, 9, 0, 3, ORVO_ERR_FAILURE},
      {"1 bit", 1, 9, 0, 0, ORVO_ERR_BAD_DEPTH},
      {"32 bits", 32, 9, 0, 0, ORVO_ERR_BAD_DEPTH},
  };
  for (const FailureRow& row : rows) {
    SCOPED_TRACE(row.name);
    const orvo::OwnedDib source = pictures::Noise(6, 4, row.depth, 1);
    const std::vector<std::uint8_t> before = pictures::BytesOf(source.get());
    const std::size_t blocks = PlatformLiveBlocks();
    PlatformFailAllocation(row.failAllocation);
    PlatformFailLock(row.failLock);
    DibHandle result = nullptr;
    EXPECT_EQ(toolkit.CSWhitenessAdjust(source.get(), &result, row.threshold), row.code);
    PlatformFailAllocation(0);
    PlatformFailLock(0);
    EXPECT_EQ(result, source.get());
    EXPECT_EQ(PlatformLiveBlocks(), blocks);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
    EXPECT_EQ(pictures::BytesOf(source.get()), before);
  }
  DibHandle result = &toolkit;
  EXPECT_EQ(toolkit.CSWhitenessAdjust(nullptr, &result, 9), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(result, nullptr);
}

// A block that cannot hold what its header claims is never touched beyond its end.
TEST(Whiteness, MalformedBlocksCountAsUnlockable) {
  COrvoCS toolkit;
  struct Row {
    const char* name;
    int width, height;
    std::uint16_t depth;
  };
  const Row rows[] = {{"taller than the block", 6, 5, 24},
                      {"wider than the block", 7, 4, 24},
                      {"no width", 0, 4, 24},
                      {"negative height", 6, -4, 24},
                      {"product overflows", 1 << 30, 1 << 30, 24},
                      {"palette missing", 6, 4, 8}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const orvo::OwnedDib source = pictures::Noise(6, 4, 24, 1);
    {
      const pictures::Locked image(source.get());
      image.header()->biWidth = row.width;
      image.header()->biHeight = row.height;
      image.header()->biBitCount = row.depth;
    }
    DibHandle result = source.get();
    EXPECT_EQ(toolkit.CSWhitenessAdjust(source.get(), &result, 0), ORVO_ERR_FAILURE);
    EXPECT_EQ(result, source.get());
    EXPECT_EQ(PlatformHeldLocks(), 0U);
  }
}

}  // namespace
