// From a mask to the list of items, and to the one region that is set upright.
#include <gtest/gtest.h>

#include "pages.h"
#include "plain_finder.h"
#include "regions/region_finder.h"
#include "support/pictures.h"

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
  for (unsigned seed = 0; seed < 2000; ++seed) {
    pages::Dice dice(seed);
    const Mask page = pages::Random(1 + dice.upTo(120), 1 + dice.upTo(80), seed + 1);
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
  EXPECT_GT(lists, 500) << "the pages are too plain to tell";
  EXPECT_GT(merged, 500);
}

}  // namespace
