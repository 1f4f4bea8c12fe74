// Scan clean-up through the table: descreening with its sharpening, and the search of auto-trim.
#include <orvo/COrvoCS.h>

#include "toolkit_test.h"

namespace table {
namespace {

class Scans : public ToolkitTest {};

// --- Descreen ------------------------------------------------------------------------------------

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
  const auto row = [](int y) { return 40 + y * 24; };
  EXPECT_FALSE(std::equal(after.begin() + row(49), after.begin() + row(50), before.begin() + row(49)));
  EXPECT_TRUE(std::equal(after.begin() + row(50), after.end(), before.begin() + row(50)));
  EXPECT_EQ(log(), Log()) << "no sharpening after a stop";
}

TEST_F(Scans, DescreenSharpensByTenTimesTheAmount) {
  for (const int depth : {8, 24}) {
    SCOPED_TRACE(depth);
    const OwnedDib print = pictures::Noise(40, 30, depth, 3);
    DibHandle made = nullptr;
    ASSERT_EQ(toolkit->Descreen(print.get(), &made, 2, 0, nullptr), ORVO_OK);
    const OwnedDib smooth(std::exchange(made, nullptr));
    ASSERT_EQ(toolkit->LeadSharpnessAdjust(smooth.get(), &made, 300, nullptr), ORVO_OK);
    const OwnedDib sharp(std::exchange(made, nullptr));
    ASSERT_EQ(toolkit->Descreen(print.get(), &made, 2, 30, &Watch), ORVO_OK);
    const OwnedDib both(std::exchange(made, nullptr));
    EXPECT_EQ(Difference(sharp.get(), both.get()), "");
    for (const std::uint32_t amount : {101U, 429496730U, 0xFFFFFFFFU}) {
      EXPECT_EQ(toolkit->Descreen(print.get(), &made, 2, amount, nullptr), ORVO_ERR_OUT_OF_RANGE);
      const OwnedDib left(std::exchange(made, nullptr));
      EXPECT_EQ(Difference(smooth.get(), left.get()), "");
    }
    // In place the handle came by value: its own block holds what was sharpened, header and all.
    const OwnedDib same = pictures::CopyOf(print.get());
    const OwnedDib sameSmooth = pictures::CopyOf(print.get());
    Locked(same.get()).header()->biClrImportant = 9;
    ASSERT_EQ(toolkit->DescreenInPlace(sameSmooth.get(), 2, 0, nullptr), ORVO_OK);
    ASSERT_EQ(toolkit->LeadSharpnessAdjust(sameSmooth.get(), &made, 300, nullptr), ORVO_OK);
    const OwnedDib sameSharp(std::exchange(made, nullptr));
    ASSERT_EQ(toolkit->DescreenInPlace(same.get(), 2, 30, nullptr), ORVO_OK);
    EXPECT_EQ(std::exchange(Locked(same.get()).header()->biClrImportant, 0), 9U);
    EXPECT_EQ(Difference(sameSharp.get(), same.get()), "");
    state.answers["L_SharpenBitmap"] = {-13};
    const OwnedDib unsharpened = pictures::CopyOf(print.get());
    EXPECT_EQ(toolkit->DescreenInPlace(unsharpened.get(), 2, 100, nullptr), ORVO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(Difference(sameSmooth.get(), unsharpened.get()), "");
  }
}

TEST_F(Scans, DescreenReadsTheHeaderAsItIs) {
  const OwnedDib image = pictures::Noise(12, 9, 24, 4);
  constexpr std::size_t kLonger = 68;  // bytes beyond the plain header
  const std::vector<std::uint8_t> bytes = pictures::BytesOf(image.get());
  const OwnedDib shifted(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() + kLonger));
  const Locked to(shifted.get());
  std::memcpy(to.bytes(), bytes.data(), 40);
  to.header()->biSize = 40 + kLonger;
  std::memcpy(to.bytes() + 40 + kLonger, bytes.data() + 40, bytes.size() - 40);
  ASSERT_EQ(toolkit->DescreenInPlace(shifted.get(), 1, 0, nullptr), ORVO_OK);
  ASSERT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_OK);
  EXPECT_EQ(std::memcmp(to.bytes() + 40 + kLonger, Locked(image.get()).bytes() + 40,
                        bytes.size() - 40),
            0);
  EXPECT_NE(std::memcmp(to.bytes() + 40 + kLonger, bytes.data() + 40, bytes.size() - 40), 0);
  // One that says less than the plain header holds is not believed.
  Locked(image.get()).header()->biSize = 12;
  ASSERT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_OK);
  for (const int height : {0, -9}) {  // no rows, nothing to do
    Locked(image.get()).header()->biHeight = height;
    EXPECT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_OK);
    Locked(image.get()).header()->biBitCount = 16;
    EXPECT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_ERR_FAILURE);
    Locked(image.get()).header()->biBitCount = 24;
  }
}

