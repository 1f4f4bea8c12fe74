#include "common/dib_image.h"

#include <cstring>
#include <utility>

namespace modules {

LockedDib::LockedDib(DibHandle handle) noexcept : image_(handle) {
  if (!image_ || !orvo::IsDibDepth(image_.layout().depth)) return;
  header_ = image_.header();
  const orvo::DibLayout& layout = image_.layout();
  pixels_.width = layout.width;
  pixels_.height = layout.height;
  pixels_.depth = layout.depth;
  pixels_.stride = layout.stride;
  if (layout.depth <= 8) {
    pixels_.palette = reinterpret_cast<RGBQUAD*>(image_.bytes() + orvo::kDibHeaderBytes);
  }
  pixels_.bits = image_.pixels();
}

OwnedBlock NewDibLike(const BITMAPINFOHEADER& model, int width, int height, int depth) noexcept {
  return NewDibOf(
      orvo::DibHeaderFor(width, height, depth, model.biXPelsPerMeter, model.biYPelsPerMeter));
}

OwnedBlock NewDibOf(const BITMAPINFOHEADER& header) noexcept {
  return orvo::IsDibDepth(header.biBitCount) ? orvo::NewDib(header) : OwnedBlock();
}

OwnedBlock NewWithPaletteOf(const LockedDib& image) noexcept {
  OwnedBlock block = NewDibOf(image.header());
  const LockedDib target(block.get());
  if (!target) return OwnedBlock();
  if (image->palette != nullptr && target->palette != nullptr) {
    std::memcpy(target->palette, image->palette, orvo::DibPaletteBytes(image->depth));
  }
  return block;
}

OwnedBlock CopyOf(const LockedDib& image) noexcept {
  OwnedBlock copy = NewWithPaletteOf(image);
  const LockedDib target(copy.get());
  if (!target) return OwnedBlock();
  std::memcpy(target->bits, image->bits, image->stride * static_cast<std::size_t>(image->height));
  return copy;
}

void Lend(struct_LEAD_Bitmap& bitmap, DibHandle block) noexcept {
  bitmap.block = block;
  bitmap.reserved[0] = block;
  Describe(bitmap);
}

bool OwnImage(struct_LEAD_Bitmap& bitmap) noexcept {
  if (!IsLent(bitmap)) return true;
  OwnedBlock copy = CopyOf(LockedDib(bitmap.block));
  if (!copy) return false;
  ExchangeBlock(bitmap, std::move(copy));
  return true;
}

void ExchangeBlock(struct_LEAD_Bitmap& bitmap, OwnedBlock block) noexcept {
  const OwnedBlock old(IsLent(bitmap) ? nullptr : bitmap.block);
  bitmap.block = block.release();
  bitmap.reserved[0] = nullptr;
}

void TakeBlock(struct_LEAD_Bitmap& bitmap, OwnedBlock block) noexcept {
  ExchangeBlock(bitmap, std::move(block));
  Describe(bitmap);
}

void Describe(struct_LEAD_Bitmap& bitmap) noexcept {
  Describe(bitmap, LockedDib(bitmap.block));
}

void Describe(struct_LEAD_Bitmap& bitmap, const LockedDib& image) noexcept {
  bitmap.width = image->width;
  bitmap.height = image->height;
  bitmap.bitsPerPixel = image->depth;
  bitmap.xResolution = orvo::DotsPerInch(image.header().biXPelsPerMeter);
  bitmap.yResolution = orvo::DotsPerInch(image.header().biYPelsPerMeter);
}

bool PaletteIsGray(const Pixels& image) noexcept {
  for (int i = 0; i < image.paletteSize(); ++i) {
    const RGBQUAD& entry = image.palette[i];
    if (entry.rgbRed != entry.rgbGreen || entry.rgbGreen != entry.rgbBlue) return false;
  }
  return image.palette != nullptr;
}

bool HasGrayRamp(const Pixels& image, bool reversed) noexcept {
  const int last = image.paletteSize() - 1;
  for (int i = 0; i <= last; ++i) {
    if (image.palette[i].rgbRed != (reversed ? last - i : i) * 255 / last) return false;
  }
  return PaletteIsGray(image);
}

bool BytesAreTones(const Pixels& image) noexcept {
  return image.depth == 8 && HasGrayRamp(image);
}

bool HasAlpha(const Pixels& image) noexcept {
  if (image.depth != 32) return false;
  for (int y = 0; y < image.height; ++y) {
    const std::uint8_t* const row = image.row(y);
    unsigned any = 0;
    for (std::size_t i = 3; i < image.rowBytes(); i += 4) any |= row[i];
    if (any != 0) return true;
  }
  return false;
}

void FillGrayPalette(const Pixels& image) noexcept {
  const int count = image.paletteSize();
  for (int i = 0; i < count; ++i) {
    const auto tone = static_cast<std::uint8_t>(i * 255 / (count - 1));
    image.palette[i] = RGBQUAD{tone, tone, tone, 0};
  }
}

}  // namespace modules
