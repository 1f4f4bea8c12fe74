// From a mask to the list of items, and to the one region that is set upright.
#include "imaging/plain_image.h"
#include "imaging/regions/region_finder.h"

using namespace orvo;

namespace {

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

// The same kind of masks as light gray on white pages, several pixels of which make one of a mask.
TEST(Finder, ItemsAndSkewInSourcePixels) {
  plain::Bytes ramp;
  for (unsigned i = 0; i < 1024; ++i) ramp.push_back(static_cast<std::uint8_t>(i / 4));
  plain::CheckSum sum;
  for (unsigned seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    const auto upTo = [&](int most) {
      return static_cast<int>(random() % (static_cast<unsigned>(most) + 1));
    };
    const int width = 4 * (1 + upTo(90));
    Mask page = RandomPage(width, 1 + upTo(300), upTo);
    for (std::uint8_t& byte : page.bytes) byte = byte != 0 ? 200 : 255;
    const SourceImage image{
        width, page.height, 8, ramp.data(), {}, page.bytes.data(), static_cast<std::size_t>(width)};
    RegionFinder finder({.mergeReach = upTo(60) - 5, .whiteLevel = 199 + upTo(3)});
    finder.Capture(image);
    finder.Segment();
    for (int i = -1; i <= finder.RegionCount(); ++i) sum.addSides(finder.RegionRect(i));
    finder.Capture(image);
    finder.SegmentForDeskew();
    if (finder.RegionCount() == 0) continue;
    RECT upright;
    sum.add(finder.SkewAngle(&upright), finder.SkewAngle());
    sum.addSides(upright);
    sum.addSides(finder.RegionRect(0));
  }
  EXPECT_EQ(sum.value(), 7199860305588604179U);
}

}  // namespace
