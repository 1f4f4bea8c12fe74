#include "pictures/tiff_page.h"

#include <climits>

namespace modules {
namespace {

int OnError(TIFF* /*tiff*/, void* faults, const char* /*module*/, const char* /*format*/,
            va_list /*arguments*/) {
  if (faults != nullptr) ++*static_cast<int*>(faults);
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

void ReadResolution(TIFF* tiff, FileImage& image) {
  const std::uint16_t unit = Tag16(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  if (unit != RESUNIT_INCH && unit != RESUNIT_CENTIMETER) return;
  const double metres = unit == RESUNIT_INCH ? orvo::kMetresPerInch : 0.01;
  float x = 0;
  float y = 0;
  if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) != 0) {
    image.xPixelsPerMetre = PixelsPerMetreOf(static_cast<double>(x), metres);
  }
  if (TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y) != 0) {
    image.yPixelsPerMetre = PixelsPerMetreOf(static_cast<double>(y), metres);
  }
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
      if (page.samples == 1 && page.bits < 8 && IsWholeByteOrLess(page.bits)) return Kind::kIndexes;
      return page.samples >= 2 && hasAlpha ? Kind::kGrayAlpha : Kind::kGray;
    case PHOTOMETRIC_PALETTE:
      if (page.samples != 1 || !IsWholeByteOrLess(page.bits)) return Kind::kByLibrary;
      page.hasPalette = true;
      return Kind::kIndexes;
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

int DepthOf(const TiffPage& page) {
  switch (page.kind) {
    case TiffPage::Kind::kIndexes:
      return page.bits == 2 ? 4 : page.bits;
    case TiffPage::Kind::kGray:
      return 8;
    case TiffPage::Kind::kGrayAlpha:
    case TiffPage::Kind::kRgba:
      return 32;
    default:
      return 24;
  }
}

// A fax row that repeats the one above takes a bit, however wide it is.
std::uint64_t MostRatioOf(const TiffPage& page) {
  constexpr std::uint64_t kMostDictionaryRatio = 4096;
  return IsFax(page.compression) ? static_cast<std::uint64_t>(page.image.width)
                                 : kMostDictionaryRatio;
}

}  // namespace

TiffHandle OpenTiff(const char* path, const char* mode, int* faults) {
  constexpr tmsize_t kMostAllocation = tmsize_t{1} << 30;
  TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
  if (options == nullptr) return nullptr;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMostAllocation);
  TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, faults);
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

int ReadTiffPage(TIFF* tiff, TiffPage& page) {
  constexpr int kMostBits = 16;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  if (TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width) == 0 ||
      TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height) == 0 || width == 0 || height == 0 ||
      width > INT_MAX || height > INT_MAX) {
    return kFileFormatDamaged;
  }
  page.image.width = static_cast<int>(width);
  page.image.height = static_cast<int>(height);
  page.compression = Tag16(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  if (TIFFIsCODECConfigured(page.compression) == 0) return kFileFormatNotRead;
  page.bits = Tag16(tiff, TIFFTAG_BITSPERSAMPLE, 1);
  page.samples = Tag16(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
  page.planar = page.samples > 1 &&
                Tag16(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
  page.mostRatio = MostRatioOf(page);
  page.image.orientation = OrientationOf(Tag16(tiff, TIFFTAG_ORIENTATION, kUpright));
  ReadResolution(tiff, page.image);

  page.kind = KindOf(tiff, page);
  const std::uint16_t format = Tag16(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  const bool isPlainNumber = format == SAMPLEFORMAT_UINT || format == SAMPLEFORMAT_VOID;
  if (page.kind != TiffPage::Kind::kByLibrary &&
      (page.bits < 1 || page.bits > kMostBits || page.samples < 1 || !isPlainNumber)) {
    return kModuleDepthNotSupported;
  }
  page.image.depth = DepthOf(page);
  return kModuleSuccess;
}

}  // namespace modules
