// What lies on a page: the list of items that the caller gets, and a crooked page turned upright.
#include "toolkit_test.h"

namespace table {
namespace {

using Items = std::vector<std::vector<int>>;  // left, top, right, bottom

// White, with dark boxes given in pixels from the top left.
OwnedDib Page(int width, int height, const Items& boxes, int depth = 24) {
  OwnedDib page = pictures::Blank(width, height, depth);
  const Locked image(page.get());
  std::memset(image.row(0), 0xFF, image.layout().totalBytes - image.layout().pixelOffset);
  for (const std::vector<int>& box : boxes) {
    for (int y = box[1]; y < box[3]; ++y) {
      std::memset(image.row(height - 1 - y) + box[0] * depth / 8, 0x40,
                  static_cast<std::size_t>((box[2] - box[0]) * depth / 8));
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

class Regions : public ToolkitTest {
 protected:
  Items find(DibHandle page, int reach = 25, int level = 250) {
    RegionRecord* list = nullptr;
    int count = -1;
    EXPECT_EQ(CallSlot(toolkit.get(), 54, page, &list, &count, reach, level), ORVO_OK);
    EXPECT_EQ(list != nullptr, count > 0);
    Items items;
    for (int k = 0; k < count; ++k) {
      items.push_back({list[k].left, list[k].top, list[k].right, list[k].bottom});
      for (const std::uint8_t byte : list[k].reserved) EXPECT_EQ(byte, 0);
    }
    GlobalFree(list);
    return items;
  }
};

// 300 x 300 pixels make a scale of 2.5, a reach of 10 and a seed step of 2 mask pixels from 25 and
// 5, so items count from 11 mask pixels on.
TEST_F(Regions, ItemsComeInSourcePixelsFromTheTop) {
  const Items frame = {{10, 10, 290, 25},
                       {10, 25, 25, 275},
                       {275, 25, 290, 275},
                       {10, 275, 290, 290},
                       {120, 120, 180, 180}};
  const Items near = {{50, 100, 100, 150}, {123, 100, 175, 150}};  // nine mask pixels between
  const Items apart = {{50, 100, 100, 150}, {125, 100, 175, 150}};
  const Items two = {{50, 10, 100, 60}, {200, 190, 250, 290}};
  constexpr int kMost = std::numeric_limits<int>::max();
  struct Row {
    Items boxes, expected;
    int width = 300, height = 300, reach = 25, level = 250;
  };
  const Row rows[] = {{{}, {}},
                      {two, two},
                      {{{0, 0, 301, 333}}, {{0, 0, 301, 331}}, 301, 333},
                      {{{0, 0, 7, 1}}, {}, 7, 1},
                      {{{50, 100, 75, 200}}, {}},
                      {frame, {{10, 10, 290, 290}}},
                      {near, {{50, 100, 175, 150}}},
                      {apart, apart},
                      {apart, {{50, 100, 175, 150}}, 300, 300, 28},
                      {apart, apart, 300, 300, 0},
                      {apart, apart, 300, 300, -kMost - 1},
                      {apart, apart, 300, 300, kMost},
                      {apart, {}, 300, 300, 25, 0x40},
                      {apart, apart, 300, 300, 25, 0x41},
                      {apart, {{0, 0, 300, 300}}, 300, 300, 25, 256}};
  for (const Row& row : rows) {
    for (const int depth : {8, 24, 32}) {
      EXPECT_EQ(find(Page(row.width, row.height, row.boxes, depth).get(), row.reach, row.level),
                row.expected)
          << testing::PrintToString(row.boxes) << row.reach << ", " << row.level;
    }
  }
}

TEST_F(Regions, NothingFoundLeavesTheListAlone) {
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

TEST_F(Regions, WithoutMemoryNothingIsFound) {
  const OwnedDib page = Page(300, 300, {{50, 10, 100, 60}, {200, 190, 250, 290}});
  for (void (*const fail)(int) noexcept :
       {PlatformFailAllocation, PlatformFailLock, watched::FailNew}) {
    int n = 0;
    for (int count = 0; count == 0 && ++n < 2000;) {
      RegionRecord* list = nullptr;
      fail(n);
      const int code = toolkit->FindRegions(page.get(), &list, &count, 25, 250);
      fail(0);
      EXPECT_EQ(code, ORVO_OK);
      EXPECT_EQ(list != nullptr, count == 2);
      EXPECT_EQ(PlatformHeldLocks(), 0U);
      GlobalFree(list);
    }
    EXPECT_GT(n, 1);
    EXPECT_LT(n, 2000) << "never came through";
  }
}

// --- Deskew --------------------------------------------------------------------------------------

TEST_F(Regions, CrookedPagesAreTurnedAndKeepTheirSize) {
  answer = ORVO_ERR_CANCELLED;             // which does not stop a deskew
  for (const int tilt : {5, -9, 0, 99}) {  // the last for a page with nothing on it
    const OwnedDib page = tilt == 99 ? Page(400, 400, {}, 8) : TiltedPage(tilt);
    const OwnedDib original = pictures::CopyOf(page.get());
    DibHandle made = nullptr;
    int angle = 1;
    heard.clear();
    EXPECT_EQ(CallSlot(toolkit.get(), 55, page.get(), &made, &angle, &Watch), ORVO_OK);
    const OwnedDib upright(std::exchange(made, nullptr));
    EXPECT_NEAR(angle, tilt == 99 ? 0 : -100 * tilt, 100);
    EXPECT_EQ(angle % 100, 0);
    EXPECT_EQ(log()[2], "L_RotateBitmap(400x400x8, " + std::to_string(angle) + ", 0, 16777215)");
    EXPECT_EQ(Measures(upright.get()), "400x400x8");
    EXPECT_EQ(Difference(original.get(), page.get()), "");
    // One by one for the stages, of which an empty page has one less, then up by seventy.
    const int stages = tilt == 99 ? 20 : 30;
    for (int i = 0; i < static_cast<int>(heard.size()); ++i) {
      const int percent = heard[static_cast<std::size_t>(i)];
      EXPECT_TRUE(i < stages ? percent == i + 1 : percent > heard[static_cast<std::size_t>(i) - 1]);
    }
    EXPECT_EQ(heard.back(), stages + 70);
    // Without a callback not even that of the call before, which the module keeps, is called.
    heard.clear();
    EXPECT_EQ(toolkit->AutoDeskew(page.get(), &made, nullptr, nullptr), ORVO_OK);
    EXPECT_TRUE(heard.empty());
    EXPECT_EQ(log().size(), 3U);
    EXPECT_EQ(Difference(upright.get(), OwnedDib(made).get()), "");
  }
}

// Failures show in the result handle alone.
TEST_F(Regions, DeskewAlwaysSucceeds) {
  int angle = 1;
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->AutoDeskew(nullptr, &made, &angle, nullptr), ORVO_OK);
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(angle, 0);
  const OwnedDib page = TiltedPage(5);
  state.answers["L_RotateBitmap"] = {-1};
  EXPECT_EQ(toolkit->AutoDeskew(page.get(), &made, &angle, nullptr), ORVO_OK);
  EXPECT_EQ(made, page.get());
  EXPECT_NE(std::exchange(angle, 1), 0);
  EXPECT_EQ(toolkit->AutoDeskew(page.get(), nullptr, &angle, nullptr), ORVO_ERR_BAD_ARGUMENT);
  made = nullptr;
  state.writes = false;
  watched::FailNew(1);
  EXPECT_EQ(toolkit->AutoDeskew(page.get(), &made, &angle, nullptr), ORVO_OK);
  watched::FailNew(0);
  EXPECT_EQ(angle, 0) << "without memory for the search";
  GlobalFree(made);
}

}  // namespace
}  // namespace table