// --- Auto-trim -----------------------------------------------------------------------------------

bool HasSize(const RECT& r) {
  return r.right - r.left > 1 && r.bottom - r.top > 1;
}

std::vector<int> Sides(const RECT& r) {
  return {r.left, r.top, r.right, r.bottom};
}

// A white page with a block of a tone, from the lower left: columns 30..59, stored rows 20..49.
OwnedDib Page(int depth, int tone, int width = 100, int height = 80) {
  OwnedDib page = pictures::Blank(width, height, depth);
  const Locked image(page.get());
  for (int y = 0; y < height; ++y) {
    std::uint8_t* const row = image.row(y);
    std::memset(row, 255, image.layout().stride);
    for (int x = 30; y >= 20 && y < 50 && x < 60; ++x) {
      if (depth == 1) row[x / 8] = static_cast<std::uint8_t>(row[x / 8] & ~(0x80 >> x % 8));
      if (depth > 1) std::memset(row + x * depth / 8, tone, static_cast<std::size_t>(depth / 8));
    }
  }
  return page;
}

TEST_F(Scans, OneThresholdMeasuresDarkPixelsAtLeastThreeForEachInchOfSeventyTwoDots) {
  COrvoCS own;
  struct Row {
    int tone, threshold, pixelsPerMetre;
    std::vector<int> sides;
  };
  const std::vector<int> nothing = {0, 0, 1, 1};
  const Row rows[] = {{0, 255, 0, {30, 20, 59, 49}},
                      {24, 255, 11811, {18, 8, 71, 61}},  // dark to 25, whatever the threshold
                      {25, 255, 2833, {30, 20, 59, 49}},
                      {26, 255, 2834, nothing},
                      {26, 229, 2834, {27, 17, 62, 52}},
                      {27, 229, 2834, nothing},
                      {155, 100, 2834, {27, 17, 62, 52}},
                      {156, 100, 2834, nothing},
                      {230, 0, 8501, {24, 14, 65, 55}},  // light from 231
                      {230, 25, 8502, {21, 11, 68, 58}},
                      {231, 0, 2834, nothing},
                      {0, 9, 28340, {0, 20, 89, 79}}};  // 30 pixels, more than lie below
  for (const Row& row : rows) {
    for (const int depth : {8, 24}) {
      SCOPED_TRACE(testing::PrintToString(row.sides) + " of " + std::to_string(row.tone));
      const OwnedDib page = Page(depth, row.tone);
      Locked(page.get()).header()->biXPelsPerMeter = row.pixelsPerMetre;
      RECT rect{5, 5, 5, 5};
      ASSERT_EQ(own.CSGetAutoTrimRect(page.get(), static_cast<std::uint8_t>(row.threshold), &rect),
                ORVO_OK);
      EXPECT_EQ(Sides(rect), row.sides);
    }
  }
}

// The search by its own rules over one measurement after the other.
RECT SearchPlainly(COrvoCS& own, DibHandle page, int first, std::vector<int>& visited) {
  int t = first;
  int step = 10;
  int best = 0;
  int direction = 0;
  const auto measure = [&](int threshold) {
    visited.push_back(threshold);
    RECT rect;
    EXPECT_EQ(own.CSGetAutoTrimRect(page, static_cast<std::uint8_t>(threshold), &rect), ORVO_OK);
    return rect;
  };
  for (;;) {
    const RECT rect = measure(t);
    const int towards = HasSize(rect) ? 1 : -1;
    if (towards > 0 && t == first) return rect;
    if (towards > 0) best = t;
    if (direction == -towards) step /= 2;
    if (step == 0) return towards > 0 ? rect : measure(best);
    direction = towards;
    t += towards * step;
    if (t < 0) {
      const orvo::DibLayout shape = Locked(page).layout();
      return {0, 0, shape.width, shape.height};
    }
  }
}

TEST_F(Scans, TheHighestThresholdThatFindsIsSearched) {
  COrvoCS own;
  for (int tone = 0; tone < 256; tone += 3) {
    const OwnedDib page = Page(tone % 2 == 0 ? 8 : 24, tone);
    for (const int threshold : {0, 9, 100, 255}) {
      std::vector<int> visited;
      RECT rect{};
      ASSERT_EQ(
          toolkit->GetAutoTrimRect(page.get(), static_cast<std::uint8_t>(threshold), &rect),
          ORVO_OK);
      EXPECT_EQ(Sides(rect), Sides(SearchPlainly(own, page.get(), threshold, visited)))
          << "tone " << tone << ", threshold " << threshold;
    }
  }
  // Content that is found up to a threshold of 37, whose border shows what the last one saw.
  const OwnedDib page = Page(8, 218, 60, 60);
  std::vector<int> visited;
  SearchPlainly(own, page.get(), 100, visited);
  EXPECT_EQ(visited, (std::vector<int>{100, 90, 80, 70, 60, 50, 40, 30, 35, 40, 38, 36, 37, 38, 37}));
}

