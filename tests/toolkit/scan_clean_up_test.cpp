// Entries that join the toolkit's own work with the modules': descreen with sharpening, trimming.
#include <gtest/gtest.h>

#include <orvo/raii.h>

#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

// A white page with a dark block, from the lower left: columns 30..59, stored rows 20..49.
orvo::OwnedDib Page(int depth) {
  orvo::OwnedDib page = pictures::Blank(100, 80, depth);
  const pictures::Locked image(page.get());
  for (int y = 0; y < 80; ++y) {
    std::uint8_t* const row = image.row(y);
    std::memset(row, 255, static_cast<std::size_t>(100 * depth / 8));
    for (int x = 30; y >= 20 && y < 50 && x < 60; ++x) {
      if (depth == 1) {
        row[x / 8] = static_cast<std::uint8_t>(row[x / 8] & ~(0x80 >> x % 8));
      } else {
        std::memset(row + x * depth / 8, 0, static_cast<std::size_t>(depth / 8));
      }
    }
  }
  return page;
}

TEST(ScanCleanUp, TrimsPagesOfEveryDepthThatIsMeasured) {
  const orvo::OwnedInstance toolkit;
  for (const int depth : {1, 8, 24}) {
    SCOPED_TRACE(depth);
    orvo::OwnedDib page = Page(depth);
    const std::vector<std::uint8_t> before = pictures::BytesOf(page.get());
    RECT rect{};
    ASSERT_EQ(toolkit->GetAutoTrimRect(page.get(), 100, &rect), ORVO_OK);
    // The sides lie a run of 12 pixels beyond the lines found.
    EXPECT_EQ(rect.left, 18);
    EXPECT_EQ(rect.top, 8);
    EXPECT_EQ(rect.right, 59 + 12);
    EXPECT_EQ(rect.bottom, 49 + 12);

    orvo::OwnedDib expected;
    orvo::OwnedDib trimmed;
    ASSERT_EQ(toolkit->Trim(page.get(), expected.receive(page), rect.left, rect.top, rect.right,
                            rect.bottom),
              ORVO_OK);
    ASSERT_EQ(toolkit->AutoTrim(page.get(), trimmed.receive(page), 100), ORVO_OK);
    EXPECT_EQ(pictures::Difference(expected.get(), trimmed.get()), "");
    EXPECT_EQ(pictures::BytesOf(page.get()), before);
    ASSERT_EQ(toolkit->AutoTrimInPlace(page.address(), 100), ORVO_OK);
    EXPECT_EQ(pictures::Difference(expected.get(), page.get()), "");
  }
}

TEST(ScanCleanUp, BlankPagesStayWhole) {
  const orvo::OwnedInstance toolkit;
  const orvo::OwnedDib blank = pictures::Blank(70, 50, 1);
  pictures::Locked(blank.get()).palette()[0] = RGBQUAD{255, 255, 255, 0};
  RECT rect{};
  ASSERT_EQ(toolkit->GetAutoTrimRect(blank.get(), 255, &rect), ORVO_OK);
  EXPECT_EQ(rect.left + rect.top, 0);
  EXPECT_EQ(rect.right, 70);
  EXPECT_EQ(rect.bottom, 50);
}

TEST(ScanCleanUp, DescreenSharpensAfterwards) {
  const orvo::OwnedInstance toolkit;
  for (const int depth : {8, 24}) {
    SCOPED_TRACE(depth);
    const orvo::OwnedDib print = pictures::Noise(40, 30, depth, 3);
    orvo::OwnedDib smooth;
    orvo::OwnedDib expected;
    orvo::OwnedDib both;
    ASSERT_EQ(toolkit->Descreen(print.get(), smooth.receive(print), 2, 0, nullptr), ORVO_OK);
    ASSERT_EQ(toolkit->LeadSharpnessAdjust(smooth.get(), expected.receive(smooth), 300, nullptr),
              ORVO_OK);
    ASSERT_EQ(toolkit->Descreen(print.get(), both.receive(print), 2, 30, nullptr), ORVO_OK);
    EXPECT_EQ(pictures::Difference(expected.get(), both.get()), "");

    // In place the handle came by value, and its own block holds what was sharpened.
    const orvo::OwnedDib same = pictures::CopyOf(print.get());
    const orvo::OwnedDib sameSmooth = pictures::CopyOf(print.get());
    ASSERT_EQ(toolkit->DescreenInPlace(sameSmooth.get(), 2, 0, nullptr), ORVO_OK);
    ASSERT_EQ(
        toolkit->LeadSharpnessAdjust(sameSmooth.get(), expected.receive(sameSmooth), 300, nullptr),
        ORVO_OK);
    ASSERT_EQ(toolkit->DescreenInPlace(same.get(), 2, 30, nullptr), ORVO_OK);
    EXPECT_EQ(pictures::Difference(expected.get(), same.get()), "");
  }
}

TEST(ScanCleanUp, ASharpeningThatFailsLeavesTheSmoothedImage) {
  const orvo::OwnedInstance toolkit;
  const orvo::OwnedDib print = pictures::Noise(40, 30, 24, 3);
  const std::size_t blocks = PlatformLiveBlocks();
  {
    orvo::OwnedDib smooth;
    ASSERT_EQ(toolkit->Descreen(print.get(), smooth.receive(print), 1, 0, nullptr), ORVO_OK);
    for (const std::uint32_t amount : {101U, 429496730U, 0xFFFFFFFFU}) {
      orvo::OwnedDib result;
      EXPECT_EQ(toolkit->Descreen(print.get(), result.receive(print), 1, amount, nullptr),
                ORVO_ERR_OUT_OF_RANGE);
      EXPECT_EQ(pictures::Difference(smooth.get(), result.get()), "");
    }
  }
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
}

}  // namespace
