#include "methods/regions.h"

#include <orvo/dib_block.h>

#include "imaging/regions/region_finder.h"
#include "methods/page_image.h"

namespace orvo {

namespace {

// A fixed block, whose handle is its address; null when there is no memory for it.
RegionRecord* ListOf(const RegionFinder& finder) {
  const int count = finder.RegionCount();
  OwnedDib block(
      GlobalAlloc(GMEM_ZEROINIT, static_cast<std::size_t>(count) * sizeof(RegionRecord)));
  const BlockLock lock(block.get());
  if (!lock) return nullptr;
  auto* const records = reinterpret_cast<RegionRecord*>(lock.bytes());
  for (int k = 0; k < count; ++k) {
    const RECT box = finder.RegionRect(k);
    records[k] = {box.left, box.top, box.right, box.bottom, {}};
  }
  return static_cast<RegionRecord*>(block.release());
}

}  // namespace

void FindRegions(DibHandle page, int reach, int level, RegionRecord*& list, int& count) noexcept {
  count = 0;
  try {
    RegionFinder finder({.mergeReach = reach, .whiteLevel = level});
    CapturePage(page, finder);
    finder.Segment();
    if (finder.RegionCount() == 0) return;
    list = ListOf(finder);
    if (list != nullptr) count = finder.RegionCount();
  } catch (...) {
    // A page on which nothing was found.
  }
}

}  // namespace orvo
