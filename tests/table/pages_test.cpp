// Scanned pages: the list of what lies on them, a crooked page turned upright, the search of
// auto-trim.
#include <array>

#include <orvo/COrvoCS.h>

#include "toolkit_test.h"

namespace table {
namespace {

using Sides = std::vector<int>;  // left, top, right, bottom
using Items = std::vector<Sides>;

Sides SidesOf(const auto& r) {
  return {r.left, r.top, r.right, r.bottom};
}

// White, with boxes of a tone given in pixels from the top left.
OwnedDib Page(int width, int height, const Items& boxes, int depth = 24, int tone = 0x40) {
  OwnedDib page = pictures::Blank(width, height, depth);
  const Locked image(page.get());
  std::memset(image.row(0), 0xFF, image.layout().totalBytes - image.layout().pixelOffset);
  for (const std::vector<int>& box : boxes) {
    for (int y = box[1]; y < box[3]; ++y) {
      std::uint8_t* const row = image.row(height - 1 - y);
      for (int x = box[0]; x < box[2]; ++x) {
        if (depth == 1) row[x / 8] = static_cast<std::uint8_t>(row[x / 8] & ~(0x80 >> x % 8));
        if (depth > 1) std::memset(row + x * depth / 8, tone, static_cast<std::size_t>(depth / 8));
      }
    }
  }
  return page;
}

// A dark rectangle of 240 x 120 in the middle of 400 x 400, turned clockwise as shown.
OwnedDib TiltedPage(int degrees) {
  OwnedDib page = Page(400, 400, {}, 8);
  const Locked image(page.get());
  const double a = degrees * std::acos(-1.0) / 180;
  for (int i = 0; i < 400 * 400; ++i) {
    const double x = i % 400 - 200;
    const double y = i / 400 - 200;
    const bool inside = std::abs(x * std::cos(a) + y * std::sin(a)) <= 120 &&
                        std::abs(y * std::cos(a) - x * std::sin(a)) <= 60;
    if (inside) image.row(399 - i / 400)[i % 400] = 0;
  }
  return page;
}

class Pages : public ToolkitTest {};

// 300 x 300 pixels make a scale of 2.5, a reach of 10 and a seed step of 2 mask pixels from 25 and
// 5, so items count from 11 mask pixels on.
TEST_F(Pages, ItemsComeInSourcePixelsFromTheTop) {
  const Items frame = {{10, 10, 290, 25},
                       {10, 25, 25, 275},
                       {275, 25, 290, 275},
                       {10, 275, 290, 290},
                       {120, 120, 180, 180}};
  const Items apart = {{50, 100, 100, 150}, {125, 100, 175, 150}};
  constexpr int kMost = std::numeric_limits<int>::max();
  Sum sum;
  for (const Items& boxes : {Items{}, Items{{50, 10, 100, 60}, {200, 190, 250, 290}},
                             Items{{0, 0, 301, 333}}, Items{{50, 100, 75, 200}}, frame,
                             Items{{50, 100, 100, 150}, {123, 100, 175, 150}}, apart}) {
    for (const auto& [reach, level] : std::initializer_list<std::array<int, 2>>{{25, 250},
                                                                                {28, 250},
                                                                                {0, 250},
                                                                                {-kMost - 1, 250},
                                                                                {kMost, 250},
                                                                                {25, 0x40},
                                                                                {25, 0x41},
                                                                                {25, 256}}) {
      for (const int depth : {8, 24, 32}) {
        const bool large = boxes.size() == 1;
        const OwnedDib page = Page(large ? 301 : 300, large ? 333 : 300, boxes, depth);
        RegionRecord* list = nullptr;
        int count = -1;
        sum << CallSlot(toolkit.get(), 54, page.get(), &list, &count, reach, level) << count;
        EXPECT_EQ(list != nullptr, count > 0);
        if (boxes == apart && reach == 0) {
          EXPECT_EQ(SidesOf(list[0]), apart[0]);
          EXPECT_EQ(SidesOf(list[1]), apart[1]);
        }
        for (int k = 0; k < count; ++k) sum << SidesOf(list[k]) << list[k].reserved;
        GlobalFree(list);
      }
    }
  }
  EXPECT_EQ(sum.hex(), "b2b208d4");
}

TEST_F(Pages, NothingFoundLeavesTheListAlone) {
  RegionRecord mark{};
  const OwnedDib empty = Page(300, 300, {});
  const OwnedDib malformed = Page(300, 300, {{50, 100, 100, 150}});
  ++Locked(malformed.get()).header()->biHeight;
  RegionRecord* list = &mark;
  int count = -1;
  for (const DibHandle page : {DibHandle{}, empty.get(), malformed.get(), DibHandle{&mark}}) {
    EXPECT_EQ(toolkit->FindRegions(page, &list, &count, 25, 250), ORVO_OK);
    EXPECT_EQ(list, &mark);
    EXPECT_EQ(std::exchange(count, -1), 0);
  }
  EXPECT_EQ(toolkit->FindRegions(empty.get(), nullptr, &count, 25, 250), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->FindRegions(empty.get(), &list, nullptr, 25, 250), ORVO_ERR_BAD_ARGUMENT);
}

// --- Deskew --------------------------------------------------------------------------------------

// Nothing stops a deskew, and failures show in the result handle alone.
TEST_F(Pages, CrookedPagesAreTurnedAndKeepTheirSize) {
  stopAt = 3;
  Sum sum;
  for (const int tilt : {5, -9, 0, 99}) {  // the last for a page with nothing on it
    const OwnedDib page = tilt == 99 ? Page(400, 400, {}, 8) : TiltedPage(tilt);
    const OwnedDib original = pictures::CopyOf(page.get());
    // Without a callback not even that of the call before, which the module keeps, is called.
    for (const StatusCallback watch : {StatusCallback{&Watch}, StatusCallback{nullptr}}) {
      for (const int module : {1, -1}) {
        if (module < 0) state.answers["L_RotateBitmap"] = {-1};
        DibHandle made = nullptr;
        int angle = 1;
        heard.clear();
        EXPECT_EQ(CallSlot(toolkit.get(), 55, page.get(), &made, &angle, watch), ORVO_OK);
        EXPECT_NEAR(angle, tilt == 99 ? 0 : -100 * tilt, 100);
        EXPECT_EQ(made == page.get(), module < 0);
        EXPECT_EQ(heard.empty(), watch == nullptr);
        EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()));
        sum << angle << heard << log() << made;
        EXPECT_EQ(Difference(original.get(), page.get()), "");
        if (module > 0) GlobalFree(made);
      }
    }
  }
  EXPECT_EQ(sum.hex(), "d56ba3e0");
  const OwnedDib page = TiltedPage(5);
  int angle = 1;
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->AutoDeskew(nullptr, &made, &angle, nullptr), ORVO_OK);
  EXPECT_TRUE(made == nullptr && angle == 0);
  EXPECT_EQ(toolkit->AutoDeskew(page.get(), nullptr, &angle, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoDeskew(page.get(), &made, nullptr, nullptr), ORVO_OK);
  GlobalFree(std::exchange(made, nullptr));
  angle = 1;
  log();
  state.writes = false;
  rig::FailNew(1);
  EXPECT_EQ(toolkit->AutoDeskew(page.get(), &made, &angle, nullptr), ORVO_OK);
  rig::FailNew(0);
  EXPECT_EQ(angle, 0) << "without memory for the search";
  GlobalFree(made);
}

