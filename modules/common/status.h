// Progress of the modules' operations. The callback lives in the kernel module, process-wide; the
// other modules are linked to it and report through these functions.
#ifndef MODULES_COMMON_STATUS_H
#define MODULES_COMMON_STATUS_H

#include <cstdint>

#include "common/guard.h"

extern "C" {
// Calls the installed callback; false when it asks to stop.
ORVO_MODULE_API bool KernelReportStatus(int percent);
ORVO_MODULE_API bool KernelHasStatusCallback();
// The part of the scale that reports are spread over from now on.
struct KernelStatusShare {
  int base;
  int span;
};
ORVO_MODULE_API KernelStatusShare KernelSetStatusShare(KernelStatusShare share);
}

namespace modules {

// Told the percent done; false stops the work.
using Report = bool (*)(int percent);

// Counts an operation's work in any unit and reports each percent at most once, rising.
class Progress {
 public:
  // A null listener is told nothing and stops nothing.
  explicit Progress(std::uint64_t total, Report listener = KernelReportStatus)
      : total_(total == 0 ? 1 : total), report_(listener) {}

  // `done` of the total is finished. False when the callback asks to stop: the operation then ends
  // with kModuleAborted and leaves its bitmap as it was.
  [[nodiscard]] bool report(std::uint64_t done) {
    const int percent = static_cast<int>(done >= total_ ? 100 : done * 100 / total_);
    if (percent <= last_) return true;
    last_ = percent;
    return report_ == nullptr || report_(percent);
  }

 private:
  std::uint64_t total_;
  Report report_;
  int last_ = -1;
};

// Runs work(y) for each row, and reports progress from the `stage`-th of as many equal parts as
// `progress` counts. Throws kModuleAborted when the callback asks to stop.
template <class Work>
void ForEachRow(int height, const Work& work, Progress& progress, int stage = 0) {
  const auto rows = static_cast<std::uint64_t>(height);
  const std::uint64_t before = rows * static_cast<std::uint64_t>(stage);
  for (int y = 0; y < height; ++y) {
    Require(progress.report(before + static_cast<std::uint64_t>(y)), kModuleAborted);
    work(y);
  }
  Require(progress.report(before + rows), kModuleAborted);
}
template <class Work>
void ForEachRow(int height, const Work& work) {
  Progress progress(static_cast<std::uint64_t>(height));
  ForEachRow(height, work, progress);
}

// Maps what is reported in a scope onto base .. base + span percent, so that the stages of one
// operation make one rising scale. Shares do not nest.
class StatusShare {
 public:
  StatusShare(int base, int span) : before_(KernelSetStatusShare({base, span})) {}
  ~StatusShare() { KernelSetStatusShare(before_); }
  StatusShare(const StatusShare&) = delete;
  StatusShare& operator=(const StatusShare&) = delete;

 private:
  KernelStatusShare before_;
};

}  // namespace modules

#endif  // MODULES_COMMON_STATUS_H
