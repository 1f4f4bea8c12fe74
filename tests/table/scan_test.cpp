// Scan clean-up through the table: descreening with its sharpening, and the search of auto-trim.
#include <array>

#include <orvo/COrvoCS.h>

#include "toolkit_test.h"

namespace table {
namespace {

class Scans : public ToolkitTest {};

TEST_F(Scans, DescreenReportsEachPercentOnceAndStops) {
  for (const int height : {1, 3, 100, 101, 350}) {
    const OwnedDib print = pictures::Noise(4, height, 8, 1);
    heard.clear();
    ASSERT_EQ(toolkit->DescreenInPlace(print.get(), 0, 0, &Watch), ORVO_OK);
    std::vector<int> expected;
    for (int y = 0; y < height; ++y) {
      const int percent = (100 * y + height - 1) / height;
      if (expected.empty() || percent > expected.back()) expected.push_back(percent);
    }
    EXPECT_EQ(heard, expected) << height << " rows";
  }
  const OwnedDib print = pictures::Noise(8, 100, 24, 1);
  const std::vector<std::uint8_t> before = pictures::BytesOf(print.get());
  stopAt = 50;
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->Descreen(print.get(), &made, 0, 9, &Watch), ORVO_ERR_CANCELLED);
  EXPECT_EQ(made, print.get());
  EXPECT_EQ(pictures::BytesOf(print.get()), before);
  EXPECT_EQ(toolkit->DescreenInPlace(print.get(), 0, 9, &Watch), ORVO_ERR_CANCELLED);
  const std::vector<std::uint8_t> after = pictures::BytesOf(print.get());
  const auto [a, b] = std::mismatch(after.rbegin(), after.rend(), before.rbegin());
  EXPECT_EQ((after.rend() - a - 1 - 40) / 24, 49) << "the last row that was filtered";
  EXPECT_EQ(log(), Log()) << "no sharpening after a stop";
}

TEST_F(Scans, DescreenSharpensByTenTimesTheAmount) {
  const OwnedDib print = pictures::Noise(40, 30, 24, 3);
  const auto descreened = [&](std::uint32_t amount, int code) {
    DibHandle made = nullptr;
    EXPECT_EQ(toolkit->Descreen(print.get(), &made, 2, amount, nullptr), code) << amount;
    OwnedDib result(made);
    OwnedDib same = pictures::CopyOf(print.get());
    Locked(same.get()).header()->biClrImportant = 9;  // its own header stays
    EXPECT_EQ(toolkit->DescreenInPlace(same.get(), 2, amount, nullptr), code) << amount;
    EXPECT_EQ(std::exchange(Locked(same.get()).header()->biClrImportant, 0), 9U);
    return std::pair(std::move(result), std::move(same));
  };
  auto expected = descreened(0, ORVO_OK);
  for (const std::uint32_t amount : {101U, 429496730U, 0xFFFFFFFFU}) {
    const auto left = descreened(amount, ORVO_ERR_OUT_OF_RANGE);
    EXPECT_EQ(Difference(expected.first.get(), left.first.get()), "");
    EXPECT_EQ(Difference(expected.second.get(), left.second.get()), "");
  }
  for (OwnedDib* const smooth : {&expected.first, &expected.second}) {
    EXPECT_EQ(toolkit->LeadSharpnessAdjustInPlace(smooth->address(), 300, nullptr), ORVO_OK);
  }
  const auto sharp = descreened(30, ORVO_OK);
  EXPECT_EQ(Difference(expected.first.get(), sharp.first.get()), "");
  EXPECT_EQ(Difference(expected.second.get(), sharp.second.get()), "");
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->Descreen(print.get(), &made, 2, 100, &Watch), ORVO_OK);
  GlobalFree(made);
  EXPECT_EQ(heard.back(), 100) << "the sharpening has the callback too";
  log();
}

