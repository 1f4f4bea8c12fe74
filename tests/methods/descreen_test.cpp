#include <gtest/gtest.h>

#include <array>

#include <orvo/COrvoCS.h>

#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

// The windows once more, one digit an exponent.
const char* const kExponents[] = {
    "100 121 001", "21000 10110 02320 01101 00012",
    "3210000 2101110 1023210 0234320 0123201 0111012 0000123",
    "321000000 221001110 110022210 000343210 023454320 012343100 012220011 011100122 000000123"};

// The mean over those samples of the window that the image has, pixel by pixel.
void FilterPlainly(const pictures::Locked& source, const pictures::Locked& target, int level) {
  const orvo::DibLayout shape = source.layout();
  const int channels = shape.depth / 8;
  const int side = 3 + 2 * level;
  for (int y = 0; y < shape.height; ++y) {
    for (int x = 0; x < shape.width; ++x) {
      for (int c = 0; c < channels; ++c) {
        unsigned sum = 0;
        unsigned weights = 0;
        for (int j = 0; j < side; ++j) {
          for (int i = 0; i < side; ++i) {
            const int sx = x + i - side / 2;
            const int sy = y + j - side / 2;
            if (sx < 0 || sy < 0 || sx >= shape.width - 1 || sy >= shape.height - 1) continue;
            const int exponent = kExponents[level][j * (side + 1) + i] - '0';
            sum += static_cast<unsigned>(source.row(sy)[sx * channels + c]) << exponent;
            weights += 1U << exponent;
          }
        }
        if (weights != 0)
          target.row(y)[x * channels + c] = static_cast<std::uint8_t>(sum / weights);
      }
    }
  }
}

TEST(Descreen, EqualsThePlainFormInBothForms) {
  COrvoCS toolkit;
  unsigned seed = 0;
  for (const int depth : {8, 24}) {
    for (int level = 0; level <= 3; ++level) {
      for (int width = 1; width <= 40; ++width) {
        for (const int height : {1, 2, 3, 9, 10, 21}) {
          SCOPED_TRACE(std::to_string(width) + "x" + std::to_string(height) + ", " +
                       std::to_string(depth) + " bits, level " + std::to_string(level));
          const orvo::OwnedDib source = pictures::Noise(width, height, depth, ++seed);
          const orvo::OwnedDib expected = pictures::CopyOf(source.get());
          FilterPlainly(pictures::Locked(source.get()), pictures::Locked(expected.get()), level);
          orvo::OwnedDib result;
          ASSERT_EQ(toolkit.CSDescreen(source.get(), result.receive(source),
                                       static_cast<unsigned>(level), nullptr),
                    ORVO_OK);
          ASSERT_EQ(pictures::Difference(expected.get(), result.get()), "");

          const orvo::OwnedDib plain = pictures::CopyOf(source.get());
          const pictures::Locked same(plain.get());
          FilterPlainly(same, same, level);
          DibHandle handle = source.get();
          ASSERT_EQ(toolkit.CSDescreen(handle, &handle, static_cast<unsigned>(level), nullptr),
                    ORVO_OK);
          ASSERT_EQ(pictures::Difference(plain.get(), handle), "") << "in place";
        }
      }
    }
  }
}

TEST(Descreen, RowsStartBehindAHeaderOfAnySize) {
  COrvoCS toolkit;
  const orvo::OwnedDib image = pictures::Noise(12, 9, 24, 4);
  orvo::OwnedDib expected;
  ASSERT_EQ(toolkit.CSDescreen(image.get(), expected.receive(image), 1, nullptr), ORVO_OK);
  constexpr std::size_t kLonger = 68;  // bytes beyond the plain header
  const std::vector<std::uint8_t> bytes = pictures::BytesOf(image.get());
  const orvo::OwnedDib shifted(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() + kLonger));
  const pictures::Locked to(shifted.get());
  std::memcpy(to.bytes(), bytes.data(), 40);
  to.header()->biSize = 40 + kLonger;
  std::memcpy(to.bytes() + 40 + kLonger, bytes.data() + 40, bytes.size() - 40);
  DibHandle same = shifted.get();
  ASSERT_EQ(toolkit.CSDescreen(same, &same, 1, nullptr), ORVO_OK);
  const pictures::Locked from(image.get());
  // In place differs from a copy but for the very first pixels; compare with the same form.
  ASSERT_EQ(
      toolkit.CSDescreen(image.get(), std::array<DibHandle, 1>{image.get()}.data(), 1, nullptr),
      ORVO_OK);
  EXPECT_EQ(std::memcmp(to.bytes() + 40 + kLonger, from.bytes() + 40, bytes.size() - 40), 0);
}

