#include "methods/frame_image.h"

#include <orvo/CLeadTools.h>
#include <orvo/result_codes.h>

#include "dib/result_block.h"
#include "imaging/utilities.h"
#include "imaging/working_image.h"

using namespace orvo;

namespace {

// Nothing when the block cannot be locked or is malformed.
std::optional<std::uint8_t> DepthOf(DibHandle image) {
  const LockedImage locked(image, kLowByteOfDepth);
  if (!locked) return std::nullopt;
  return static_cast<std::uint8_t>(locked.layout().depth);
}

}  // namespace

int FrameImage::take(CLeadTools* tools, DibHandle source) {
  std::optional<std::uint8_t> depth = DepthOf(source);
  if (!depth) return ORVO_ERR_FAILURE;
  incomingDepth_ = *depth;
  if (*depth == 16 || *depth == 32) {
    if (tools != nullptr) tools->LTConvertToColorRes(source, copy_.receive(source), kColorDepth);
    if (!copy_) return ORVO_ERR_BAD_DEPTH;
    depth = DepthOf(copy_.get());
    if (!depth) return ORVO_ERR_FAILURE;
  }
  depth_ = *depth;
  return ORVO_OK;
}

int FrameImage::open(DibHandle source) {
  const DibHandle image = hasCopy() ? copy_.get() : source;
  return lock(image, image) ? ORVO_OK : ORVO_ERR_FAILURE;
}

int FrameImage::open(DibHandle source, DibHandle* result) {
  if (hasCopy()) return open(source);
  ResultBlock block(source, result);
  if (!block.makeSameSize()) return ORVO_ERR_NO_MEMORY;
  if (!lock(source, *result)) return block.takeBack(ORVO_ERR_FAILURE);
  ImgCopy(target_->bytes(), source_->bytes(), source_->layout().pixelOffset);
  return ORVO_OK;
}

void FrameImage::finish(CLeadTools* tools, DibHandle source, DibHandle* result) {
  unlock();
  if (!hasCopy()) return;
  tools->LTConvertToColorRes(*copy_.address(), nullptr, incomingDepth_);
  if (*result == source) {
    TakeImage(source, copy_.get());
  } else {
    TakeHeader(copy_.get(), source);
    *result = copy_.release();
  }
}

bool FrameImage::lock(DibHandle from, DibHandle to) {
  source_.emplace(from, kLowByteOfDepth);
  target_.emplace(to, kLowByteOfDepth);
  if (*source_ && target_->bytes() != nullptr) return true;
  unlock();
  return false;
}

void FrameImage::unlock() {
  source_.reset();
  target_.reset();
}
