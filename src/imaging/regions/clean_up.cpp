#include "imaging/regions/clean_up.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "imaging/regions/near_pairs.h"
#include "imaging/regions/pair_walk.h"

namespace orvo {

namespace {

// The smallest item to list, in seed steps.
constexpr int kSizeFactor = 5;

bool IsBigEnough(const RECT& box, int limit) {
  return box.bottom - box.top > limit && box.right - box.left > limit;
}

std::int64_t Area(const RECT& box) {
  return (std::int64_t{box.bottom} - box.top) * (std::int64_t{box.right} - box.left);
}

bool LiesMostlyWithin(const RECT& box, const RECT& other, std::int64_t shared) {
  return shared >= Area(box) / 2 || shared >= Area(other) / 2;
}

// A pairing for WalkPairs: boxes merge when they share half of one of them. Boxes that were merged
// into others are left without area.
class OverlapPairs {
 public:
  static constexpr int kNone = -1;

  explicit OverlapPairs(std::vector<RECT>& boxes) : boxes_(boxes) {}

  void begin(int j, int from) {
    j_ = static_cast<std::size_t>(j);
    i_ = static_cast<std::size_t>(from);
  }

  int next() {
    for (; i_ < boxes_.size(); ++i_) {
      if (i_ != j_ && arePartners(boxes_[j_], boxes_[i_])) return static_cast<int>(i_);
    }
    return kNone;
  }

  void merge(int j, int i) {
    RECT& box = boxes_[static_cast<std::size_t>(j)];
    const RECT taken = std::exchange(boxes_[static_cast<std::size_t>(i)], RECT{});
    box = {std::min(box.left, taken.left), std::min(box.top, taken.top),
           std::max(box.right, taken.right), std::max(box.bottom, taken.bottom)};
  }

 private:
  static bool arePartners(const RECT& a, const RECT& b) {
    RECT shared;
    return IntersectRect(&shared, &a, &b) != 0 && LiesMostlyWithin(a, b, Area(shared));
  }

  std::vector<RECT>& boxes_;
  std::size_t j_ = 0;
  std::size_t i_ = 0;
};

int CountOf(const Segments& segments) {
  return static_cast<int>(segments.regions.size());
}

}  // namespace

std::vector<RECT> ItemBoxes(Segments segments, const CleanUpMeasures& measures) {
  NearPairs near(segments, measures.mergeReach);
  WalkPairs(CountOf(segments), near, [](int) {});

  std::vector<RECT> boxes;
  for (const PixelRegion& region : segments.regions) {
    if (region.IsEmpty()) continue;
    const RECT box = region.BoundingRect();
    if (IsBigEnough(box, measures.seedStep * kSizeFactor)) boxes.push_back(box);
  }
  OverlapPairs overlaps(boxes);
  WalkPairs(static_cast<int>(boxes.size()), overlaps, [](int) {});
  std::erase_if(boxes, [](const RECT& box) { return IsRectEmpty(&box) != 0; });
  return boxes;
}

PixelRegion LargestRegion(Segments segments, const CleanUpMeasures& measures) {
  std::vector<PixelRegion>& regions = segments.regions;
  // Measured while merging goes on, so the greatest sum at the end may be above it.
  int largest = 0;
  const auto measure = [&](const PixelRegion& region) {
    largest = std::max(largest, region.RowExtentSum());
  };
  NearPairs near(segments, measures.mergeReach);
  WalkPairs(CountOf(segments), near, [&](int j) { measure(regions[static_cast<std::size_t>(j)]); });
  std::erase_if(regions, [](const PixelRegion& region) { return region.IsEmpty(); });

  PixelRegion found;
  if (regions.empty()) return found;
  measure(regions.back());
  for (PixelRegion& region : regions) {
    if (!IsBigEnough(region.BoundingRect(), measures.seedStep)) continue;
    if (region.RowExtentSum() >= largest) found.Absorb(std::move(region));
  }
  return found;
}

}  // namespace orvo
