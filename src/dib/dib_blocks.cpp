#include "dib/dib_blocks.h"

namespace orvo {

DibHandle CreateDIBOfSameSize(DibHandle source) noexcept {
  if (source == nullptr) return nullptr;
  const std::size_t bytes = GlobalSize(source);
  const DibHandle block = GlobalAlloc(orvo::kDibBlockFlags, bytes);
  if (block == nullptr) return nullptr;
  if (bytes == 0 || GlobalSize(block) < bytes) {
    GlobalFree(block);
    return nullptr;
  }
  return block;
}

DibHandle CopyDIB(DibHandle source) noexcept {
  const DibHandle copy = CreateDIBOfSameSize(source);
  if (copy == nullptr) return nullptr;
  const void* const from = GlobalLock(source);
  void* const to = GlobalLock(copy);
  const bool locked = from != nullptr && to != nullptr;
  if (locked) std::memcpy(to, from, GlobalSize(source));
  if (from != nullptr) GlobalUnlock(source);
  if (to != nullptr) GlobalUnlock(copy);
  if (locked) return copy;
  GlobalFree(copy);
  return nullptr;
}

namespace {

// Copies bytes [begin, end) of one image's block to another's; an end of 0 means all of them.
void TakeBytes(DibHandle target, DibHandle source, std::size_t begin, std::size_t end) {
  const LockedImage to(target, kLowByteOfDepth);
  const LockedImage from(source, kLowByteOfDepth);
  if (!to || !from) return;
  const orvo::DibLayout& a = to.layout();
  const orvo::DibLayout& b = from.layout();
  if (a.width != b.width || a.height != b.height || a.depth != b.depth) return;
  std::memcpy(to.bytes() + begin, from.bytes() + begin, (end == 0 ? a.totalBytes : end) - begin);
}

}  // namespace

void TakeImage(DibHandle target, DibHandle source) noexcept {
  TakeBytes(target, source, orvo::kDibHeaderBytes, 0);
}

void TakeHeader(DibHandle target, DibHandle source) noexcept {
  TakeBytes(target, source, 0, orvo::kDibHeaderBytes);
}

LockedImage::LockedImage(DibHandle handle, std::uint16_t depthMask) noexcept
    : handle_(handle), bytes_(static_cast<std::uint8_t*>(GlobalLock(handle))) {
  layout_ = orvo::DibLayoutOf(bytes_, GlobalSize(handle), depthMask);
}

LockedImage::~LockedImage() {
  if (bytes_ != nullptr) GlobalUnlock(handle_);
}

}  // namespace orvo
