#include "imaging/regions/region_finder.h"

#include <algorithm>
#include <utility>

#include "imaging/regions/rounding.h"
#include "imaging/regions/skew.h"

namespace orvo {

namespace {

// Spacing of the seeds, in source pixels.
constexpr int kSeedStep = 5;

}  // namespace

void RegionFinder::Capture(const SourceImage& image) {
  scale_ = MaskScale(image);
  mask_ = ReduceToMask(image, scale_, settings_.whiteLevel);
}

void RegionFinder::Segment() {
  const CleanUpMeasures measures = Measures();
  boxes_ = ItemBoxes(FindSegments(std::move(mask_), measures.seedStep), measures);
}

void RegionFinder::SegmentForDeskew() {
  const CleanUpMeasures measures = Measures();
  largest_ = LargestRegion(FindSegments(std::move(mask_), measures.seedStep), measures);
  boxes_.clear();
  if (!largest_.IsEmpty()) boxes_.push_back(largest_.BoundingRect());
}

RECT RegionFinder::RegionRect(int index) const {
  if (index < 0 || index >= RegionCount()) return {};
  return ToSource(boxes_[static_cast<std::size_t>(index)]);
}

int RegionFinder::SkewAngle(RECT* box) const {
  RECT turned;
  const int skew = FindSkew(largest_, &turned);
  if (box != nullptr) *box = ToSource(turned);
  return skew;
}

// On a large page both distances fall below one mask pixel, which is the least.
CleanUpMeasures RegionFinder::Measures() const {
  return {.mergeReach = std::max(RoundTenths(settings_.mergeReach / scale_), 1),
          .seedStep = std::max(RoundTenths(kSeedStep / scale_), 1)};
}

RECT RegionFinder::ToSource(const RECT& box) const {
  return {RoundTenths(box.left * scale_), RoundTenths(box.top * scale_),
          RoundTenths(box.right * scale_), RoundTenths(box.bottom * scale_)};
}

}  // namespace orvo
