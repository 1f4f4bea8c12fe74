#include "pictures/bmp_header.h"

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstdlib>

namespace modules {
namespace {

constexpr std::uint32_t kCoreHeaderBytes = 12;  // of OS/2: 16-bit measures, 3-byte palette entries
constexpr std::uint32_t kShortestHeaderBytes = 16;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kMasksInHeaderBytes = 52;
constexpr std::uint32_t kAlphaInHeaderBytes = 56;
constexpr std::uint32_t kVersion4HeaderBytes = 108;
constexpr std::uint32_t kLongestHeaderBytes = 256;
constexpr std::uint32_t kBitFieldsWithAlpha = 6;

using HeaderBytes = std::array<std::uint8_t, kLongestHeaderBytes>;

void Read(std::FILE* file, void* bytes, std::size_t count) {
  Require(std::fread(bytes, 1, count, file) == count, kModuleReadFailed);
}

std::int32_t Signed32(const std::uint8_t* bytes) {
  return static_cast<std::int32_t>(Little32(bytes));
}

// The measures; compression and resolution where the header goes that far, its rest being zero.
void ReadMeasures(const HeaderBytes& bytes, std::uint32_t size, BmpHeader& header) {
  Picture& picture = header.picture;
  picture.bottomUp = true;
  if (size == kCoreHeaderBytes) {
    picture.width = Little16(&bytes[4]);
    picture.height = Little16(&bytes[6]);
    header.depth = Little16(&bytes[10]);
    return Require(picture.width > 0 && picture.height > 0, kFileFormatDamaged);
  }
  picture.width = Signed32(&bytes[4]);
  const std::int32_t height = Signed32(&bytes[8]);
  Require(picture.width > 0 && height != 0 && height != INT_MIN, kFileFormatDamaged);
  picture.bottomUp = height > 0;
  picture.height = std::abs(height);
  header.depth = Little16(&bytes[14]);
  header.compression = Little32(&bytes[16]);
  picture.xPixelsPerMetre = std::max(Signed32(&bytes[24]), 0);
  picture.yPixelsPerMetre = std::max(Signed32(&bytes[28]), 0);
}

// Whether rows of this depth may be coded this way.
void CheckCoding(const BmpHeader& header) {
  const int depth = header.depth;
  switch (header.compression) {
    case BI_RGB:
      return Require(
          depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32,
          kModuleDepthNotSupported);
    case BI_RLE8:
      return Require(depth == 8, kFileFormatDamaged);
    case BI_RLE4:
      return Require(depth == 4, kFileFormatDamaged);
    case BI_BITFIELDS:
      return Require(depth == 16 || depth == 32, kFileFormatDamaged);
    default:
      throw ModuleError{
          kFileFormatNotRead};  // a JPEG or PNG for a printer, or a fax coding of OS/2
  }
}

BmpChannel ChannelOf(std::uint32_t mask) {
  return {mask, mask == 0 ? 0 : std::countr_zero(mask), std::popcount(mask)};
}

// Each mask is one run of bits inside the pixel, and no bit serves twice.
bool MasksAreSound(const BmpHeader& header) {
  std::uint64_t used = ~((std::uint64_t{1} << header.depth) - 1);
  for (const BmpChannel& channel : {header.red, header.green, header.blue, header.alpha}) {
    const std::uint64_t run = ((std::uint64_t{1} << channel.bits) - 1) << channel.shift;
    if (channel.mask != run || (used & channel.mask) != 0) return false;
    used |= channel.mask;
  }
  return header.red.mask != 0 && header.green.mask != 0 && header.blue.mask != 0;
}

// Headers of other sizes may hold anything behind the three masks.
bool KnowsAlpha(std::uint32_t headerBytes) {
  return headerBytes == kAlphaInHeaderBytes || headerBytes >= kVersion4HeaderBytes;
}

using Masks = std::array<std::uint32_t, 4>;  // red, green, blue, alpha

// Masks stand in the header or, behind one of 40 bytes, on their own.
Masks ReadMasks(std::FILE* file, const HeaderBytes& bytes, std::uint32_t size,
                std::uint32_t compression) {
  std::array<std::uint8_t, 16> behind{};
  const bool withAlpha = compression == kBitFieldsWithAlpha;
  const std::uint8_t* source = &bytes[kInfoHeaderBytes];
  if (size < kMasksInHeaderBytes) {
    Require(std::fread(behind.data(), withAlpha ? 16 : 12, 1, file) == 1, kFileFormatDamaged);
    source = behind.data();
  }
  Masks masks{};
  const bool knowsAlpha = withAlpha || KnowsAlpha(size);
  for (std::size_t i = 0; i < (knowsAlpha ? 4U : 3U); ++i) masks[i] = Little32(source + 4 * i);
  return masks;
}

// The channels of pixels of 16 and 32 bits, and what image they make: five bits for each colour
// stay as they are, all else becomes bytes. The fourth byte of the oldest headers is kept, since it
// is where images of 32 bits are saved with their opacity; with masks it takes one of its own.
void ReadChannels(std::FILE* file, const HeaderBytes& bytes, std::uint32_t size,
                  BmpHeader& header) {
  constexpr std::uint32_t kFourthByte = 0xFF000000;
  const bool wide = header.depth == 32;
  const Masks plain =
      wide ? Masks{0xFF0000, 0xFF00, 0xFF, kFourthByte} : Masks{0x7C00, 0x3E0, 0x1F};
  Masks masks = plain;
  if (header.compression != BI_RGB) {
    masks = ReadMasks(file, bytes, size, header.compression);
  } else if (wide && KnowsAlpha(size) && Little32(&bytes[kMasksInHeaderBytes]) != kFourthByte) {
    masks[3] = 0;
  }
  header.red = ChannelOf(masks[0]);
  header.green = ChannelOf(masks[1]);
  header.blue = ChannelOf(masks[2]);
  header.alpha = ChannelOf(masks[3]);
  Require(MasksAreSound(header), kFileFormatDamaged);
  constexpr int kNarrow = 5;
  const bool isNarrow = header.red.bits == kNarrow && header.green.bits == kNarrow &&
                        header.blue.bits == kNarrow && masks[3] == 0;
  header.isPlain = masks == plain;
  header.picture.setDepth(wide || masks[3] != 0 ? 32 : isNarrow ? 16 : 24);
}

// Where a palette ends at the latest: where the pixels begin, unless their offset points into the
// palette and leaves more bytes than the rows take. 0 when nothing tells.
std::uint64_t PaletteEnd(const BmpHeader& header, std::uint64_t fileBytes) {
  const std::uint64_t rowsBytes = header.rowsBytes();
  if (header.hasRuns() || header.pixelOffset == 0) return header.pixelOffset;
  return std::max(header.pixelOffset, fileBytes - std::min(rowsBytes, fileBytes));
}

// An offset into the headers is wrong: the pixels then follow them. So is one into the palette
// when all rows find room behind it.
bool OffsetIsWrong(const BmpHeader& header, std::uint64_t headerBytes, std::uint64_t behindPalette,
                   std::uint64_t fileBytes) {
  if (header.pixelOffset < kBmpFileHeaderBytes + headerBytes) return true;
  return header.pixelOffset < behindPalette && !header.hasRuns() && behindPalette <= fileBytes &&
         header.rowsBytes() <= fileBytes - behindPalette;
}

// As many entries as the depth has and the file claims; when it claims none, as there is room for
// before `end`.
void ReadPalette(std::FILE* file, std::uint32_t claimed, std::size_t entryBytes, std::uint64_t end,
                 BmpHeader& header) {
  const std::uint32_t full = 1U << header.depth;
  std::uint32_t count = claimed == 0 ? full : std::min(claimed, full);
  const auto at = static_cast<std::uint64_t>(std::ftell(file));
  if (claimed == 0 && end > at) {
    count = static_cast<std::uint32_t>(std::min<std::uint64_t>(count, (end - at) / entryBytes));
  }
  header.picture.palette.resize(full);
  std::array<std::uint8_t, 4> entry{};
  for (std::uint32_t i = 0; i < count; ++i) {
    // A file that ends here is refused for its missing pixels.
    if (std::fread(entry.data(), entryBytes, 1, file) != 1) return;
    header.picture.palette[i] = RGBQUAD{entry[0], entry[1], entry[2], 0};
  }
}

}  // namespace

std::uint8_t BmpChannel::tone(std::uint32_t pixel) const {
  constexpr int kToneBits = 8;
  const std::uint32_t value = (pixel & mask) >> shift;
  if (bits >= kToneBits) return static_cast<std::uint8_t>(value >> (bits - kToneBits));
  if (bits == 0) return 0;
  // Repeated from the top, as 5 bits are everywhere: the highest value becomes 255.
  std::uint32_t tone = 0;
  for (int place = kToneBits - bits; place > -bits; place -= bits) {
    tone |= place >= 0 ? value << place : value >> -place;
  }
  return static_cast<std::uint8_t>(tone);
}

std::uint64_t BmpHeader::strideBytes() const {
  return (static_cast<std::uint64_t>(picture.width) * static_cast<std::uint64_t>(depth) + 31) / 32 *
         4;
}

std::uint64_t BmpHeader::rowsBytes() const {
  const std::uint64_t lastRowBytes =
      (static_cast<std::uint64_t>(picture.width) * static_cast<std::uint64_t>(depth) + 7) / 8;
  return strideBytes() * (static_cast<std::uint64_t>(picture.height) - 1) + lastRowBytes;
}

BmpHeader ReadBmpHeader(std::FILE* file, std::uint64_t fileBytes) {
  BmpHeader header;
  std::array<std::uint8_t, kBmpFileHeaderBytes> fileHeader{};
  HeaderBytes bytes{};
  Read(file, fileHeader.data(), fileHeader.size());
  Read(file, bytes.data(), 4);
  const std::uint32_t size = Little32(bytes.data());
  Require(size == kCoreHeaderBytes || (size >= kShortestHeaderBytes && size <= kLongestHeaderBytes),
          kFileFormatDamaged);
  Read(file, &bytes[4], size - 4);
  ReadMeasures(bytes, size, header);

  const bool hasMasks =
      header.compression == BI_BITFIELDS || header.compression == kBitFieldsWithAlpha;
  header.picture.setDepth(header.depth);
  if (header.depth == 16 || header.depth == 32) {
    ReadChannels(file, bytes, size, header);
    if (hasMasks) header.compression = BI_BITFIELDS;
  }
  CheckCoding(header);

  header.pixelOffset = Little32(&fileHeader[10]);
  if (header.depth <= 8) {
    const bool isCore = size == kCoreHeaderBytes;
    const std::uint32_t claimed = isCore ? 0 : Little32(&bytes[32]);
    ReadPalette(file, claimed, isCore ? 3 : 4, PaletteEnd(header, fileBytes), header);
  }
  const auto behindPalette = static_cast<std::uint64_t>(std::ftell(file));
  if (OffsetIsWrong(header, size, behindPalette, fileBytes)) header.pixelOffset = behindPalette;
  Require(header.pixelOffset <= fileBytes, kModuleReadFailed);
  header.pixelBytes = fileBytes - header.pixelOffset;
  return header;
}

}  // namespace modules