TEST_F(Scans, DescreenReadsTheHeaderAsItIs) {
  const OwnedDib image = pictures::Noise(12, 9, 24, 4);
  const std::vector<std::uint8_t> bytes = pictures::BytesOf(image.get());
  BITMAPINFOHEADER& header = *Locked(image.get()).header();
  for (const int height : {0, -9}) {  // no rows, nothing to do
    header.biHeight = height;
    EXPECT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_OK);
    header.biBitCount = 16;
    EXPECT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_ERR_FAILURE);
    header.biBitCount = 24;
  }
  header.biHeight = 9;
  ASSERT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_OK);
  // Rows follow a header of any size, but one that says less than the plain one is not believed.
  for (const unsigned size : {108U, 41U, 12U, 0U}) {
    const std::size_t shift = std::max(size, 40U) - 40;
    const OwnedDib shifted(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() + shift));
    std::uint8_t* const to = Locked(shifted.get()).bytes();
    std::memcpy(to, bytes.data(), 40);
    std::memcpy(to + 40 + shift, bytes.data() + 40, bytes.size() - 40);
    Locked(shifted.get()).header()->biSize = size;
    ASSERT_EQ(toolkit->DescreenInPlace(shifted.get(), 1, 0, nullptr), ORVO_OK);
    EXPECT_EQ(std::memcmp(to + 40 + shift, Locked(image.get()).row(0), bytes.size() - 40), 0)
        << size;
  }
}

// --- Auto-trim -----------------------------------------------------------------------------------

using Sides = std::vector<int>;
Sides SidesOf(const RECT& r) {
  return {r.left, r.top, r.right, r.bottom};
}

// A white page with a block of a tone, from the lower left: columns 30..59, stored rows 20..49.
OwnedDib Page(int depth, int tone) {
  OwnedDib page = pictures::Blank(100, 80, depth);
  const Locked image(page.get());
  for (int y = 0; y < 80; ++y) {
    std::uint8_t* const row = image.row(y);
    std::memset(row, 255, image.layout().stride);
    for (int x = 30; y >= 20 && y < 50 && x < 60; ++x) {
      if (depth == 1) row[x / 8] = static_cast<std::uint8_t>(row[x / 8] & ~(0x80 >> x % 8));
      if (depth > 1) std::memset(row + x * depth / 8, tone, static_cast<std::size_t>(depth / 8));
    }
  }
  return page;
}

TEST_F(Scans, ContentIsWhatIsDarkForThreePixelsInEachInchOfSeventyTwoDots) {
  COrvoCS own;
  // The block's tone, threshold, pixels per metre; how far the sides lie from it, nothing if below.
  const std::array<int, 4> rows[] = {{0, 255, 0, 0},      {24, 255, 11811, 12}, {25, 255, 2833, 0},
                                     {26, 255, 2834, -1}, {26, 229, 2834, 3},   {27, 229, 2834, -1},
                                     {230, 0, 8501, 6},   {230, 25, 8502, 9},   {231, 0, 2834, -1},
                                     {155, 100, 2834, 3}, {156, 100, 2834, -1}};
  for (const auto& [tone, threshold, resolution, run] : rows) {
    for (const int depth : {8, 24}) {
      const OwnedDib page = Page(depth, tone);
      Locked(page.get()).header()->biXPelsPerMeter = resolution;
      RECT rect{5, 5, 5, 5};
      ASSERT_EQ(own.CSGetAutoTrimRect(page.get(), static_cast<std::uint8_t>(threshold), &rect),
                ORVO_OK);
      const Sides sides = {30 - run, 20 - run, 59 + run, 49 + run};
      EXPECT_EQ(SidesOf(rect), run < 0 ? Sides({0, 0, 1, 1}) : sides) << tone << ", " << threshold;
    }
  }
}

// The search by its own rules over one measurement after the other.
Sides SearchPlainly(COrvoCS& own, DibHandle page, int first) {
  int t = first;
  int step = 10;
  int best = 0;
  int direction = 0;
  const auto measure = [&](int threshold) {
    RECT rect;
    EXPECT_EQ(own.CSGetAutoTrimRect(page, static_cast<std::uint8_t>(threshold), &rect), ORVO_OK);
    return rect;
  };
  while (t >= 0) {
    const RECT rect = measure(t);
    const int towards = rect.right - rect.left > 1 && rect.bottom - rect.top > 1 ? 1 : -1;
    if (towards > 0 && t == first) return SidesOf(rect);
    if (towards > 0) best = t;
    if (direction == -towards) step /= 2;
    if (step == 0) return SidesOf(towards > 0 ? rect : measure(best));
    direction = towards;
    t += towards * step;
  }
  return {0, 0, 100, 80};
}