TEST_F(Scans, PagesAreTrimmedToWhatWasMeasured) {
  for (const int depth : {1, 8, 24}) {
    SCOPED_TRACE(depth);
    OwnedDib page = Page(depth, 0);
    const OwnedDib original = pictures::CopyOf(page.get());
    const OwnedDib old = pictures::Noise(7, 5, 24, 1);
    RECT rect{};
    ASSERT_EQ(CallSlot(toolkit.get(), 44, page.get(), std::uint8_t{100}, &rect), ORVO_OK);
    EXPECT_EQ(Sides(rect), (std::vector<int>{18, 8, 71, 61}));
    DibHandle expected = nullptr;
    ASSERT_EQ(toolkit->Trim(page.get(), &expected, 18, 8, 71, 61), ORVO_OK);
    const OwnedDib trimmed(expected);
    DibHandle made = nullptr;
    ASSERT_EQ(CallSlot(toolkit.get(), 42, page.get(), &made, std::uint8_t{100}), ORVO_OK);
    EXPECT_EQ(Difference(expected, OwnedDib(made).get()), "");
    EXPECT_EQ(Difference(original.get(), page.get()), "");
    ASSERT_EQ(CallSlot(toolkit.get(), 43, page.address(), std::uint8_t{100}), ORVO_OK);
    EXPECT_EQ(Difference(expected, page.get()), "");
  }
  const OwnedDib blank = pictures::Blank(70, 50, 1);
  std::memset(Locked(blank.get()).row(0), 255, 600);
  RECT rect{};
  ASSERT_EQ(toolkit->GetAutoTrimRect(blank.get(), 255, &rect), ORVO_OK);
  EXPECT_EQ(Sides(rect), (std::vector<int>{0, 0, 70, 50}));
}

TEST_F(Scans, TrimmingThatFailsTouchesNothing) {
  struct Row {
    int depth, failAllocation, failLock, code;
  };
  const Row rows[] = {{4, 0, 0, ORVO_ERR_BAD_DEPTH},  {16, 0, 0, ORVO_ERR_BAD_DEPTH},
                      {32, 0, 0, ORVO_ERR_BAD_DEPTH}, {1, 1, 0, ORVO_ERR_NO_MEMORY},
                      {24, 0, 1, ORVO_ERR_FAILURE},   {24, 0, 2, ORVO_ERR_FAILURE},
                      {8, 0, 1, ORVO_ERR_FAILURE}};
  for (const Row& row : rows) {
    OwnedDib page = pictures::Noise(40, 40, row.depth, 3);
    const OwnedDib before = pictures::CopyOf(page.get());
    void* const given = page.get();
    for (const int form : {0, 1, 2}) {
      SCOPED_TRACE(std::to_string(row.depth) + ", form " + std::to_string(form));
      RECT rect{5, 5, 5, 5};
      DibHandle made = &rect;
      PlatformFailAllocation(row.failAllocation);
      PlatformFailLock(row.failLock);
      EXPECT_EQ(form == 0   ? toolkit->GetAutoTrimRect(page.get(), 9, &rect)
                : form == 1 ? toolkit->AutoTrim(page.get(), &made, 9)
                            : toolkit->AutoTrimInPlace(page.address(), 9),
                row.code);
      PlatformFailAllocation(0);
      PlatformFailLock(0);
      EXPECT_EQ(Sides(rect), form == 0 ? (std::vector<int>{0, 0, 1, 1}) : Sides({5, 5, 5, 5}));
      EXPECT_EQ(made, &rect) << "left alone";
      EXPECT_EQ(page.get(), given);
      EXPECT_EQ(Difference(before.get(), page.get()), "");
      for (const std::string& line : log()) EXPECT_FALSE(line.starts_with("L_Trim"));
    }
  }
  RECT rect{5, 5, 5, 5};
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->GetAutoTrimRect(nullptr, 9, &rect), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(toolkit->AutoTrim(nullptr, &made, 9), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(toolkit->AutoTrim(nullptr, nullptr, 9), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoTrimInPlace(nullptr, 9), ORVO_ERR_BAD_ARGUMENT);
  const OwnedDib page = Page(8, 0);
  EXPECT_EQ(toolkit->GetAutoTrimRect(page.get(), 9, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(Sides(rect), Sides({5, 5, 5, 5}));
}

}  // namespace
}  // namespace table
