// The two entries of the table, on blocks: what the caller gets, and the progress that it sees.
#include <cmath>

#include <orvo/orvo.h>

#include "binding/binding_fixture.h"
#include "failing_memory.h"
#include "plain_finder.h"

using namespace orvo;

namespace {

using binding::BindingTest;
using binding::Log;
using Items = std::vector<std::vector<int>>;  // left, top, right, bottom

// White, with dark boxes given in pixels from the top left.
orvo::OwnedDib Page(int width, int height, const Items& boxes, int depth = 24) {
  orvo::OwnedDib page = pictures::Blank(width, height, depth);
  const pictures::Locked image(page.get());
  const orvo::DibLayout layout = image.layout();
  std::memset(image.row(0), 0xFF, layout.totalBytes - layout.pixelOffset);
  for (const std::vector<int>& box : boxes) {
    for (int y = box[1]; y < box[3]; ++y) {
      std::memset(image.row(height - 1 - y) + box[0] * depth / 8, 0x40,
                  static_cast<std::size_t>((box[2] - box[0]) * depth / 8));
    }
  }
  return page;
}

// A dark rectangle of 240 x 120 in the middle of 400 x 400, turned clockwise as shown.
orvo::OwnedDib TiltedPage(int degrees) {
  orvo::OwnedDib page = Page(400, 400, {}, 8);
  const pictures::Locked image(page.get());
  const double a = degrees * std::acos(-1.0) / 180;
  for (int y = 0; y < 400; ++y) {
    for (int x = 0; x < 400; ++x) {
      const double dx = x - 200;
      const double dy = y - 200;
      if (std::abs(dx * std::cos(a) + dy * std::sin(a)) <= 120 &&
          std::abs(dy * std::cos(a) - dx * std::sin(a)) <= 60) {
        image.row(399 - y)[x] = 0;
      }
    }
  }
  return page;
}

class Entries : public BindingTest {
 protected:
  ~Entries() override { FailAllocationAfter(-1); }

  Items Find(DibHandle page, int reach = 25, int level = 250) {
    RegionRecord* list = nullptr;
    int count = -1;
    EXPECT_EQ(toolkit_->FindRegions(page, &list, &count, reach, level), ORVO_OK);
    EXPECT_EQ(list != nullptr, count > 0);
    Items items;
    for (int k = 0; k < count; ++k) {
      items.push_back({list[k].left, list[k].top, list[k].right, list[k].bottom});
      for (const std::uint8_t byte : list[k].reserved) EXPECT_EQ(byte, 0);
    }
    if (list != nullptr) {
      EXPECT_EQ(GlobalFree(list), nullptr);
    }
    return items;
  }

