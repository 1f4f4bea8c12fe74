#include "dib/dib_blocks.h"

#include <cstring>

namespace orvo {

DibHandle CreateDIBOfSameSize(DibHandle source) noexcept {
  if (source == nullptr) return nullptr;
  const std::size_t bytes = GlobalSize(source);
  OwnedDib block(GlobalAlloc(kDibBlockFlags, bytes));
  return bytes == 0 || GlobalSize(block.get()) < bytes ? nullptr : block.release();
}

DibHandle CopyDIB(DibHandle source) noexcept {
  OwnedDib copy(CreateDIBOfSameSize(source));
  if (!copy) return nullptr;
  const BlockLock from(source);
  const BlockLock to(copy.get());
  if (!from || !to) return nullptr;
  std::memcpy(to.bytes(), from.bytes(), from.size());
  return copy.release();
}

namespace {

// Copies bytes [begin, end) of one image's block to another's; an end of 0 means all of them.
void TakeBytes(DibHandle target, DibHandle source, std::size_t begin, std::size_t end) {
  const LockedImage to(target, kLowByteOfDepth);
  const LockedImage from(source, kLowByteOfDepth);
  if (!to || !from) return;
  const DibLayout& a = to.layout();
  const DibLayout& b = from.layout();
  if (a.width != b.width || a.height != b.height || a.depth != b.depth) return;
  std::memcpy(to.bytes() + begin, from.bytes() + begin, (end == 0 ? a.totalBytes : end) - begin);
}

}  // namespace

void TakeImage(DibHandle target, DibHandle source) noexcept {
  TakeBytes(target, source, kDibHeaderBytes, 0);
}

void TakeHeader(DibHandle target, DibHandle source) noexcept {
  TakeBytes(target, source, 0, kDibHeaderBytes);
}

}  // namespace orvo
