// Which regions lie near each other, and the merging of those.
//
// Two regions are near when one of them, moved by `reach` mask pixels to one of the four sides,
// meets the other. Regions have no pixel in common, so whom a pixel meets is read off a map of
// labels, and what a merged region is near to is what its parts were near to.
#ifndef ORVO_IMAGING_REGIONS_NEAR_PAIRS_H
#define ORVO_IMAGING_REGIONS_NEAR_PAIRS_H

#include <functional>
#include <queue>
#include <vector>

#include "imaging/regions/segmentation.h"

namespace orvo {

// A pairing for WalkPairs. Regions that were merged into others are left empty.
class NearPairs {
 public:
  static constexpr int kNone = -1;

  NearPairs(Segments& segments, int reach);

  void begin(int j, int from);
  int next();
  void merge(int j, int i);

 private:
  void link(std::size_t a, std::size_t b);
  void addPartners(const std::vector<int>& links);
  int ownerOf(int part);

  Segments& segments_;
  std::vector<std::vector<int>> links_;  // of each region, to parts that it is near to
  std::vector<int> owners_;              // the region that took a part over; a region owns itself
  // Partners that region j_ has left.
  std::priority_queue<int, std::vector<int>, std::greater<>> partners_;
  int j_ = 0;
  int from_ = 0;
};

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_NEAR_PAIRS_H
