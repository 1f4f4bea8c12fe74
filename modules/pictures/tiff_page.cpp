#include "pictures/tiff_page.h"

#include <array>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace modules {
namespace {

int OnError(TIFF* /*tiff*/, void* faults, const char* /*module*/, const char* /*format*/,
            va_list /*arguments*/) {
  ++*static_cast<int*>(faults);
  return 1;  // dealt with: nothing is printed
}

int OnWarning(TIFF* /*tiff*/, void* lostPalette, const char* /*module*/, const char* format,
              va_list arguments) {
  std::array<char, 256> message{};
  if (lostPalette != nullptr && std::strstr(format, "IO error") != nullptr) {
    (void)std::vsnprintf(message.data(), message.size(), format, arguments);
    if (std::strstr(message.data(), "ColorMap") != nullptr) *static_cast<bool*>(lostPalette) = true;
  }
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

// Finds the opacity among the samples behind so many colours. A single one of no stated use is
// opacity where other programs have it so: with tones, and with red, green and blue.
void FindAlpha(TIFF* tiff, std::size_t colors, bool guesses, TiffPage& page) {
  std::uint16_t count = 0;
  std::uint16_t* uses = nullptr;
  (void)TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &uses);
  const auto samples = static_cast<std::size_t>(page.samples);
  for (std::size_t i = 0; i < count && colors + i < samples; ++i) {
    if (uses[i] == EXTRASAMPLE_UNSPECIFIED) continue;
    page.alphaAt = colors + i;
    page.premultiplied = uses[i] == EXTRASAMPLE_ASSOCALPHA;
    return;
  }
  if (guesses && samples == colors + 1) page.alphaAt = colors;
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
  const std::uint16_t photometric = PhotometricOf(tiff, page);
  switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
      page.whiteIsZero = photometric == PHOTOMETRIC_MINISWHITE;
      if (page.samples == 1 && page.bits < 8 && IsWholeByteOrLess(page.bits)) {
        return Kind::kAsStored;
      }
      FindAlpha(tiff, 1, true, page);
      return Kind::kGray;
    case PHOTOMETRIC_PALETTE:
      FindAlpha(tiff, 1, false, page);
      page.hasPalette = IsWholeByteOrLess(page.bits) && (page.samples == 1 || page.alphaAt != 0);
      if (!page.hasPalette) return Kind::kByLibrary;
      return page.samples == 1 ? Kind::kAsStored : Kind::kIndex;
    case PHOTOMETRIC_YCBCR:
      // The JPEG decoder inside the library knows the way to RGB.
      if (page.compression != COMPRESSION_JPEG || page.planar || page.samples != 3 ||
          TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 0) {
        return Kind::kByLibrary;
      }
      return Kind::kRgb;
    case PHOTOMETRIC_RGB:
      if (page.samples < 3) return Kind::kByLibrary;
      FindAlpha(tiff, 3, true, page);
      return Kind::kRgb;
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
      if (page.samples < 3 || (page.bits != 8 && page.bits != 16)) return Kind::kByLibrary;
      page.hasIccLab = photometric == PHOTOMETRIC_ICCLAB;
      FindAlpha(tiff, 3, false, page);
      return Kind::kLab;
    case PHOTOMETRIC_SEPARATED:
      if (page.samples < 4 || Tag16(tiff, TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK) {
        return Kind::kByLibrary;
      }
      FindAlpha(tiff, 4, false, page);
      return Kind::kCmyk;
    default:
      return Kind::kByLibrary;
  }
}

// Whether the samples are of a form that is read, and what of their range is black and white.
bool TakeFormat(TIFF* tiff, TiffPage& page) {
  page.format = Tag16(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  if (page.format == SAMPLEFORMAT_VOID) page.format = SAMPLEFORMAT_UINT;
  const int bits = page.bits;
  if (page.kind == TiffPage::Kind::kLab) page.format = SAMPLEFORMAT_UINT;  // as the kind has it
  if (page.format == SAMPLEFORMAT_UINT && bits >= 1 && bits <= 16) return true;
  const bool isInteger = page.format == SAMPLEFORMAT_UINT || page.format == SAMPLEFORMAT_INT;
  const bool isKnown =
      isInteger ? bits == 8 || bits == 16 || bits == 32
                : page.format == SAMPLEFORMAT_IEEEFP && (bits == 16 || bits == 32 || bits == 64);
  if (!isKnown || page.kind == TiffPage::Kind::kAsStored || page.kind == TiffPage::Kind::kIndex) {
    return false;
  }
  if (isInteger) {
    page.high = std::ldexp(1.0, bits) - 1;
    if (page.format == SAMPLEFORMAT_INT) {
      page.low = -std::ldexp(1.0, bits - 1);
      page.high += page.low;
    }
  }
  double low = page.low;
  double high = page.high;
  (void)TIFFGetField(tiff, TIFFTAG_SMINSAMPLEVALUE, &low);
  (void)TIFFGetField(tiff, TIFFTAG_SMAXSAMPLEVALUE, &high);
  if (std::isfinite(low) && std::isfinite(high) && low < high) {
    page.low = low;
    page.high = high;
  }
  return true;
}

// What the rows become.
void DescribeRows(TiffPage& page) {
  using Kind = TiffPage::Kind;
  Picture& picture = page.picture;
  picture.isGray = page.kind == Kind::kGray;
  picture.hasAlpha = page.alphaAt != 0;
  if (page.kind == Kind::kAsStored) {
    picture.bits = page.bits;
    picture.reversed = page.whiteIsZero;
  } else {
    picture.samples = picture.hasAlpha ? 4 : picture.isGray ? 1 : 3;
    if (page.bits > picture.bits) picture.narrowedFrom = page.bits;
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

TiffHandle OpenTiffFile(const char* path, const char* mode, int& faults, bool* lostPalette) {
  constexpr tmsize_t kMostAllocation = tmsize_t{1} << 30;
  TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
  if (options == nullptr) return nullptr;
  TIFFOpenOptionsSetMaxSingleMemAlloc(options, kMostAllocation);
  TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, &faults);
  TIFFOpenOptionsSetWarningHandlerExtR(options, OnWarning, lostPalette);
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
  if (page.kind == TiffPage::Kind::kByLibrary) {
    page.bits = 8;
    page.samples = 4;
    page.alphaAt = 0;
    page.planar = false;
  } else {
    Require(page.samples >= 1 && TakeFormat(tiff, page), kModuleDepthNotSupported);
  }
  DescribeRows(page);
  return page;
}

}  // namespace modules