// --- Auto-trim -----------------------------------------------------------------------------------

// A block of a tone in columns 30..59 and stored rows 20..49.
OwnedDib Scan(int depth, int tone) {
  return Page(100, 80, {{30, 30, 60, 60}}, depth, tone);
}

// What is dark for three pixels in each inch of seventy-two dots counts. Of the thresholds, the
// highest that finds something is searched.
TEST_F(Pages, ContentIsMeasuredAndTheThresholdSearched) {
  COrvoCS own;
  Sum sum;
  const auto fold = [&](DibHandle page, int threshold) {
    const auto level = static_cast<std::uint8_t>(threshold);
    RECT rect{5, 5, 5, 5};
    sum << own.CSGetAutoTrimRect(page, level, &rect) << SidesOf(rect);
    sum << CallSlot(toolkit.get(), 44, page, level, &rect) << SidesOf(rect);
    return SidesOf(rect);
  };
  for (int tone = 0; tone < 256; tone += 5) {
    for (const int resolution : {0, 2833, 2834, 8501, 8502, 11811}) {
      const OwnedDib page = Scan(tone % 2 == 0 ? 8 : 24, tone);
      Locked(page.get()).header()->biXPelsPerMeter = resolution;
      // Paler still round the block, so that each threshold finds another border.
      for (int i = 0; i < 18; ++i) {
        const int paler = std::min(tone + 2 * i, 255);
        std::memset(Locked(page.get()).row(50 + i) + 40, paler, 60);
      }
      for (const int threshold : {0, 9, 25, 100, 229, 255}) fold(page.get(), threshold);
    }
  }
  EXPECT_EQ(fold(Scan(24, 24).get(), 255), Sides({18, 8, 71, 61}));
  EXPECT_EQ(sum.hex(), "946d42de");
}

TEST_F(Pages, PagesAreTrimmedToWhatWasMeasured) {
  state.newHandles = false;
  Sum sum;
  for (const int depth : {1, 4, 8, 16, 24, 32}) {
    for (const int failing : {0, 1, 2, 3, 4}) {
      OwnedDib page = Scan(depth, 0);
      for (const int form : {0, 1, 2}) {
        RECT rect{5, 5, 5, 5};
        DibHandle made = nullptr;
        (failing < 2 ? PlatformFailAllocation : PlatformFailLock)((failing + 1) / 2);
        sum << (form == 0   ? CallSlot(toolkit.get(), 44, page.get(), std::uint8_t{9}, &rect)
                : form == 1 ? CallSlot(toolkit.get(), 42, page.get(), &made, std::uint8_t{9})
                            : CallSlot(toolkit.get(), 43, page.address(), std::uint8_t{9}));
        PlatformFailAllocation(0);
        PlatformFailLock(0);
        EXPECT_TRUE(form != 1 || failing != 0 || depth != 24 || Measures(made) == "53x53x24");
        sum << SidesOf(rect) << page.get() << OwnedDib(made).get() << log();
      }
    }
  }
  RECT rect{5, 5, 5, 5};
  DibHandle made = nullptr;
  sum << toolkit->GetAutoTrimRect(nullptr, 9, &rect) << SidesOf(rect)
      << toolkit->GetAutoTrimRect(Scan(8, 0).get(), 9, nullptr)
      << toolkit->AutoTrim(nullptr, &made, 9) << toolkit->AutoTrim(nullptr, nullptr, 9)
      << toolkit->AutoTrimInPlace(nullptr, 9);
  EXPECT_EQ(sum.hex(), "dc5b2262");
}

}  // namespace
}  // namespace table