  orvo::OwnedInstance toolkit_;
};

// 300 x 300 pixels make a scale of 2.5, a reach of 10 and a seed step of 2 mask pixels from 25 and
// 5, so items count from 11 mask pixels on.
TEST_F(Entries, ItemsComeInSourcePixelsFromTheTop) {
  EXPECT_EQ(Find(Page(300, 300, {}).get()), Items{});
  EXPECT_EQ(Find(Page(300, 300, {{50, 100, 100, 150}}).get()), (Items{{50, 100, 100, 150}}));
  EXPECT_EQ(Find(Page(300, 300, {{50, 10, 100, 60}, {200, 190, 250, 290}}).get()),
            (Items{{50, 10, 100, 60}, {200, 190, 250, 290}}));
  EXPECT_EQ(Find(Page(301, 333, {{0, 0, 301, 333}}, 8).get()), (Items{{0, 0, 301, 331}}))
      << "short of the page by less than a mask pixel";
  EXPECT_EQ(Find(Page(7, 1, {{0, 0, 7, 1}}, 8).get()), Items{}) << "no mask row is left";
  // Ten and eleven mask pixels.
  EXPECT_EQ(Find(Page(300, 300, {{50, 100, 75, 200}}).get()), Items{});
  EXPECT_EQ(Find(Page(300, 300, {{50, 100, 77, 200}}).get()).size(), 1U);
  // A patch in the hole of a frame belongs to it, however far from it.
  EXPECT_EQ(Find(Page(300, 300,
                      {{10, 10, 290, 25},
                       {10, 25, 25, 275},
                       {275, 25, 290, 275},
                       {10, 275, 290, 290},
                       {120, 120, 180, 180}})
                     .get()),
            (Items{{10, 10, 290, 290}}));
}

// Nine and ten mask pixels between two items, at a reach of ten.
TEST_F(Entries, ReachAndLevelAreTheCallers) {
  const orvo::OwnedDib near = Page(300, 300, {{50, 100, 100, 150}, {123, 100, 175, 150}});
  const orvo::OwnedDib apart = Page(300, 300, {{50, 100, 100, 150}, {125, 100, 175, 150}});
  EXPECT_EQ(Find(near.get()), (Items{{50, 100, 175, 150}}));
  EXPECT_EQ(Find(apart.get()).size(), 2U);
  EXPECT_EQ(Find(apart.get(), 28).size(), 1U);
  for (const int reach : {24, 1, 0, -1, -1000000, std::numeric_limits<int>::min()}) {
    EXPECT_EQ(Find(apart.get(), reach).size(), 2U) << reach;
  }
  EXPECT_EQ(Find(apart.get(), std::numeric_limits<int>::max()).size(), 2U) << "beyond the page";
  EXPECT_EQ(Find(apart.get(), 25, 0x40), Items{});
  EXPECT_EQ(Find(apart.get(), 25, 0x41).size(), 2U);
  EXPECT_EQ(Find(apart.get(), 25, 256), (Items{{0, 0, 300, 300}}));
}

TEST_F(Entries, WholePathEqualsThePlainForm) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    std::mt19937 random(seed);
    const auto upTo = [&](int most) { return static_cast<int>(random() % (most + 1U)); };
    const int width = 100 + upTo(500);
    const int height = 100 + upTo(500);
    Items boxes;
    for (int n = upTo(25); n > 0; --n) {
      const int x = upTo(width - 1);
      const int y = upTo(height - 1);
      boxes.push_back({x, y, std::min(x + upTo(140), width), std::min(y + upTo(140), height)});
    }
    const orvo::OwnedDib page = Page(width, height, boxes);
    const int reach = upTo(120) - 10;
    const int level = upTo(300);
    const double scale = std::min(width, height) * 0.005 + 1.0;
    const auto rounded = [](double v) {
      const double below = std::floor(v);
      return static_cast<int>((v - below) * 10) < 5 ? static_cast<int>(below)
                                                    : static_cast<int>(std::ceil(v));
    };
    plain::Finder finder(plain::MaskOf(page.get(), level), std::max(rounded(reach / scale), 1),
                         std::max(rounded(5 / scale), 1));
    finder.Segment();
    Items expected;
    for (const PixelRegion& region : finder.regions) {
      const RECT box = region.BoundingRect();
      expected.push_back({rounded(box.left * scale), rounded(box.top * scale),
                          rounded(box.right * scale), rounded(box.bottom * scale)});
    }
    EXPECT_EQ(Find(page.get(), reach, level), expected) << "seed " << seed;
  }
}

TEST_F(Entries, NothingFoundLeavesTheListAlone) {
  RegionRecord mark{};
  const orvo::OwnedDib empty = Page(300, 300, {});
  const orvo::OwnedDib malformed = Page(300, 300, {{50, 100, 100, 150}});
  ++pictures::Locked(malformed.get()).header()->biHeight;
  void* const invented = &mark;
  for (const DibHandle page : {DibHandle{}, empty.get(), malformed.get(), invented}) {
    RegionRecord* list = &mark;
    int count = -1;
    EXPECT_EQ(toolkit_->FindRegions(page, &list, &count, 25, 250), ORVO_OK);
    EXPECT_EQ(list, &mark);
    EXPECT_EQ(count, 0);
  }
  int count = -1;
  RegionRecord* list = nullptr;
  EXPECT_EQ(toolkit_->FindRegions(empty.get(), nullptr, &count, 25, 250), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit_->FindRegions(empty.get(), &list, nullptr, 25, 250), ORVO_ERR_BAD_ARGUMENT);
}

TEST_F(Entries, WithoutMemoryNothingIsFound) {
  const orvo::OwnedDib page = Page(300, 300, {{50, 10, 100, 60}, {200, 190, 250, 290}});
  RegionRecord mark{};
  for (void (*const fail)(int) noexcept : {PlatformFailAllocation, PlatformFailLock}) {
    // The page is locked first, then the list is allocated and locked.
    RegionRecord* list = &mark;
    int count = -1;
    fail(fail == PlatformFailLock ? 2 : 1);
    EXPECT_EQ(toolkit_->FindRegions(page.get(), &list, &count, 25, 250), ORVO_OK);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(count, 0);
  }
  int failures = 0;
  for (int count = 0; count == 0; ++failures) {
    RegionRecord* list = nullptr;
    FailAllocationAfter(failures);
    ASSERT_EQ(toolkit_->FindRegions(page.get(), &list, &count, 25, 250), ORVO_OK);
    FailAllocationAfter(-1);
    EXPECT_EQ(list != nullptr, count == 2);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
    GlobalFree(list);
  }
  EXPECT_GT(failures, 20);
}

// --- Deskew --------------------------------------------------------------------------------------