std::vector<int> heard;
int stopAt = -1;
int Listen(int percent, void* userData) {
  EXPECT_EQ(userData, nullptr);
  heard.push_back(percent);
  return percent == stopAt ? 16 : 0;
}

TEST(Descreen, ProgressRisesRowByRow) {
  COrvoCS toolkit;
  for (const int height : {1, 3, 100, 101, 350}) {
    const orvo::OwnedDib source = pictures::Noise(4, height, 8, 1);
    heard.clear();
    stopAt = -1;
    orvo::OwnedDib result;
    ASSERT_EQ(toolkit.CSDescreen(source.get(), result.receive(source), 0, Listen), ORVO_OK);
    std::vector<int> expected;
    for (int y = 0; y < height; ++y) {
      const int percent = (100 * y + height - 1) / height;
      if (expected.empty() || percent > expected.back()) expected.push_back(percent);
    }
    EXPECT_EQ(heard, expected) << height << " rows";
  }
}

TEST(Descreen, AStopGivesUpTheCopyButKeepsTheRowsDoneInPlace) {
  COrvoCS toolkit;
  const orvo::OwnedDib source = pictures::Noise(8, 100, 24, 1);
  const std::vector<std::uint8_t> before = pictures::BytesOf(source.get());
  const std::size_t blocks = PlatformLiveBlocks();
  stopAt = 50;
  DibHandle result = nullptr;
  EXPECT_EQ(toolkit.CSDescreen(source.get(), &result, 0, Listen), ORVO_ERR_CANCELLED);
  EXPECT_EQ(result, source.get());
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
  EXPECT_EQ(PlatformHeldLocks(), 0U);
  EXPECT_EQ(pictures::BytesOf(source.get()), before);

  EXPECT_EQ(toolkit.CSDescreen(result, &result, 0, Listen), ORVO_ERR_CANCELLED);
  const std::vector<std::uint8_t> after = pictures::BytesOf(source.get());
  EXPECT_NE(std::vector(after.begin(), after.begin() + 40 + 49 * 24),
            std::vector(before.begin(), before.begin() + 40 + 49 * 24));
  EXPECT_EQ(std::vector(after.begin() + 40 + 50 * 24, after.end()),
            std::vector(before.begin() + 40 + 50 * 24, before.end()));
}

struct FailureRow {
  const char* name;
  int depth;
  unsigned level;
  int failAllocation;
  int failLock;
  int code;
  enum { kSource, kNull, kCopy } left;
};

TEST(Descreen, FailuresLeaveWhatTheyShould) {
  COrvoCS toolkit;
  const FailureRow rows[] = {
      {"level above 3", 24, 4, 0, 0, ORVO_ERR_OUT_OF_RANGE, FailureRow::kSource},
      {"no memory for the copy", 24, 1, 1, 0, ORVO_ERR_NO_MEMORY, FailureRow::kNull},
      {"source cannot be locked", 24, 1, 0, 3, ORVO_ERR_FAILURE, FailureRow::kCopy},
      {"result cannot be locked", 24, 1, 0, 4, ORVO_ERR_FAILURE, FailureRow::kCopy},
      {"1 bit", 1, 1, 0, 0, ORVO_ERR_BAD_DEPTH, FailureRow::kSource},
      {"16 bits", 16, 1, 0, 0, ORVO_ERR_BAD_DEPTH, FailureRow::kSource},
      {"32 bits", 32, 1, 0, 0, ORVO_ERR_BAD_DEPTH, FailureRow::kSource},
  };
  for (const FailureRow& row : rows) {
    SCOPED_TRACE(row.name);
    const orvo::OwnedDib source = pictures::Noise(8, 8, row.depth, 1);
    const std::vector<std::uint8_t> before = pictures::BytesOf(source.get());
    const std::size_t blocks = PlatformLiveBlocks();
    PlatformFailAllocation(row.failAllocation);
    PlatformFailLock(row.failLock);
    DibHandle result = &toolkit;
    EXPECT_EQ(toolkit.CSDescreen(source.get(), &result, row.level, nullptr), row.code);
    PlatformFailAllocation(0);
    PlatformFailLock(0);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
    EXPECT_EQ(pictures::BytesOf(source.get()), before);
    if (row.left == FailureRow::kCopy) {
      EXPECT_EQ(pictures::Difference(source.get(), result), "");
      GlobalFree(result);
    } else {
      EXPECT_EQ(result, row.left == FailureRow::kSource ? source.get() : nullptr);
    }
    EXPECT_EQ(PlatformLiveBlocks(), blocks);
  }
  DibHandle result = &toolkit;
  EXPECT_EQ(toolkit.CSDescreen(nullptr, &result, 9, nullptr), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(result, nullptr);
}

}  // namespace