TEST_F(Scans, TheHighestThresholdThatFindsIsSearched) {
  COrvoCS own;
  for (int tone = 0; tone < 256; tone += 7) {
    const OwnedDib page = Page(tone % 2 == 0 ? 8 : 24, tone);
    // Paler still round the block, so that each threshold finds another border.
    for (int i = 0; i < 18; ++i) {
      const int paler = std::min(tone + 2 * i, 255);
      std::memset(Locked(page.get()).row(50 + i) + 40, paler, 60);
    }
    for (const int threshold : {0, 9, 100, 255}) {
      RECT rect{};
      ASSERT_EQ(
          CallSlot(toolkit.get(), 44, page.get(), static_cast<std::uint8_t>(threshold), &rect),
          ORVO_OK);
      EXPECT_EQ(SidesOf(rect), SearchPlainly(own, page.get(), threshold))
          << tone << ", " << threshold;
    }
  }
}

TEST_F(Scans, PagesAreTrimmedToWhatWasMeasured) {
  for (const int depth : {1, 8, 24}) {
    SCOPED_TRACE(depth);
    OwnedDib page = Page(depth, 0);
    DibHandle made = nullptr;
    ASSERT_EQ(toolkit->Trim(page.get(), &made, 18, 8, 71, 61), ORVO_OK);
    const OwnedDib expected(std::exchange(made, nullptr));
    ASSERT_EQ(CallSlot(toolkit.get(), 42, page.get(), &made, std::uint8_t{100}), ORVO_OK);
    EXPECT_EQ(Difference(expected.get(), OwnedDib(made).get()), "");
    EXPECT_EQ(Difference(Page(depth, 0).get(), page.get()), "");
    ASSERT_EQ(CallSlot(toolkit.get(), 43, page.address(), std::uint8_t{100}), ORVO_OK);
    EXPECT_EQ(Difference(expected.get(), page.get()), "");
  }
  // Depth, allocation and lock that fail, code.
  const std::array<int, 4> rows[] = {{4, 0, 0, ORVO_ERR_BAD_DEPTH},  {16, 0, 0, ORVO_ERR_BAD_DEPTH},
                                     {32, 0, 0, ORVO_ERR_BAD_DEPTH}, {1, 1, 0, ORVO_ERR_NO_MEMORY},
                                     {24, 0, 1, ORVO_ERR_FAILURE},   {8, 0, 2, ORVO_ERR_FAILURE}};
  for (const auto& [depth, allocation, lock, code] : rows) {
    OwnedDib page = pictures::Noise(40, 40, depth, 3);
    log();
    for (const int form : {0, 1, 2}) {
      RECT rect{5, 5, 5, 5};
      DibHandle made = &rect;
      PlatformFailAllocation(allocation);
      PlatformFailLock(lock);
      EXPECT_EQ(form == 0   ? toolkit->GetAutoTrimRect(page.get(), 9, &rect)
                : form == 1 ? toolkit->AutoTrim(page.get(), &made, 9)
                            : toolkit->AutoTrimInPlace(page.address(), 9),
                code);
      PlatformFailAllocation(0);
      PlatformFailLock(0);
      EXPECT_EQ(SidesOf(rect), form == 0 ? Sides({0, 0, 1, 1}) : Sides(4, 5));
      EXPECT_EQ(made, &rect) << "left alone";
      EXPECT_EQ(Difference(pictures::Noise(40, 40, depth, 3).get(), page.get()), "");
      EXPECT_EQ(log(), Log());
    }
  }
  RECT rect{5, 5, 5, 5};
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->GetAutoTrimRect(nullptr, 9, &rect), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(SidesOf(rect), Sides(4, 5));
  EXPECT_EQ(toolkit->GetAutoTrimRect(Page(8, 0).get(), 9, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoTrim(nullptr, &made, 9), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(toolkit->AutoTrim(nullptr, nullptr, 9), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoTrimInPlace(nullptr, 9), ORVO_ERR_BAD_ARGUMENT);
}

}  // namespace
}  // namespace table
