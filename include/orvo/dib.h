// The packed device-independent bitmap (DIB) in which images travel: one memory block holding
//
//   1. a BITMAPINFOHEADER of 40 bytes,
//   2. for 1, 4 and 8 bits a palette of 2^depth entries, always in full, whatever biClrUsed says,
//   3. the rows in stored order (the bottom line of the picture first), each padded to 4 bytes.
//
// Rows are packed: depths 1, 4 and 8 index the palette, the leftmost pixel in the highest bits; 16
// bits are 5-5-5 with red on top; 24 and 32 bits lie blue, green, red (and a byte without colour).
//
// The functions below only calculate. <orvo/dib_block.h> owns blocks and locks them.
#ifndef ORVO_DIB_H
#define ORVO_DIB_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>

#include <orvo/platform.h>

// Handle of a movable memory block that holds one packed DIB; null when there is none.
typedef void* DibHandle;

namespace orvo {

inline constexpr std::size_t kDibHeaderBytes = 40;
// What the toolkit asks of GlobalAlloc for an image.
inline constexpr unsigned kDibBlockFlags = GMEM_MOVEABLE | GMEM_ZEROINIT;

constexpr bool IsDibDepth(int depth) {
  return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32;
}

struct DibLayout {
  int width;                // pixels
  int height;               // rows
  int depth;                // bits per pixel
  std::size_t stride;       // bytes from one row to the next
  std::size_t pixelOffset;  // bytes from the start of the block to the first row
  std::size_t totalBytes;   // bytes that header, palette and rows need
};

// Bytes of one row, padded to 4.
constexpr std::uint64_t DibStride(std::uint64_t width, std::uint64_t depth) {
  return (width * depth + 31) / 32 * 4;
}

// Bytes of the palette that a depth carries.
constexpr std::size_t DibPaletteBytes(int depth) {
  return depth >= 1 && depth <= 8 ? std::size_t{4} << depth : 0;
}

// The layout of an image of these measures; nothing when one is 0 or below or the size overflows.
inline std::optional<DibLayout> DibLayoutFor(int width, int height, int depth,
                                             std::size_t headerBytes = kDibHeaderBytes) {
  if (width <= 0 || height <= 0 || depth <= 0) return std::nullopt;
  const std::uint64_t stride =
      DibStride(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(depth));
  const std::uint64_t offset = headerBytes + DibPaletteBytes(depth);
  constexpr std::uint64_t kMost = std::numeric_limits<std::size_t>::max() / 2;
  if (offset > kMost || stride > (kMost - offset) / static_cast<std::uint64_t>(height)) {
    return std::nullopt;
  }
  return DibLayout{width,
                   height,
                   depth,
                   static_cast<std::size_t>(stride),
                   static_cast<std::size_t>(offset),
                   static_cast<std::size_t>(offset + stride * static_cast<std::uint64_t>(height))};
}

inline BITMAPINFOHEADER DibHeaderOf(const void* block) {
  BITMAPINFOHEADER header;
  std::memcpy(&header, block, sizeof header);
  return header;
}

// The header of a new image; resolutions in pixels per metre, 0 for an unknown one.
constexpr BITMAPINFOHEADER DibHeaderFor(int width, int height, int depth,
                                        std::int32_t xResolution = 0,
                                        std::int32_t yResolution = 0) {
  BITMAPINFOHEADER header{};
  header.biSize = kDibHeaderBytes;
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = static_cast<std::uint16_t>(depth);
  header.biXPelsPerMeter = xResolution;
  header.biYPelsPerMeter = yResolution;
  return header;
}

// What a reader takes from a header. Most take the whole of biBitCount and the 40 bytes.
struct DibReading {
  std::uint16_t depthMask = 0xFFFF;  // the part of biBitCount that counts as the depth
  // Bytes before the palette, 40 at least; null for 40 whatever the header says.
  std::size_t (*headerBytes)(const BITMAPINFOHEADER& header) = nullptr;
};

// The layout of a locked block of `blockBytes` bytes; nothing when the block is null or malformed,
// that is when it cannot hold what its header claims.
inline std::optional<DibLayout> DibLayoutOf(const void* block, std::size_t blockBytes,
                                            const DibReading& reading = {}) {
  if (block == nullptr || blockBytes < kDibHeaderBytes) return std::nullopt;
  const BITMAPINFOHEADER header = DibHeaderOf(block);
  const std::size_t headerBytes =
      reading.headerBytes != nullptr ? reading.headerBytes(header) : kDibHeaderBytes;
  const auto layout = DibLayoutFor(header.biWidth, header.biHeight,
                                   header.biBitCount & reading.depthMask, headerBytes);
  if (!layout || layout->totalBytes > blockBytes) return std::nullopt;
  return layout;
}

// Resolution as headers keep it and as people count it. Both round to nearest, so that 300 dots per
// inch survive the way through 11811 pixels per metre.
inline constexpr double kMetresPerInch = 0.0254;
inline constexpr double kMostResolution = std::numeric_limits<std::int32_t>::max();
inline int DotsPerInch(std::int32_t pixelsPerMetre) {
  return static_cast<int>(std::lround(pixelsPerMetre * kMetresPerInch));
}
inline std::int32_t PixelsPerMetre(int dotsPerInch) {
  return static_cast<std::int32_t>(std::fmin(
      std::fmax(std::round(dotsPerInch / kMetresPerInch), -kMostResolution), kMostResolution));
}

}  // namespace orvo

#endif  // ORVO_DIB_H
