#include "pictures/bmp_header.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>

namespace modules {
namespace {

constexpr std::uint32_t kCoreHeaderBytes = 12;  // of OS/2: 16-bit measures, 3-byte palette entries
constexpr std::uint32_t kShortestHeaderBytes = 16;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kMasksInHeaderBytes = 52;
constexpr std::uint32_t kAlphaInHeaderBytes = 56;
constexpr std::uint32_t kLongestHeaderBytes = 256;
constexpr std::uint32_t kBitFieldsWithAlpha = 6;

using HeaderBytes = std::array<std::uint8_t, kLongestHeaderBytes>;

bool ReadExactly(std::FILE* file, void* bytes, std::size_t count) {
  return std::fread(bytes, 1, count, file) == count;
}

std::int32_t Signed32(const std::uint8_t* bytes) {
  return static_cast<std::int32_t>(Little32(bytes));
}

// The measures; compression and resolution where the header goes that far, its rest being zero.
bool ReadMeasures(const HeaderBytes& bytes, std::uint32_t size, BmpHeader& header) {
  FileImage& image = header.image;
  if (size == kCoreHeaderBytes) {
    image.width = Little16(&bytes[4]);
    image.height = Little16(&bytes[6]);
    image.depth = Little16(&bytes[10]);
    return image.width > 0 && image.height > 0;
  }
  image.width = Signed32(&bytes[4]);
  const std::int32_t height = Signed32(&bytes[8]);
  if (image.width <= 0 || height == 0 || height == INT_MIN) return false;
  header.topDown = height < 0;
  image.height = header.topDown ? -height : height;
  image.depth = Little16(&bytes[14]);
  header.compression = Little32(&bytes[16]);
  image.xPixelsPerMetre = std::max(Signed32(&bytes[24]), 0);
  image.yPixelsPerMetre = std::max(Signed32(&bytes[28]), 0);
  return true;
}

// Module code: whether rows of this depth may be coded this way.
int CheckCoding(const BmpHeader& header) {
  const int depth = header.image.depth;
  switch (header.compression) {
    case BI_RGB:
      return depth == 1 || depth == 4 || depth == 8 || depth == 16 || depth == 24 || depth == 32
                 ? kModuleSuccess
                 : kModuleDepthNotSupported;
    case BI_RLE8:
      return depth == 8 && !header.topDown ? kModuleSuccess : kFileFormatDamaged;
    case BI_RLE4:
      return depth == 4 && !header.topDown ? kModuleSuccess : kFileFormatDamaged;
    case BI_BITFIELDS:
      return depth == 16 || depth == 32 ? kModuleSuccess : kFileFormatDamaged;
    default:
      return kFileFormatNotRead;  // a JPEG or PNG for a printer, or a fax coding of OS/2
  }
}

BmpChannel ChannelOf(std::uint32_t mask) {
  return {mask, mask == 0 ? 0 : std::countr_zero(mask), std::popcount(mask)};
}

// Each mask is one run of bits inside the pixel, and no bit serves twice.
bool MasksAreSound(const BmpHeader& header) {
  std::uint64_t used = ~((std::uint64_t{1} << header.image.depth) - 1);
  for (const BmpChannel& channel : {header.red, header.green, header.blue, header.alpha}) {
    const std::uint64_t run = ((std::uint64_t{1} << channel.bits) - 1) << channel.shift;
    if (channel.mask != run || (used & channel.mask) != 0) return false;
    used |= channel.mask;
  }
  return header.red.mask != 0 && header.green.mask != 0 && header.blue.mask != 0;
}

// Masks stand in the header or, behind one of 40 bytes, on their own.
bool ReadMasks(std::FILE* file, const HeaderBytes& bytes, std::uint32_t size, BmpHeader& header) {
  const bool wide = header.image.depth == 32;
  std::array<std::uint32_t, 4> masks{wide ? 0xFF0000U : 0x7C00U, wide ? 0xFF00U : 0x3E0U,
                                     wide ? 0xFFU : 0x1FU, 0};
  const auto plain = masks;
  if (header.compression != BI_RGB) {
    std::array<std::uint8_t, 16> behind{};
    const bool withAlpha = header.compression == kBitFieldsWithAlpha;
    const std::uint8_t* source = &bytes[kInfoHeaderBytes];
    if (size < kMasksInHeaderBytes) {
      if (!ReadExactly(file, behind.data(), withAlpha ? 16 : 12)) return false;
      source = behind.data();
    }
    const bool knowsAlpha = withAlpha || size >= kAlphaInHeaderBytes;
    for (std::size_t i = 0; i < (knowsAlpha ? 4U : 3U); ++i) masks[i] = Little32(source + 4 * i);
  }
  header.red = ChannelOf(masks[0]);
  header.green = ChannelOf(masks[1]);
  header.blue = ChannelOf(masks[2]);
  header.alpha = ChannelOf(masks[3]);
  constexpr std::uint32_t kFourthByte = 0xFF000000;
  header.isPlain = std::equal(masks.begin(), masks.begin() + 3, plain.begin()) &&
                   (!wide || masks[3] == 0 || masks[3] == kFourthByte);
  return MasksAreSound(header);
}

// As many entries as the depth has, the file claims and the room before the pixels holds.
bool ReadPalette(std::FILE* file, std::uint32_t claimed, std::size_t entryBytes,
                 std::uint64_t pixelOffset, BmpHeader& header) {
  const std::uint32_t full = 1U << header.image.depth;
  std::uint32_t count = claimed == 0 ? full : std::min(claimed, full);
  const auto at = static_cast<std::uint64_t>(std::ftell(file));
  if (pixelOffset > at) {
    count =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(count, (pixelOffset - at) / entryBytes));
  }
  std::array<std::uint8_t, 4> entry{};
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!ReadExactly(file, entry.data(), entryBytes)) return false;
    header.palette[i] = RGBQUAD{entry[0], entry[1], entry[2], 0};
  }
  return true;
}

}  // namespace

