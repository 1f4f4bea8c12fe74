#include "methods/page_image.h"

#include <algorithm>
#include <cstring>

#include <orvo/dib_block.h>

namespace orvo {

namespace {

constexpr std::size_t kFieldMaskBytes = 12;  // red, green and blue, 4 bytes each
constexpr ChannelMasks kFiveBitMasks{0x7C00, 0x03E0, 0x001F};
constexpr ChannelMasks kByteMasks{0xFF0000, 0x00FF00, 0x0000FF};

// What lies before the rows follows the size that the header gives itself, counted in 16 bits; a
// header is never taken for shorter than it is.
std::size_t HeaderBytes(const BITMAPINFOHEADER& header) {
  const std::size_t fieldMasks = header.biCompression == BI_BITFIELDS ? kFieldMaskBytes : 0;
  const std::size_t palette = DibPaletteBytes(header.biBitCount);
  const auto offset = static_cast<std::uint16_t>(header.biSize + palette + fieldMasks);
  return std::max<std::size_t>(offset, kDibHeaderBytes + palette + fieldMasks) - palette;
}

ChannelMasks MasksOf(const std::uint8_t* block, const BITMAPINFOHEADER& header) {
  ChannelMasks masks = header.biBitCount == 16 ? kFiveBitMasks : kByteMasks;
  const bool hasFields = header.biBitCount == 16 || header.biBitCount == 32;
  if (header.biCompression == BI_BITFIELDS && hasFields) {
    static_assert(sizeof masks == kFieldMaskBytes);
    std::memcpy(&masks, block + kDibHeaderBytes, sizeof masks);
    const std::uint32_t pixel = header.biBitCount == 16 ? 0xFFFF : 0xFFFFFFFF;
    masks = {masks.red & pixel, masks.green & pixel, masks.blue & pixel};
  }
  return masks;
}

}  // namespace

std::optional<SourceImage> DescribeImage(const std::uint8_t* block, std::size_t bytes) {
  const auto layout = DibLayoutOf(block, bytes, {.headerBytes = HeaderBytes});
  if (!layout || !IsDibDepth(layout->depth)) return std::nullopt;
  const BITMAPINFOHEADER header = DibHeaderOf(block);
  const bool isPlain = header.biCompression == BI_RGB || header.biCompression == BI_BITFIELDS;
  if (!isPlain) return std::nullopt;
  const std::uint8_t* const rows = block + layout->pixelOffset;
  const std::size_t palette = DibPaletteBytes(layout->depth);
  return SourceImage{.width = layout->width,
                     .height = layout->height,
                     .depth = layout->depth,
                     .palette = palette != 0 ? rows - palette : nullptr,
                     .masks = MasksOf(block, header),
                     .rows = rows,
                     .stride = layout->stride};
}

void CapturePage(DibHandle page, RegionFinder& finder) {
  const BlockLock lock(page);
  if (const auto image = DescribeImage(lock.bytes(), lock.size())) finder.Capture(*image);
}

}  // namespace orvo
