#include "imaging/regions/source_image.h"

#include <algorithm>

#include <orvo/dib.h>

namespace orvo {

namespace {

constexpr std::size_t kFieldMaskBytes = 12;  // red, green and blue, 4 bytes each
constexpr ChannelMasks kFiveBitMasks{0x7C00, 0x03E0, 0x001F};
constexpr ChannelMasks kByteMasks{0xFF0000, 0x00FF00, 0x0000FF};

bool IsKnownDepth(int depth) {
  return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32;
}

// Bytes before the rows. They follow the size that the header gives itself, counted in 16 bits; a
// header is never taken for shorter than it is.
std::size_t PixelOffset(const BITMAPINFOHEADER& header, std::size_t colorTable) {
  const auto offset = static_cast<std::uint16_t>(header.biSize + colorTable);
  return std::max<std::size_t>(offset, sizeof header + colorTable);
}

ChannelMasks MasksOf(const std::uint8_t* block, const BITMAPINFOHEADER& header) {
  ChannelMasks masks = header.biBitCount == 16 ? kFiveBitMasks : kByteMasks;
  const bool hasFields = header.biBitCount == 16 || header.biBitCount == 32;
  if (header.biCompression == BI_BITFIELDS && hasFields) {
    static_assert(sizeof masks == kFieldMaskBytes);
    std::memcpy(&masks, block + sizeof header, sizeof masks);
    const std::uint32_t pixel = header.biBitCount == 16 ? 0xFFFF : 0xFFFFFFFF;
    masks = {masks.red & pixel, masks.green & pixel, masks.blue & pixel};
  }
  return masks;
}

}  // namespace

std::optional<SourceImage> DescribeImage(const std::uint8_t* block, std::size_t bytes) {
  if (block == nullptr || bytes < sizeof(BITMAPINFOHEADER)) return std::nullopt;
  const BITMAPINFOHEADER header = orvo::DibHeaderOf(block);
  const bool isPlain = header.biCompression == BI_RGB || header.biCompression == BI_BITFIELDS;
  if (!isPlain || !IsKnownDepth(header.biBitCount)) return std::nullopt;

  const std::size_t fieldMasks = header.biCompression == BI_BITFIELDS ? kFieldMaskBytes : 0;
  const std::size_t palette = orvo::DibPaletteBytes(header.biBitCount);
  const std::size_t headerBytes = PixelOffset(header, palette + fieldMasks) - palette;
  const auto layout =
      orvo::DibLayoutFor(header.biWidth, header.biHeight, header.biBitCount, headerBytes);
  if (!layout || layout->totalBytes > bytes) return std::nullopt;
  return SourceImage{.width = layout->width,
                     .height = layout->height,
                     .depth = layout->depth,
                     .palette = palette != 0 ? block + headerBytes : nullptr,
                     .masks = MasksOf(block, header),
                     .rows = block + layout->pixelOffset,
                     .stride = layout->stride};
}

}  // namespace orvo
