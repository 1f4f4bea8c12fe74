// The result handle of a COrvoCS method: the source itself in place, else a block made by the call.
#ifndef ORVO_DIB_RESULT_BLOCK_H
#define ORVO_DIB_RESULT_BLOCK_H

#include "dib/dib_blocks.h"

namespace orvo {

class ResultBlock {
 public:
  // Looks at the result handle only to tell whether it is the source.
  ResultBlock(DibHandle source, DibHandle* result) noexcept
      : source_(source), result_(result), inPlace_(*result == source) {}

  // Puts a copy of the source, or an empty block of its size, into the result handle; nothing to do
  // in place. False when there is no memory, with the result set to the source.
  [[nodiscard]] bool copySource() noexcept { return inPlace_ || store(CopyDIB(source_)); }
  [[nodiscard]] bool makeSameSize() noexcept {
    return inPlace_ || store(CreateDIBOfSameSize(source_));
  }

  // Ends a failing call: releases a block that it made, sets the result to the source, and hands
  // the code through.
  int takeBack(int code) noexcept {
    if (!inPlace_ && *result_ != source_) GlobalFree(*result_);
    *result_ = source_;
    return code;
  }

 private:
  bool store(DibHandle block) noexcept {
    *result_ = block != nullptr ? block : source_;
    return block != nullptr;
  }

  DibHandle source_;
  DibHandle* result_;
  bool inPlace_;
};

}  // namespace orvo

#endif  // ORVO_DIB_RESULT_BLOCK_H
