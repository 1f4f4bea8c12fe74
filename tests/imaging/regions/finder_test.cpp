// From a mask to the list of items, and to the one region that is set upright.
#include <gtest/gtest.h>

#include "imaging/regions/region_finder.h"
#include "pages.h"
#include "plain_finder.h"
#include "support/pictures.h"

using namespace orvo;

bool operator==(const RECT& a, const RECT& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}
void PrintTo(const RECT& box, std::ostream* out) {
  *out << "(" << box.left << ", " << box.top << ", " << box.right << ", " << box.bottom << ")";
}

namespace {

using Boxes = std::vector<RECT>;

Boxes BoxesOf(const std::vector<PixelRegion>& regions) {
  Boxes boxes;
  for (const PixelRegion& region : regions) boxes.push_back(region.BoundingRect());
  return boxes;
}

// The extents are all that later stages read of a region.
std::vector<std::vector<int>> ExtentsOf(const PixelRegion& region) {
  std::vector<std::vector<int>> extents;
  for (const PixelRow& row : region.rows()) extents.push_back({row.y, row.left(), row.right()});
  return extents;
}

TEST(Finder, RandomPagesEqualThePlainForm) {
  int merged = 0;
  int lists = 0;
  for (unsigned seed = 0; seed < 500; ++seed) {
    pages::Dice dice(seed);
    const Mask page = pages::Random(1 + dice.upTo(90), 1 + dice.upTo(60), seed + 1);
    const CleanUpMeasures measures{.mergeReach = 1 + dice.upTo(dice.upTo(dice.upTo(130))),
                                   .seedStep = 1 + dice.upTo(dice.upTo(dice.upTo(4)))};
    SCOPED_TRACE("seed " + std::to_string(seed));
    plain::Finder list(page, measures.mergeReach, measures.seedStep);
    list.Segment();
    const Segments segments = FindSegments(page, measures.seedStep);
    ASSERT_EQ(ItemBoxes(segments, measures), BoxesOf(list.regions));

    plain::Finder deskew(page, measures.mergeReach, measures.seedStep);
    deskew.SegmentForDeskew();
    const PixelRegion largest = LargestRegion(segments, measures);
    ASSERT_EQ(largest.IsEmpty(), deskew.regions.empty());
    if (!largest.IsEmpty()) {
      ASSERT_EQ(ExtentsOf(largest), ExtentsOf(deskew.regions.front()));
    }
    lists += list.regions.size() > 1 ? 1 : 0;
    merged += segments.regions.size() > list.regions.size() + 3 ? 1 : 0;
  }
  EXPECT_GT(lists, 100) << "the pages are too plain to tell";
  EXPECT_GT(merged, 100);
}

struct Layout {
  const char* name;
  Boxes dark;
  CleanUpMeasures measures;
  Boxes items;
};

TEST(Finder, LayoutsThatTurnOnOneRule) {
  constexpr int kWidth = 90;
  constexpr int kHeight = 60;
  const Layout kLayouts[] = {
      {"diagonal neighbours never are near",
       {{0, 0, 10, 10}, {12, 12, 30, 30}},
       {40, 1},
       {{0, 0, 10, 10}, {12, 12, 30, 30}}},
      {"a shift over the whole height",
       {{0, 0, 10, 10}, {0, 30, 10, kHeight}},
       {kHeight - 1, 1},
       {{0, 0, 10, kHeight}}},
      {"half of 49 is 24",
       {{0, 10, 1, 50}, {0, 49, 40, 50}, {36, 9, 43, 16}},
       {1, 1},
       {{0, 9, 43, 50}}},
      {"and 20 is less",
       {{0, 10, 1, 50}, {0, 49, 40, 50}, {36, 8, 43, 15}},
       {1, 1},
       {{36, 8, 43, 15}, {0, 10, 40, 50}}},
      // The first bar goes to the first pillar and the second to the second. The third pillar takes
      // over the first, so the last one looks on in its place; it takes the second pillar, and what
      // that one's bar is near to.
      {"what was merged earlier counts too",
       {{0, 0, 8, 20},
        {50, 1, 58, 20},
        {20, 2, 34, 20},
        {70, 3, 78, 20},
        {0, 22, 25, 30},
        {29, 22, 78, 30}},
       {3, 1},
       {{0, 0, 78, 30}}},
  };
  for (const Layout& layout : kLayouts) {
    Mask page{kWidth, kHeight, {}};
    page.bytes.resize(page.index(0, kHeight));
    for (const RECT& box : layout.dark) pages::Fill(page, box, 1);
    plain::Finder plainly(page, layout.measures.mergeReach, layout.measures.seedStep);
    plainly.Segment();
    EXPECT_EQ(BoxesOf(plainly.regions), layout.items) << layout.name;
    const Segments segments = FindSegments(page, layout.measures.seedStep);
    EXPECT_EQ(ItemBoxes(segments, layout.measures), layout.items) << layout.name;
  }
}

}  // namespace