std::uint8_t BmpChannel::tone(std::uint32_t pixel) const {
  constexpr int kToneBits = 8;
  const std::uint32_t value = (pixel & mask) >> shift;
  if (bits >= kToneBits) return static_cast<std::uint8_t>(value >> (bits - kToneBits));
  if (bits == 0) return 0;
  const std::uint32_t most = (1U << bits) - 1;
  return static_cast<std::uint8_t>((value * 255 + most / 2) / most);
}

int ReadBmpHeader(std::FILE* file, std::uint64_t fileBytes, BmpHeader& header) {
  std::array<std::uint8_t, kBmpFileHeaderBytes> fileHeader{};
  HeaderBytes bytes{};
  if (!ReadExactly(file, fileHeader.data(), fileHeader.size())) return kModuleReadFailed;
  if (!ReadExactly(file, bytes.data(), 4)) return kModuleReadFailed;
  const std::uint32_t size = Little32(bytes.data());
  if (size != kCoreHeaderBytes && (size < kShortestHeaderBytes || size > kLongestHeaderBytes)) {
    return kFileFormatDamaged;
  }
  if (!ReadExactly(file, &bytes[4], size - 4)) return kModuleReadFailed;
  if (!ReadMeasures(bytes, size, header)) return kFileFormatDamaged;

  const bool hasMasks =
      header.compression == BI_BITFIELDS || header.compression == kBitFieldsWithAlpha;
  if (header.image.depth == 16 || header.image.depth == 32) {
    if (!ReadMasks(file, bytes, size, header)) return kFileFormatDamaged;
    if (hasMasks) header.compression = BI_BITFIELDS;
  }
  if (const int code = CheckCoding(header); code != kModuleSuccess) return code;

  header.pixelOffset = Little32(&fileHeader[10]);
  if (header.image.depth <= 8) {
    const bool isCore = size == kCoreHeaderBytes;
    const std::uint32_t claimed = isCore ? 0 : Little32(&bytes[32]);
    if (!ReadPalette(file, claimed, isCore ? 3 : 4, header.pixelOffset, header)) {
      return kModuleReadFailed;
    }
  }
  // An offset into the headers is wrong: the pixels then follow them.
  const auto behindHeaders = static_cast<std::uint64_t>(std::ftell(file));
  if (header.pixelOffset < kBmpFileHeaderBytes + size) header.pixelOffset = behindHeaders;
  if (header.pixelOffset > fileBytes) return kModuleReadFailed;
  header.pixelBytes = fileBytes - header.pixelOffset;
  return kModuleSuccess;
}

}  // namespace modules
