#include "common/dib_image.h"

#include <cstring>

namespace modules {
namespace {

bool DepthIsKnown(int depth) {
  return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32;
}

}  // namespace

LockedDib::LockedDib(DibHandle handle) noexcept : handle_(handle) {
  auto* const memory = static_cast<std::uint8_t*>(GlobalLock(handle));
  if (memory == nullptr) {
    handle_ = nullptr;
    return;
  }
  const auto layout = orvo::DibLayoutOf(memory, GlobalSize(handle));
  if (!layout || !DepthIsKnown(layout->depth)) return;
  header_ = orvo::DibHeaderOf(memory);
  pixels_.width = layout->width;
  pixels_.height = layout->height;
  pixels_.depth = layout->depth;
  pixels_.stride = layout->stride;
  if (layout->depth <= 8) {
    pixels_.palette = reinterpret_cast<RGBQUAD*>(memory + orvo::kDibHeaderBytes);
  }
  pixels_.bits = memory + layout->pixelOffset;
}

LockedDib::~LockedDib() {
  if (handle_ != nullptr) GlobalUnlock(handle_);
}

LockedDib::LockedDib(LockedDib&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)),
      header_(other.header_),
      pixels_(std::exchange(other.pixels_, Pixels{})) {}

std::optional<orvo::DibLayout> UsableLayout(const BITMAPINFOHEADER& header) noexcept {
  if (!DepthIsKnown(header.biBitCount)) return std::nullopt;
  return orvo::DibLayoutFor(header.biWidth, header.biHeight, header.biBitCount);
}

OwnedBlock NewDib(int width, int height, int depth, int xResolution, int yResolution) noexcept {
  BITMAPINFOHEADER model{};
  model.biXPelsPerMeter = orvo::PixelsPerMetre(xResolution);
  model.biYPelsPerMeter = orvo::PixelsPerMetre(yResolution);
  return NewDibLike(model, width, height, depth);
}

OwnedBlock NewDibLike(const BITMAPINFOHEADER& model, int width, int height, int depth) noexcept {
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = static_cast<std::uint16_t>(depth);
  header.biXPelsPerMeter = model.biXPelsPerMeter;
  header.biYPelsPerMeter = model.biYPelsPerMeter;
  return NewDibOf(header);
}

OwnedBlock NewDibOf(const BITMAPINFOHEADER& header) noexcept {
  const auto layout = UsableLayout(header);
  if (!layout) return OwnedBlock();
  OwnedBlock block(GlobalAlloc(orvo::kDibBlockFlags, layout->totalBytes));
  void* const memory = GlobalLock(block.get());
  if (memory == nullptr) return OwnedBlock();
  std::memcpy(memory, &header, sizeof header);
  GlobalUnlock(block.get());
  return block;
}

OwnedBlock CopyOf(const LockedDib& image) noexcept {
  OwnedBlock copy = NewDibOf(image.header());
  const LockedDib target(copy.get());
  if (!target) return OwnedBlock();
  if (image->palette != nullptr && target->palette != nullptr) {
    std::memcpy(target->palette, image->palette, orvo::DibPaletteBytes(image->depth));
  }
  std::memcpy(target->bits, image->bits, image->stride * static_cast<std::size_t>(image->height));
  return copy;
}

void TakeBlock(struct_LEAD_Bitmap& bitmap, OwnedBlock block) noexcept {
  if (bitmap.block != nullptr) GlobalFree(bitmap.block);
  bitmap.block = block.release();
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

bool BytesAreTones(const Pixels& image) noexcept {
  if (image.depth != 8) return false;
  for (int i = 0; i < image.paletteSize(); ++i) {
    const RGBQUAD& entry = image.palette[i];
    if (entry.rgbBlue != i || entry.rgbGreen != i || entry.rgbRed != i) return false;
  }
  return true;
}

void FillGrayPalette(const Pixels& image) noexcept {
  const int count = image.paletteSize();
  for (int i = 0; i < count; ++i) {
    const auto tone = static_cast<std::uint8_t>(i * 255 / (count - 1));
    image.palette[i] = RGBQUAD{tone, tone, tone, 0};
  }
}

}  // namespace modules
