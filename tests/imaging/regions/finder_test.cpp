// From a mask to the list of items, and to the one region that is set upright.
#include <array>
#include <cmath>

#include "imaging/plain_image.h"
#include "imaging/regions/region_finder.h"
#include "methods/page_image.h"
#include "support/pictures.h"

using namespace orvo;

namespace {

using Box = std::array<int, 4>;  // left, top, right, bottom, the last two beyond
using Boxes = std::vector<Box>;

Box SidesOf(const RECT& box) {
  return {box.left, box.top, box.right, box.bottom};
}

// --- Masks ---------------------------------------------------------------------------------------

void Draw(Mask& page, const RECT& box, std::uint8_t value = 1) {
  for (int y = std::max(box.top, 0); y < std::min(box.bottom, page.height); ++y) {
    for (int x = std::max(box.left, 0); x < std::min(box.right, page.width); ++x) {
      page.bytes[page.index(x, y)] = value;
    }
  }
}

// Blocks, frames with a patch inside, staircases that touch at corners only, combs, and specks.
template <class UpTo>
Mask RandomPage(int width, int height, UpTo upTo) {
  Mask page{width, height, {}};
  page.bytes.resize(page.index(0, height));
  for (int items = upTo(24); items >= 0; --items) {
    const int x = upTo(width);
    const int y = upTo(height);
    const int w = 1 + upTo(width / 4);
    const int h = 1 + upTo(height / 4);
    const int kind = upTo(4);
    if (kind < 2) Draw(page, {x, y, x + w, y + h});
    if (kind == 1) {
      Draw(page, {x + 1, y + 1, x + w - 1, y + h - 1}, 0);
      Draw(page, {x + w / 4, y + h / 4, x + w / 2, y + h / 2});
    }
    for (int k = 0; kind > 1 && k < w; ++k) {
      const int left = kind == 4 ? x + upTo(w) : x + k;
      const int top = kind == 4 ? y + upTo(w) : kind == 3 ? y : y + k;
      Draw(page, {left, top, left + (kind == 3 ? k % 2 : 1), kind == 3 ? y + h : top + 1});
    }
  }
  return page;
}

TEST(Finder, ItemsAndLargestRegionsOfRandomMasks) {
  plain::CheckSum sum;
  std::size_t merged = 0;
  for (unsigned seed = 0; seed < 500; ++seed) {
    std::mt19937 random(seed);
    const auto upTo = [&](int most) {
      return static_cast<int>(random() % (static_cast<unsigned>(most) + 1));
    };
    const int width = 1 + upTo(90);
    const Mask page = RandomPage(width, 1 + upTo(60), upTo);
    const CleanUpMeasures measures{.mergeReach = 1 + upTo(upTo(upTo(130))),
                                   .seedStep = 1 + upTo(upTo(upTo(4)))};
    const Segments segments = FindSegments(page, measures.seedStep);
    const std::vector<RECT> boxes = ItemBoxes(segments, measures);
    sum.add(boxes.size());
    for (const RECT& box : boxes) sum.addSides(box);
    const PixelRegion largest = LargestRegion(segments, measures);
    for (const PixelRow& row : largest.rows()) sum.add(row.y, row.left(), row.right());
    merged += segments.regions.size() - boxes.size();
  }
  EXPECT_GT(merged, 1000) << "the pages are too plain to tell";
  EXPECT_EQ(sum.value(), 13569299219758664778U);
}

// --- Whole pages ---------------------------------------------------------------------------------

// A finder of a page of 300 x 400 pixels that is 200 where isDark, and white.
template <class IsDark>
RegionFinder Captured(IsDark isDark, const FinderSettings& settings = {}) {
  const orvo::OwnedDib page = pictures::Blank(300, 400, 8);
  {
    const pictures::Locked image(page.get());
    for (int y = 0; y < 400; ++y) {
      for (int x = 0; x < 300; ++x) image.row(399 - y)[x] = isDark(x, y) ? 200 : 255;
    }
  }
  RegionFinder finder(settings);
  CapturePage(page.get(), finder);
  return finder;
}

// The scale is 2.5, so 25 pixels of reach are 10 of the mask and an item counts from 11 on.
TEST(Finder, PagesInSourcePixels) {
  const Box left = {50, 60, 150, 200};
  const Box right = {175, 60, 250, 200};
  const struct {
    Boxes dark;
    FinderSettings settings;
    Boxes items;
  } kRows[] = {{{left}, {}, {left}},
               {{left, right}, {}, {left, right}},
               {{left, right}, {28, 250}, {{50, 60, 250, 200}}},
               {{left, {173, 60, 250, 200}}, {}, {{50, 60, 250, 200}}},
               {{left, {151, 60, 250, 200}}, {-5, 250}, {{50, 60, 250, 200}}},
               {{{53, 60, 80, 87}}, {}, {{53, 60, 80, 88}}},
               {{{50, 60, 75, 87}}, {}, {}},
               {{left}, {25, 200}, {}},
               {{left}, {25, 201}, {left}},
               {{left}, {25, 256}, {{0, 0, 300, 400}}}};
  for (const auto& row : kRows) {
    const auto isDark = [&](int x, int y) {
      return std::any_of(row.dark.begin(), row.dark.end(), [&](const Box& b) {
        return x >= b[0] && y >= b[1] && x < b[2] && y < b[3];
      });
    };
    RegionFinder finder = Captured(isDark, row.settings);
    finder.Segment();
    Boxes items;
    for (int i = 0; i < finder.RegionCount(); ++i) items.push_back(SidesOf(finder.RegionRect(i)));
    EXPECT_EQ(items, row.items) << "row " << &row - kRows;
    EXPECT_EQ(SidesOf(finder.RegionRect(-1)), Box{});
    EXPECT_EQ(SidesOf(finder.RegionRect(finder.RegionCount())), Box{});
  }
}

TEST(Finder, SkewInSourcePixels) {
  for (const int tilt : {0, 9, -20}) {
    const double a = tilt * std::acos(-1.0) / 180;
    RegionFinder finder = Captured([&](int x, int y) {
      const double across = (x - 150) * std::cos(a) + (y - 200) * std::sin(a);
      const double down = (y - 200) * std::cos(a) - (x - 150) * std::sin(a);
      return std::abs(across) < 100 && std::abs(down) < 50;
    });
    finder.SegmentForDeskew();
    ASSERT_EQ(finder.RegionCount(), 1);
    RECT upright;
    EXPECT_NEAR(finder.SkewAngle(&upright), -tilt, 1);
    EXPECT_EQ(finder.SkewAngle(), finder.SkewAngle(&upright));
    EXPECT_NEAR(upright.left, 50, 8);
    EXPECT_NEAR(upright.bottom, 250, 8);
  }
  RegionFinder finder = Captured([](int, int) { return false; });
  finder.SegmentForDeskew();
  EXPECT_EQ(finder.RegionCount(), 0);
}

}  // namespace
