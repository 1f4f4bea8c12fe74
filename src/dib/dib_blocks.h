// Blocks as the COrvoCS methods make and lock them.
#ifndef ORVO_DIB_DIB_BLOCKS_H
#define ORVO_DIB_DIB_BLOCKS_H

#include <optional>

#include <orvo/dib.h>

namespace orvo {

// A new movable block with all bytes of the source's; null on any failure.
[[nodiscard]] DibHandle CopyDIB(DibHandle source) noexcept;
// A new movable block of the source's size, all zero; null on any failure or for a null source.
[[nodiscard]] DibHandle CreateDIBOfSameSize(DibHandle source) noexcept;

// Overwrites an image with the palette and pixels, or with the header alone, of another of the same
// measures. Nothing happens when the measures differ or a block cannot be locked.
void TakeImage(DibHandle target, DibHandle source) noexcept;
void TakeHeader(DibHandle target, DibHandle source) noexcept;

// The part of biBitCount that the frames of the pixel functions take as the depth.
constexpr std::uint16_t kLowByteOfDepth = 0xFF;

// A lock on an image for as long as the object lives. Empty when the block cannot be locked or is
// malformed.
class LockedImage {
 public:
  explicit LockedImage(DibHandle handle, std::uint16_t depthMask = 0xFFFF) noexcept;
  ~LockedImage();
  LockedImage(const LockedImage&) = delete;
  LockedImage& operator=(const LockedImage&) = delete;

  explicit operator bool() const { return layout_.has_value(); }
  [[nodiscard]] std::uint8_t* bytes() const { return bytes_; }
  [[nodiscard]] const orvo::DibLayout& layout() const { return *layout_; }
  [[nodiscard]] std::uint8_t* pixels() const { return bytes_ + layout_->pixelOffset; }

 private:
  DibHandle handle_;
  std::uint8_t* bytes_;
  std::optional<orvo::DibLayout> layout_;
};

}  // namespace orvo

#endif  // ORVO_DIB_DIB_BLOCKS_H
