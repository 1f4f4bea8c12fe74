#include "binding/bitmap_cycle.h"

#include <orvo/dib.h>

namespace orvo {

bool DepthIsTaken(Depths depths, int bitsPerPixel) noexcept {
  return depths == Depths::kAny ||
         (IsDibDepth(bitsPerPixel) && (depths == Depths::kOneUp || bitsPerPixel >= 4));
}

int BitmapCycle::testBindings() const {
  const bool bound = modules_.hasAll({Entry::L_ChangeFromDIB, Entry::L_FreeBitmap,
                                      Entry::L_ChangeToDIB, rules_.own}) &&
                     (!rules_.needsCallbackEntry || modules_.has(Entry::L_SetStatusCallBack));
  return bound ? ORVO_OK : ORVO_ERR_NO_VENDOR;
}

int BitmapCycle::prepare() {
  const int sourceTest = source_ == nullptr ? ORVO_ERR_NULL_IMAGE : ORVO_OK;
  const int bindingTest = testBindings();
  const int first = rules_.bindingsFirst ? bindingTest : sourceTest;
  const int second = rules_.bindingsFirst ? sourceTest : bindingTest;
  if (first != ORVO_OK) return first;
  if (second != ORVO_OK) return second;
  if (!rules_.inRange) {
    if (result_ != nullptr) *result_ = source_;
    return ORVO_ERR_OUT_OF_RANGE;
  }
  if (result_ != nullptr) {
    modules_.ConvertFromDIB(&bitmap_, source_);
  } else {
    modules_.call<Entry::L_ChangeFromDIB>()(&bitmap_, source_);
  }
  return DepthIsTaken(rules_.depths, bitmap_.bitsPerPixel) ? ORVO_OK : refuseDepth();
}

void BitmapCycle::install(StatusCallback callback) {
  if (callback != nullptr) {
    previous_ = modules_.call<Entry::L_SetStatusCallBack>()(callback, nullptr);
  }
}

void BitmapCycle::reinstallPrevious() {
  if (previous_ != nullptr) modules_.call<Entry::L_SetStatusCallBack>()(previous_, nullptr);
}

// Ends the bitmap without a changed image: a copy is released, the caller's own image given back.
void BitmapCycle::release() {
  if (inPlace()) {
    const DibHandle back = modules_.call<Entry::L_ChangeToDIB>()(&bitmap_);
    if (back != nullptr) source_ = back;
  } else {
    modules_.call<Entry::L_FreeBitmap>()(&bitmap_);
  }
}

int BitmapCycle::refuseDepth() {
  if (result_ != nullptr && rules_.refusedDepthSetsResult) *result_ = source_;
  release();
  return ORVO_ERR_BAD_DEPTH;
}

int BitmapCycle::fail(int code) {
  if (result_ != nullptr && rules_.failedCallSetsResult) *result_ = source_;
  release();
  return code;
}

int BitmapCycle::succeed() {
  return succeedWith(modules_.call<Entry::L_ChangeToDIB>()(&bitmap_));
}

int BitmapCycle::succeedWith(DibHandle dib) {
  // A bitmap that gives nothing back costs the caller no handle.
  if (dib == nullptr) {
    if (result_ != nullptr && rules_.failedCallSetsResult) *result_ = source_;
    return ORVO_ERR_NO_MEMORY;
  }
  if (inPlace()) {
    source_ = dib;
    return ORVO_OK;
  }
  if (*result_ != nullptr) GlobalFree(*result_);
  *result_ = dib;
  return ORVO_OK;
}

}  // namespace orvo
