// Finds what lies on a page with a near-white ground, such as the bed of a scanner. It looks at
// brightness alone, in a reduced mask of the page; only what is read out is in source pixels.
//
// One finder serves one image: Capture, then Segment or SegmentForDeskew, then the results.
#ifndef ORVO_IMAGING_REGIONS_REGION_FINDER_H
#define ORVO_IMAGING_REGIONS_REGION_FINDER_H

#include <vector>

#include <orvo/platform.h>

#include "imaging/regions/clean_up.h"
#include "imaging/regions/mask.h"
#include "imaging/regions/pixel_region.h"
#include "imaging/regions/source_image.h"

namespace orvo {

struct FinderSettings {
  int mergeReach = 25;   // source pixels across which parts join; any value is taken
  int whiteLevel = 250;  // gray from which a pixel is ground; any value is taken
};

// Every step may throw std::bad_alloc.
class RegionFinder {
 public:
  explicit RegionFinder(const FinderSettings& settings = {}) : settings_(settings) {}

  // Reads the image, which is not needed afterwards. Without a Capture the page is empty.
  void Capture(const SourceImage& image);

  // For a list of items.
  void Segment();
  // For the skew: one region at most, the largest.
  void SegmentForDeskew();

  [[nodiscard]] int RegionCount() const { return static_cast<int>(boxes_.size()); }
  // The region's rectangle in source pixels, rows from the top as shown; zeros for an index outside
  // the table.
  [[nodiscard]] RECT RegionRect(int index) const;
  // Degrees of the turn that sets the region upright, clockwise positive. box, which may be null,
  // receives the rectangle that the region then has, in source pixels. Only after SegmentForDeskew
  // found a region.
  [[nodiscard]] int SkewAngle(RECT* box = nullptr) const;

 private:
  [[nodiscard]] CleanUpMeasures Measures() const;
  [[nodiscard]] RECT ToSource(const RECT& box) const;

  FinderSettings settings_;
  double scale_ = 1.0;       // source pixels per mask pixel
  Mask mask_;                // used up by the segmentation
  std::vector<RECT> boxes_;  // of the regions, in mask pixels
  PixelRegion largest_;
};

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_REGION_FINDER_H
