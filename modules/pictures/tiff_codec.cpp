// TIFF: recognised and described here, its pages read and written in the files beside.
#include "pictures/tiff_codec.h"

#include <array>

#include "pictures/codecs.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

bool Recognises(std::span<const std::uint8_t> head, const char* /*extension*/) {
  constexpr std::uint8_t kMark = 42;
  constexpr std::uint8_t kBigMark = 43;  // with 64-bit offsets
  if (head.size() < 4) return false;
  const bool little = head[0] == 'I' && head[1] == 'I' && head[3] == 0;
  const bool big = head[0] == 'M' && head[1] == 'M' && head[2] == 0;
  const std::uint8_t mark = little ? head[2] : head[3];
  return (little || big) && (mark == kMark || mark == kBigMark);
}

// Opens the file at a page, counted from 1.
int Open(const char* path, int number, TiffHandle& tiff, TiffPage& page) {
  tiff = OpenTiff(path, "rm");  // not mapped: a file that shrinks under a mapping kills the process
  if (!tiff) return kFileFormatDamaged;
  if (number < 1 || FollowPages(tiff.get(), number - 1) < number - 1) return kModuleBadParameter;
  return ReadTiffPage(tiff.get(), page);
}

const char* CompressionName(std::uint16_t compression) {
  switch (compression) {
    case COMPRESSION_NONE:
      return "none";
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
    case COMPRESSION_CCITTFAX3:
      return "CCITT G3";
    case COMPRESSION_CCITTFAX4:
      return "CCITT G4";
    case COMPRESSION_LZW:
      return "LZW";
    case COMPRESSION_OJPEG:
    case COMPRESSION_JPEG:
      return "JPEG";
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
      return "deflate";
    case COMPRESSION_PACKBITS:
      return "PackBits";
    default: {
      const TIFFCodec* const codec = TIFFFindCODEC(compression);
      return codec == nullptr ? "unknown" : codec->name;
    }
  }
}

int Describe(const char* path, int number, LTFILEINFO& info) {
  TiffHandle tiff;
  TiffPage page;
  if (const int code = Open(path, number, tiff, page); code != kModuleSuccess) return code;
  const bool plain = page.compression == COMPRESSION_NONE;
  DescribeImage(page.image, plain ? kFormatTiff : kFormatTiffCompressed,
                CompressionName(page.compression), info);
  info.pageCount = number + FollowPages(tiff.get());
  info.page = number;
  return kModuleSuccess;
}

int Load(const char* path, int number, struct_LEAD_Bitmap& bitmap) {
  TiffHandle tiff;
  TiffPage page;
  if (const int code = Open(path, number, tiff, page); code != kModuleSuccess) return code;
  const std::uint64_t fileBytes = FileSize(path);
  const auto layout = orvo::DibLayoutFor(page.image.width, page.image.height, page.image.depth);
  if (!layout) return kFileFormatDamaged;
  if (!IsPlausible(layout->totalBytes, fileBytes, page.mostRatio)) return kModuleReadFailed;
  return LoadImage(page.image, bitmap, [&](const Pixels& image) {
    return ReadTiffPixels(tiff.get(), page, fileBytes, image);
  });
}

constexpr std::array<int, 2> kFormats{kFormatTiff, kFormatTiffCompressed};

}  // namespace

const Codec kTiffCodec{Recognises, Describe, Load, kFormats, SaveTiff};

}  // namespace modules
