#include "handles/dib_blocks.h"

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

LockedImage::LockedImage(DibHandle handle, std::uint16_t depthMask) noexcept
    : handle_(handle), bytes_(static_cast<std::uint8_t*>(GlobalLock(handle))) {
  layout_ = orvo::DibLayoutOf(bytes_, GlobalSize(handle), depthMask);
}

LockedImage::~LockedImage() {
  if (bytes_ != nullptr) GlobalUnlock(handle_);
}
