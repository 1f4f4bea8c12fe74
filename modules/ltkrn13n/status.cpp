// The status callback of the process, and the part of the scale that reports are spread over.
#include "common/status.h"

#include <utility>

#include "binding/module_contract.h"

namespace {

constexpr int kStop = 16;  // what a callback answers to end the operation
constexpr int kNothingReported = -1;

struct StatusState {
  StatusCallback callback = nullptr;
  void* userData = nullptr;
  KernelStatusShare share{0, 100};
  int last = kNothingReported;  // percent, as the callback saw it

  [[nodiscard]] bool isShared() const { return share.base != 0 || share.span != 100; }
};

StatusState state;

}  // namespace

StatusCallback L_SetStatusCallBack(StatusCallback callback, void* userData) {
  state.userData = userData;
  state.last = kNothingReported;
  return std::exchange(state.callback, callback);
}

bool KernelHasStatusCallback() {
  return state.callback != nullptr;
}

KernelStatusShare KernelSetStatusShare(KernelStatusShare share) {
  const KernelStatusShare before = std::exchange(state.share, share);
  // A stage that follows another does not repeat the percent where the two meet. One that begins
  // at 0, or below what was reached, belongs to a new operation.
  if (state.isShared() && (share.base == 0 || share.base < state.last)) {
    state.last = kNothingReported;
  }
  return before;
}

bool KernelReportStatus(int percent) {
  if (state.callback == nullptr) return true;
  const int shown = state.share.base + state.share.span * percent / 100;
  if (state.isShared() && shown <= state.last) return true;
  state.last = shown;
  return state.callback(shown, state.userData) != kStop;
}
