// The status callback of the process, and the part of the scale that reports are spread over.
// Threads may be in calls of instances of their own: the callback is that of all, the scale that of
// each.
#include "common/status.h"

#include <mutex>
#include <utility>

#include "binding/module_contract.h"

namespace {

constexpr int kStop = 16;  // what a callback answers to end the operation
constexpr int kNothingReported = -1;

struct Listener {
  StatusCallback callback = nullptr;
  void* userData = nullptr;
};

std::mutex listenerMutex;
Listener installed;

Listener Installed() {
  const std::lock_guard guard(listenerMutex);
  return installed;
}

struct Scale {
  KernelStatusShare share{0, 100};
  int last = kNothingReported;  // percent, as the callback saw it

  [[nodiscard]] bool isShared() const { return share.base != 0 || share.span != 100; }
};

// In the space that each thread has from its beginning, which needs no memory when it is touched.
[[gnu::tls_model("initial-exec")]] thread_local Scale scale;

}  // namespace

StatusCallback L_SetStatusCallBack(StatusCallback callback, void* userData) {
  scale.last = kNothingReported;
  const std::lock_guard guard(listenerMutex);
  return std::exchange(installed, {callback, userData}).callback;
}

bool KernelHasStatusCallback() {
  return Installed().callback != nullptr;
}

KernelStatusShare KernelSetStatusShare(KernelStatusShare share) {
  const KernelStatusShare before = std::exchange(scale.share, share);
  // A stage that follows another does not repeat the percent where the two meet. One that begins
  // at 0, or below what was reached, belongs to a new operation.
  if (scale.isShared() && (share.base == 0 || share.base < scale.last)) {
    scale.last = kNothingReported;
  }
  return before;
}

bool KernelReportStatus(int percent) {
  const Listener listener = Installed();
  if (listener.callback == nullptr) return true;
  const int shown = scale.share.base + scale.share.span * percent / 100;
  if (scale.isShared() && shown <= scale.last) return true;
  scale.last = shown;
  return listener.callback(shown, listener.userData) != kStop;
}
