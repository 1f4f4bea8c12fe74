#include "pictures/tiff_page.h"

#include <climits>

namespace modules {
namespace {

int OnError(TIFF* /*tiff*/, void* faults, const char* /*module*/, const char* /*format*/,
            va_list /*arguments*/) {
  ++*static_cast<int*>(faults);
  return 1;  // dealt with: nothing is printed
}

int OnWarning(TIFF* /*tiff*/, void* /*data*/, const char* /*module*/, const char* /*format*/,
              va_list /*arguments*/) {
  return 1;
}

// A tag of 16 bits, with the library's default where it has one.
std::uint16_t Tag16(TIFF* tiff, std::uint32_t tag, std::uint16_t absent) {
  std::uint16_t value = absent;
  return TIFFGetFieldDefaulted(tiff, tag, &value) != 0 ? value : absent;
}

bool IsFax(std::uint16_t compression) {
  return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
         compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

void ReadResolution(TIFF* tiff, Picture& picture) {
  const std::uint16_t unit = Tag16(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  float tagX = 0;
  float tagY = 0;
  (void)TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &tagX);
  (void)TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &tagY);
  picture.setResolution(static_cast<double>(tagX), static_cast<double>(tagY), unit);
}

// Which sample behind the colours is transparency: the first, when the tag says so.
std::uint16_t AlphaTag(TIFF* tiff) {
  std::uint16_t count = 0;
  std::uint16_t* kinds = nullptr;
  const bool given = TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) != 0;
  return given && count > 0 ? kinds[0] : static_cast<std::uint16_t>(EXTRASAMPLE_UNSPECIFIED);
}

bool IsWholeByteOrLess(int bits) {
  return bits == 1 || bits == 2 || bits == 4 || bits == 8;
}

std::uint16_t PhotometricOf(TIFF* tiff, const TiffPage& page) {
  const std::uint16_t guess = page.samples >= 3         ? PHOTOMETRIC_RGB
                              : IsFax(page.compression) ? PHOTOMETRIC_MINISWHITE
                                                        : PHOTOMETRIC_MINISBLACK;
  std::uint16_t photometric = guess;
  return TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric) != 0 ? photometric : guess;
}

TiffPage::Kind KindOf(TIFF* tiff, TiffPage& page) {
  using Kind = TiffPage::Kind;
  const std::uint16_t alpha = AlphaTag(tiff);
  const bool hasAlpha = alpha != EXTRASAMPLE_UNSPECIFIED;
  page.premultiplied = alpha == EXTRASAMPLE_ASSOCALPHA;
  switch (PhotometricOf(tiff, page)) {
    case PHOTOMETRIC_MINISWHITE:
      page.whiteIsZero = true;
      [[fallthrough]];
    case PHOTOMETRIC_MINISBLACK:
      if (page.samples == 1 && page.bits < 8 && IsWholeByteOrLess(page.bits))
        return Kind::kAsStored;
      return page.samples >= 2 && hasAlpha ? Kind::kGrayAlpha : Kind::kGray;
    case PHOTOMETRIC_PALETTE:
      if (page.samples != 1 || !IsWholeByteOrLess(page.bits)) return Kind::kByLibrary;
      page.hasPalette = true;
      return Kind::kAsStored;
    case PHOTOMETRIC_YCBCR:
      // The JPEG decoder inside the library knows the way to RGB.
      if (page.compression != COMPRESSION_JPEG || page.planar || page.samples != 3 ||
          TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 0) {
        return Kind::kByLibrary;
      }
      return Kind::kRgb;
    case PHOTOMETRIC_RGB:
      if (page.samples < 3) return Kind::kByLibrary;
      return page.samples >= 4 && hasAlpha ? Kind::kRgba : Kind::kRgb;
    case PHOTOMETRIC_SEPARATED:
      return page.samples >= 4 && Tag16(tiff, TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK
                 ? Kind::kCmyk
                 : Kind::kByLibrary;
    default:
      return Kind::kByLibrary;
  }
}

// What the rows become.
void DescribeRows(TiffPage& page) {
  using Kind = TiffPage::Kind;
  Picture& picture = page.picture;
  picture.isGray = page.kind == Kind::kGray || page.kind == Kind::kGrayAlpha;
  switch (page.kind) {
    case Kind::kAsStored:
      picture.bits = page.bits;
      picture.reversed = page.whiteIsZero;
      break;
    case Kind::kGray:
      break;
    case Kind::kGrayAlpha:
    case Kind::kRgba:
      picture.hasAlpha = true;
      picture.samples = 4;
      break;
    default:
      picture.samples = 3;
  }
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

// A fax row that repeats the one above takes a bit, however wide it is.
std::uint64_t MostRatioOf(const TiffPage& page) {
  constexpr std::uint64_t kMostDictionaryRatio = 4096;
  return IsFax(page.compression) ? static_cast<std::uint64_t>(page.picture.width)
                                 : kMostDictionaryRatio;
}

}  // namespace

TiffHandle OpenTiffFile(const char* path, const char* mode, int& faults) {
  constexpr tmsize_t kMostAllocation = tmsize_t{1} << 30;
  TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
  if (options == nullptr) return nullptr;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMostAllocation);
  TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, &faults);
  TIFFOpenOptionsSetWarningHandlerExtR(options, OnWarning, nullptr);
  TiffHandle tiff(TIFFOpenExt(path, mode, options));
  TIFFOpenOptionsFree(options);
  return tiff;
}

int FollowPages(TIFF* tiff, int most) {
  int pages = 0;
  while (pages < most && TIFFReadDirectory(tiff) != 0) ++pages;
  return pages;
}

TiffPage ReadTiffPage(TIFF* tiff) {
  constexpr int kMostBits = 16;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  (void)TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
  (void)TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
  Require(width > 0 && height > 0 && width <= INT_MAX && height <= INT_MAX, kFileFormatDamaged);
  TiffPage page;
  Picture& picture = page.picture;
  picture.width = static_cast<int>(width);
  picture.height = static_cast<int>(height);
  page.compression = Tag16(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  Require(TIFFIsCODECConfigured(page.compression) != 0, kFileFormatNotRead);
  picture.format = page.compression == COMPRESSION_NONE ? kFormatTiff : kFormatTiffCompressed;
  picture.compression = CompressionName(page.compression);
  page.bits = Tag16(tiff, TIFFTAG_BITSPERSAMPLE, 1);
  page.samples = Tag16(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  page.planar = page.samples > 1 &&
                Tag16(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
  page.mostRatio = MostRatioOf(page);
  picture.orientation = OrientationOf(Tag16(tiff, TIFFTAG_ORIENTATION, kUpright));
  ReadResolution(tiff, picture);

  page.kind = KindOf(tiff, page);
  const std::uint16_t format = Tag16(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  const bool isPlainNumber = format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID;
  Require(page.kind == TiffPage::Kind::kByLibrary ||
              (page.bits >= 1 && page.bits <= kMostBits && page.samples >= 1 && isPlainNumber),
          kModuleDepthNotSupported);
  if (page.kind == TiffPage::Kind::kByLibrary) {
    page.bits = 8;
    page.samples = 4;
    page.planar = false;
  }
  DescribeRows(page);
  return page;
}

}  // namespace modules
