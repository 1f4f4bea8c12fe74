// Images as the modules work on them: packed DIB blocks, locked for the time of an operation. A
// bitmap record's `block` is such a block, so taking one over or giving it back copies nothing.
#ifndef MODULES_COMMON_DIB_IMAGE_H
#define MODULES_COMMON_DIB_IMAGE_H

#include <cstddef>
#include <cstdint>

#include <orvo/dib_block.h>

#include "binding/module_contract.h"

namespace modules {

// A locked image. Rows are counted as stored; pixels of 24 and 32 bits lie blue, green, red(, x);
// 16 bits are 5-5-5 with red on top; 8-bit and lower depths index the palette, leftmost pixel in
// the highest bits.
struct Pixels {
  int width = 0;
  int height = 0;
  int depth = 0;
  std::size_t stride = 0;      // bytes from row to row
  RGBQUAD* palette = nullptr;  // 2^depth entries, null above 8 bits
  std::uint8_t* bits = nullptr;

  [[nodiscard]] std::uint8_t* row(int y) const {
    return bits + stride * static_cast<std::size_t>(y);
  }
  // Bytes of one row that hold pixels, padding left out.
  [[nodiscard]] std::size_t rowBytes() const {
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(depth) + 7) / 8;
  }
  [[nodiscard]] int paletteSize() const { return palette == nullptr ? 0 : 1 << depth; }
};

// Holds the lock on a block. Empty when the handle is dead, the block malformed, or its depth not
// 1, 4, 8, 16, 24 or 32.
class LockedDib {
 public:
  explicit LockedDib(DibHandle handle) noexcept;

  explicit operator bool() const { return pixels_.bits != nullptr; }
  const Pixels& operator*() const { return pixels_; }
  const Pixels* operator->() const { return &pixels_; }
  [[nodiscard]] const BITMAPINFOHEADER& header() const { return header_; }

 private:
  orvo::LockedImage image_;
  BITMAPINFOHEADER header_{};
  Pixels pixels_;
};

// Owns a block until it is handed on.
using OwnedBlock = orvo::OwnedDib;

// A new zero-filled image with the resolutions, in pixels per metre, of another image's header;
// empty when out of memory, when a measure is not above 0, or when the depth is not one of those
// above.
OwnedBlock NewDibLike(const BITMAPINFOHEADER& model, int width, int height, int depth) noexcept;
// The same with the whole header of another image.
OwnedBlock NewDibOf(const BITMAPINFOHEADER& header) noexcept;
// The same with its palette too.
OwnedBlock NewWithPaletteOf(const LockedDib& image) noexcept;
// A copy of a locked image, header and palette included.
OwnedBlock CopyOf(const LockedDib& image) noexcept;

// A lent image lies in a block that the bitmap's maker keeps: it is looked at, never changed nor
// freed, so that an operation that draws a new image anyhow needs no copy of the old one.
inline bool IsLent(const struct_LEAD_Bitmap& bitmap) noexcept {
  return bitmap.reserved[0] != nullptr;
}
// The bitmap, which holds nothing, looks at the block.
void Lend(struct_LEAD_Bitmap& bitmap, DibHandle block) noexcept;
// Takes a copy of a lent image in its place; false when out of memory, and it stays lent.
[[nodiscard]] bool OwnImage(struct_LEAD_Bitmap& bitmap) noexcept;

// Takes the new block in place of the bitmap's own, which is freed unless it is lent. The record's
// other fields stay.
void ExchangeBlock(struct_LEAD_Bitmap& bitmap, OwnedBlock block) noexcept;
// The same, and describes it in the record's fields.
void TakeBlock(struct_LEAD_Bitmap& bitmap, OwnedBlock block) noexcept;
// Fills width, height, depth and resolutions from the block's header. A block that cannot be used
// stays held and leaves the fields 0.
void Describe(struct_LEAD_Bitmap& bitmap) noexcept;
// The same from an image that is locked already; an empty one leaves the fields 0.
void Describe(struct_LEAD_Bitmap& bitmap, const LockedDib& image) noexcept;

// Whether all palette entries are gray (red, green and blue equal).
bool PaletteIsGray(const Pixels& image) noexcept;
// Whether the palette is the even ramp from black to white that FillGrayPalette makes, or the same
// from white to black.
bool HasGrayRamp(const Pixels& image, bool reversed = false) noexcept;
// Whether the bytes of the rows are the tones that they show: 8 bits, entry i of the palette gray
// i.
bool BytesAreTones(const Pixels& image) noexcept;
// Whether the fourth bytes of 32-bit pixels mean transparency. They usually are padding and 0
// throughout; taken for transparency that would make the whole picture invisible. So they count
// only when one of them is not 0.
bool HasAlpha(const Pixels& image) noexcept;
// Fills the palette with its entries' even steps from black to white.
void FillGrayPalette(const Pixels& image) noexcept;

}  // namespace modules

#endif  // MODULES_COMMON_DIB_IMAGE_H