std::vector<int> seen;
// The double reports 50 percent once; from within that report the module goes on with these.
std::vector<int> furtherReports;
int Watch(int percent, void* userData) {
  seen.push_back(userData == nullptr ? percent : -1);
  for (const int further : std::exchange(furtherReports, {})) {
    if (percent <= 30)
      furtherReports.push_back(further);
    else
      EXPECT_EQ(doubles::TheState().installed(further, &seen), 1);
  }
  return ORVO_ERR_CANCELLED;  // which must not stop a deskew
}

std::vector<int> UpTo(int most) {
  std::vector<int> percents;
  for (int percent = 1; percent <= most; ++percent) percents.push_back(percent);
  return percents;
}

Log RotationsIn(const Log& log) {
  Log rotations;
  for (const std::string& call : log) {
    if (call.starts_with("L_RotateBitmap")) rotations.push_back(call);
  }
  return rotations;
}

TEST_F(Entries, DeskewTurnsByTheAngleAndKeepsTheSize) {
  for (const int tilt : {5, -9, 0}) {
    const orvo::OwnedDib page = TiltedPage(tilt);
    const orvo::OwnedDib original = pictures::CopyOf(page.get());
    orvo::OwnedDib upright;
    int angle = 1;
    seen.clear();
    binding::TakeLog();
    EXPECT_EQ(toolkit_->AutoDeskew(page.get(), upright.receive(page), &angle, Watch), ORVO_OK);
    const Log log = binding::TakeLog();
    EXPECT_NEAR(angle, -100 * tilt, 100);
    EXPECT_EQ(angle % 100, 0);
    EXPECT_EQ(RotationsIn(log),
              (Log{"L_RotateBitmap(b1, " + std::to_string(angle) + ", 0, 16777215)"}));
    EXPECT_TRUE(upright);
    EXPECT_EQ(pictures::Difference(original.get(), page.get()), "");
    // The double reports 50 percent once, which is half of the last seventy.
    std::vector<int> expected = UpTo(30);
    expected.push_back(65);
    EXPECT_EQ(seen, expected);
  }
}

TEST_F(Entries, ProgressRisesAndNeverFallsBack) {
  const struct {
    orvo::OwnedDib page;
    int stages;  // percent before the rotation
    std::vector<int> expected;
  } kRows[] = {{TiltedPage(5), 30, {65, 66, 100}}, {Page(300, 300, {}), 20, {55, 56, 90}}};
  for (const auto& row : kRows) {
    orvo::OwnedDib upright;
    seen.clear();
    furtherReports = {50, 0, 49, 51, 52, 52, 100, 100, 99};
    EXPECT_EQ(toolkit_->AutoDeskew(row.page.get(), upright.receive(row.page), nullptr, Watch),
              ORVO_OK);
    std::vector<int> expected = UpTo(row.stages);
    expected.insert(expected.end(), row.expected.begin(), row.expected.end());
    EXPECT_EQ(seen, expected);
  }
}

// Not even the callback of an earlier call, whose binding the module keeps.
TEST_F(Entries, DeskewWithoutACallbackCallsNone) {
  const orvo::OwnedDib page = TiltedPage(5);
  orvo::OwnedDib upright;
  int angle = 1;
  EXPECT_EQ(toolkit_->AutoDeskew(page.get(), upright.receive(page), &angle, Watch), ORVO_OK);
  seen.clear();
  binding::TakeLog();
  EXPECT_EQ(toolkit_->AutoDeskew(page.get(), upright.receive(page), &angle, nullptr), ORVO_OK);
  EXPECT_EQ(seen, std::vector<int>{});
  const Log log = binding::TakeLog();
  EXPECT_EQ(RotationsIn(log).size(), 1U);
  for (const std::string& call : log) EXPECT_FALSE(call.starts_with("L_SetStatusCallBack"));
}

// Failures show in the result handle alone.
TEST_F(Entries, DeskewAlwaysSucceeds) {
  const orvo::OwnedDib page = TiltedPage(5);
  int angle = 1;
  DibHandle result = nullptr;
  EXPECT_EQ(toolkit_->AutoDeskew(nullptr, &result, &angle, nullptr), ORVO_OK);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(angle, 0);

  doubles::TheState().answers["L_RotateBitmap"] = {kModuleNoMemory};
  EXPECT_EQ(toolkit_->AutoDeskew(page.get(), &result, &angle, nullptr), ORVO_OK);
  EXPECT_EQ(result, page.get());
  EXPECT_NE(angle, 0);

  EXPECT_EQ(toolkit_->AutoDeskew(page.get(), nullptr, &angle, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_NE(GlobalSize(page.get()), 0U);

  FailAllocationAfter(0);
  orvo::OwnedDib turned;
  EXPECT_EQ(toolkit_->AutoDeskew(page.get(), turned.receive(page), &angle, nullptr), ORVO_OK);
  EXPECT_EQ(angle, 0) << "without memory for the search";
}

}  // namespace
