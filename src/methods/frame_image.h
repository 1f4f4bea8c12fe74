// An image as a pixel function sees it, for the time of one COrvoCS call.
//
// 16-bit and 32-bit images are worked on in a 24-bit copy, which is source and target at once and
// becomes the result, or the contents of the caller's block, in the end. Others are worked on as
// they are.
#ifndef ORVO_METHODS_FRAME_IMAGE_H
#define ORVO_METHODS_FRAME_IMAGE_H

#include <optional>

#include "dib/dib_blocks.h"

class CLeadTools;

class FrameImage {
 public:
  // Reads the depth and makes the working copy where one is needed. ORVO_ERR_FAILURE when a block
  // cannot be locked, ORVO_ERR_BAD_DEPTH when no copy came of the conversion. tools may be null.
  [[nodiscard]] int take(CLeadTools* tools, DibHandle source);
  // The low byte of biBitCount, of the copy when there is one.
  [[nodiscard]] std::uint8_t depth() const { return depth_; }
  [[nodiscard]] bool hasCopy() const { return static_cast<bool>(copy_); }

  // Locks the image for reading.
  [[nodiscard]] int open(DibHandle source);
  // Locks the image and the result, which is made when the call is not in place and starts with the
  // source's header and palette. On failure no block is locked and none made here is left; the
  // result handle is then the source, or untouched when there is a copy.
  [[nodiscard]] int open(DibHandle source, DibHandle* result);

  [[nodiscard]] const std::uint8_t* source() const { return source_->pixels(); }
  [[nodiscard]] std::uint8_t* target() const {
    return target_->bytes() + source_->layout().pixelOffset;
  }
  [[nodiscard]] std::uint32_t width() const {
    return static_cast<std::uint32_t>(source_->layout().width);
  }
  [[nodiscard]] std::uint32_t height() const {
    return static_cast<std::uint32_t>(source_->layout().height);
  }

  // Unlocks, brings a copy back to the depth of the source and puts it where the result belongs.
  void finish(CLeadTools* tools, DibHandle source, DibHandle* result);

 private:
  [[nodiscard]] bool lock(DibHandle from, DibHandle to);
  void unlock();

  orvo::OwnedDib copy_;
  std::uint8_t incomingDepth_ = 0;
  std::uint8_t depth_ = 0;
  std::optional<orvo::LockedImage> source_;
  std::optional<orvo::LockedImage> target_;
};

#endif  // ORVO_METHODS_FRAME_IMAGE_H
