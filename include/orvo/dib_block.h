// The block of a packed DIB in C++: its owner and its lock.
//
//   orvo::OwnedDib page = orvo::NewDib(orvo::DibHeaderFor(2480, 3508, 24));
//   if (const orvo::LockedImage image(page.get()); image) {
//     std::memset(image.row(0), 0xFF, image.layout().stride);
//   }
#ifndef ORVO_DIB_BLOCK_H
#define ORVO_DIB_BLOCK_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>

#include <orvo/dib.h>
#include <orvo/platform.h>

namespace orvo {

// Owns one block.
class OwnedDib {
 public:
  OwnedDib() noexcept = default;
  explicit OwnedDib(DibHandle handle) noexcept : handle_(handle) {}
  OwnedDib(OwnedDib&& other) noexcept : handle_(other.release()) {}
  OwnedDib& operator=(OwnedDib&& other) noexcept {
    if (this != &other) reset(other.release());
    return *this;
  }
  OwnedDib(const OwnedDib&) = delete;
  OwnedDib& operator=(const OwnedDib&) = delete;
  ~OwnedDib() { reset(); }

  [[nodiscard]] DibHandle get() const noexcept { return handle_ != source_ ? handle_ : nullptr; }
  explicit operator bool() const noexcept { return get() != nullptr; }

  DibHandle release() noexcept {
    const DibHandle handle = get();
    handle_ = source_ = nullptr;
    return handle;
  }
  void reset(DibHandle handle = nullptr) noexcept {
    const DibHandle old = release();
    if (old != nullptr && old != handle) GlobalFree(old);
    handle_ = handle;
  }

  // The variable itself, for operations in place, which may change the handle.
  DibHandle* address() noexcept {
    handle_ = release();
    return &handle_;
  }

  // The variable, emptied, for the result of an operation. A failing operation often leaves its
  // source there: told of the source, which somebody else owns, this owner never counts that handle
  // as its own. The owner of the source itself gives its variable as it is.
  DibHandle* receive(DibHandle source = nullptr) noexcept {
    reset();
    source_ = source;
    return &handle_;
  }
  DibHandle* receive(const OwnedDib& source) noexcept {
    return &source == this ? address() : receive(source.get());
  }

 private:
  DibHandle handle_ = nullptr;
  DibHandle source_ = nullptr;  // not ours, even when it is what handle_ holds
};

// Holds the lock on a block for as long as it lives. Empty when the handle is dead.
class BlockLock {
 public:
  explicit BlockLock(DibHandle handle) noexcept
      : handle_(handle), bytes_(static_cast<std::uint8_t*>(GlobalLock(handle))) {}
  ~BlockLock() {
    if (bytes_ != nullptr) GlobalUnlock(handle_);
  }
  BlockLock(const BlockLock&) = delete;
  BlockLock& operator=(const BlockLock&) = delete;

  explicit operator bool() const noexcept { return bytes_ != nullptr; }
  [[nodiscard]] std::uint8_t* bytes() const noexcept { return bytes_; }
  [[nodiscard]] std::size_t size() const noexcept { return GlobalSize(handle_); }

 private:
  DibHandle handle_;
  std::uint8_t* bytes_;
};

// The same on an image. Empty also when the block is malformed; bytes and size then are still
// those of the block.
class LockedImage {
 public:
  explicit LockedImage(DibHandle handle, const DibReading& reading = {}) noexcept
      : lock_(handle), layout_(DibLayoutOf(lock_.bytes(), lock_.size(), reading)) {}

  explicit operator bool() const noexcept { return layout_.has_value(); }
  [[nodiscard]] std::uint8_t* bytes() const noexcept { return lock_.bytes(); }
  [[nodiscard]] std::size_t size() const noexcept { return lock_.size(); }

  // Of a block that holds a header.
  [[nodiscard]] BITMAPINFOHEADER header() const noexcept { return DibHeaderOf(bytes()); }
  // Of an image that is not empty.
  [[nodiscard]] const DibLayout& layout() const noexcept { return *layout_; }
  [[nodiscard]] std::uint8_t* pixels() const noexcept { return bytes() + layout_->pixelOffset; }
  // Rows are counted as stored.
  [[nodiscard]] std::uint8_t* row(int y) const noexcept {
    return pixels() + layout_->stride * static_cast<std::size_t>(y);
  }

 private:
  BlockLock lock_;
  std::optional<DibLayout> layout_;
};

// A new image with this header, palette and pixels zero; empty when out of memory or when a measure
// is not above 0.
inline OwnedDib NewDib(const BITMAPINFOHEADER& header) noexcept {
  const auto layout = DibLayoutFor(header.biWidth, header.biHeight, header.biBitCount);
  if (!layout) return OwnedDib();
  OwnedDib dib(GlobalAlloc(kDibBlockFlags, layout->totalBytes));
  const BlockLock lock(dib.get());
  if (!lock) return OwnedDib();
  std::memcpy(lock.bytes(), &header, sizeof header);
  return dib;
}

}  // namespace orvo

#endif  // ORVO_DIB_BLOCK_H
