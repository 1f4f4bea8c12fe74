// What lies on the page: the list of its items, and a crooked page turned upright.
#include <new>

#include <orvo/CLeadTools.h>
#include <orvo/instance.h>

#include "imaging/regions/region_finder.h"

using namespace orvo;

namespace {

constexpr int kHundredths = 100;
// Percent that each stage before the rotation reports, one by one, and the rotation's share.
constexpr int kStageSpan = 10;
constexpr int kRotationSpan = 70;
// The turned page keeps its size.
constexpr std::uint32_t kKeepSize = 0;

// The progress of AutoDeskew. It belongs to the process, since the imaging module's own callback
// carries nothing that would lead to the call it serves. The module may keep the function below
// installed, so a call without a callback clears the last one.
struct DeskewProgress {
  StatusCallback callback;
  int counter;  // last percent reported
  int base;     // percent at which the rotation begins
};
DeskewProgress progress{};

void ReportStage() {
  if (progress.callback == nullptr) return;
  for (int i = 0; i < kStageSpan; ++i) progress.callback(++progress.counter, nullptr);
}

// Spreads the rotation's percent over its share. The answer is the module's "go on": the caller
// cannot stop a deskew.
int DeskewStatusBridge(int percent, void* /*userData*/) {
  constexpr int kGoOn = 1;
  if (progress.callback == nullptr) return kGoOn;
  const int value = progress.base + kRotationSpan * percent / 100;
  if (progress.counter >= value) return kGoOn;
  progress.counter = value;
  progress.callback(value, nullptr);
  return kGoOn;
}

// Degrees; 0 for a page without a region, an image that cannot be read, and without memory.
int SkewOf(DibHandle source) noexcept {
  try {
    RegionFinder finder;
    finder.Capture(source);
    ReportStage();
    finder.SegmentForDeskew();
    ReportStage();
    if (finder.RegionCount() == 0) return 0;
    const int skew = finder.SkewAngle();
    ReportStage();
    return skew;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

// A block of records for the caller; null when there is no memory for it.
RegionRecord* ListOf(const RegionFinder& finder) noexcept {
  const int count = finder.RegionCount();
  void* const block =
      GlobalAlloc(GMEM_ZEROINIT, static_cast<std::size_t>(count) * sizeof(RegionRecord));
  auto* const records = static_cast<RegionRecord*>(GlobalLock(block));
  if (records == nullptr) {
    GlobalFree(block);
    return nullptr;
  }
  for (int k = 0; k < count; ++k) {
    const RECT box = finder.RegionRect(k);
    records[k] = {box.left, box.top, box.right, box.bottom, {}};
  }
  GlobalUnlock(block);
  return records;
}

}  // namespace

int COrvoInstance::FindRegions(DibHandle source, RegionRecord** list, int* count, int reach,
                               int level) noexcept {
  if (list == nullptr || count == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  *count = 0;
  try {
    RegionFinder finder({.mergeReach = reach, .whiteLevel = level});
    finder.Capture(source);
    finder.Segment();
    if (finder.RegionCount() == 0) return ORVO_OK;
    *list = ListOf(finder);
    if (*list != nullptr) *count = finder.RegionCount();
  } catch (const std::bad_alloc&) {
    // A page on which nothing was found.
  }
  return ORVO_OK;
}

int COrvoInstance::AutoDeskew(DibHandle source, DibHandle* result, int* angle,
                              StatusCallback callback) noexcept {
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  progress = {.callback = callback, .counter = 0, .base = 0};
  const int skew = SkewOf(source);
  progress.base = progress.counter;
  // Its code is not reported: the result handle tells.
  leadTools->LTRotate(source, result, skew, kKeepSize,
                      callback != nullptr ? &DeskewStatusBridge : nullptr);
  if (angle != nullptr) *angle = skew * kHundredths;
  return ORVO_OK;
}
