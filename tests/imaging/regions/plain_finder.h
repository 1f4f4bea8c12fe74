// The finder as one would write it down first: every seed asks every region, every pair is shifted
// and intersected, every turn is a region of its own. Slow; what the toolkit does has to equal it.
#ifndef TESTS_IMAGING_REGIONS_PLAIN_FINDER_H
#define TESTS_IMAGING_REGIONS_PLAIN_FINDER_H

#include <orvo/dib.h>

#include "imaging/regions/mask.h"
#include "imaging/regions/pixel_region.h"

using namespace orvo;

namespace plain {

// The mask of an uncompressed image without bit fields, pixel by pixel.
Mask MaskOf(DibHandle image, int whiteLevel);

// Merging and measuring in mask pixels.
class Finder {
 public:
  Finder(Mask mask, int mergeReach, int seedStep);

  void Segment();
  void SegmentForDeskew();

  std::vector<PixelRegion> regions;

 private:
  void WalkSeeds();
  bool FloodFrom(int y, int x);
  bool IsForeground(int y, int x) const;
  template <class Test, class OnTurn>
  void WalkPairs(Test test, OnTurn onTurn);
  bool AreNear(const PixelRegion& a, const PixelRegion& b) const;
  bool IsBigEnough(const PixelRegion& region) const;
  void MergeInto(int j, int i);

  Mask mask_;
  int mergeReach_;
  int seedStep_;
  PixelRegion spare_;
};

PixelRegion RotatedOutline(const PixelRegion& region, double angle);
double FindSkew(const PixelRegion& region, RECT* box);

}  // namespace plain

#endif  // TESTS_IMAGING_REGIONS_PLAIN_FINDER_H
