// Deskew: the angle is the toolkit's own, the turn is the imaging module's.
#include "methods/deskew.h"

#include <cstdint>

#include <orvo/CLeadTools.h>

#include "imaging/regions/region_finder.h"
#include "methods/page_image.h"

namespace orvo {

namespace {

constexpr int kHundredths = 100;
// Percent that each stage before the rotation reports, one by one, and the rotation's share.
constexpr int kStageSpan = 10;
constexpr int kRotationSpan = 70;
// The turned page keeps its size.
constexpr std::uint32_t kKeepSize = 0;

// The progress of a deskew. It belongs to the thread, since the imaging module's own callback
// carries nothing that would lead to the call it serves. The module may keep the function below
// installed, so a call without a callback clears the last one.
struct DeskewProgress {
  StatusCallback callback;
  int counter;  // last percent reported
  int base;     // percent at which the rotation begins
};
// In the space that each thread has from its beginning, which needs no memory when it is touched.
[[gnu::tls_model("initial-exec")]] thread_local DeskewProgress progress{};

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

// Degrees.
int SkewOf(DibHandle page) noexcept {
  try {
    RegionFinder finder;
    CapturePage(page, finder);
    ReportStage();
    finder.SegmentForDeskew();
    ReportStage();
    if (finder.RegionCount() == 0) return 0;
    const int skew = finder.SkewAngle();
    ReportStage();
    return skew;
  } catch (...) {
    return 0;
  }
}

}  // namespace

int AutoDeskew(CLeadTools& tools, DibHandle page, DibHandle* result,
               StatusCallback callback) noexcept {
  progress = {.callback = callback, .counter = 0, .base = 0};
  const int skew = SkewOf(page);
  progress.base = progress.counter;
  // Its code is not reported: the result handle tells.
  tools.LTRotate(page, result, skew, kKeepSize,
                 callback != nullptr ? &DeskewStatusBridge : nullptr);
  return skew * kHundredths;
}

}  // namespace orvo
