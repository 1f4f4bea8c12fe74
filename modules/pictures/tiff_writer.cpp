#include "pictures/tiff_writer.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <vector>

#include "common/color.h"
#include "common/color_rows.h"
#include "pictures/codecs.h"

namespace modules {
namespace {

constexpr std::uint32_t kStripBytes = 1U << 17;
// JPEG codes blocks of so many rows.
constexpr std::uint32_t kBlockRows = 8;

// What the file says about its samples.
struct RowForm {
  int bits;
  int samples;
  std::uint16_t photometric;
  std::uint16_t compression;
  bool flips;  // rows are written with all bits turned round
  int quality;
  std::uint32_t rowsPerStrip;
};

std::uint16_t PhotometricOf(const Pixels& image) {
  if (image.palette == nullptr) return PHOTOMETRIC_RGB;
  if (HasGrayRamp(image)) return PHOTOMETRIC_MINISBLACK;
  const bool isInverse = image.depth == 1 && HasGrayRamp(image, true);
  return isInverse ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_PALETTE;
}

bool IsBlackAndWhite(const Pixels& image) {
  return image.depth == 1 && PhotometricOf(image) != PHOTOMETRIC_PALETTE;
}

RowForm FormFor(const Pixels& image, const TiffCoding& coding) {
  constexpr int kMostSampleBits = 8;
  RowForm form{};
  form.bits = std::min(image.depth, kMostSampleBits);
  form.samples = image.depth <= 8 ? 1 : HasAlpha(image) ? 4 : 3;
  form.photometric = PhotometricOf(image);
  const std::size_t rowBytes =
      (static_cast<std::size_t>(image.width) * static_cast<std::size_t>(form.bits * form.samples) +
       7) /
      8;
  form.rowsPerStrip = static_cast<std::uint32_t>(
      std::clamp<std::size_t>(kStripBytes / rowBytes, 1, static_cast<std::size_t>(image.height)));
  form.compression = coding.compression;
  const bool fax = coding.mayFax && form.compression != COMPRESSION_NONE && IsBlackAndWhite(image);
  if (fax || form.compression == COMPRESSION_CCITTFAX4) {
    // The fax code expects white paper as 0, and readers of it one strip.
    form.compression = COMPRESSION_CCITTFAX4;
    form.flips = form.photometric == PHOTOMETRIC_MINISBLACK;
    form.photometric = PHOTOMETRIC_MINISWHITE;
    form.rowsPerStrip = static_cast<std::uint32_t>(image.height);
  } else if (form.compression == COMPRESSION_JPEG) {
    form.quality = coding.quality;
    form.rowsPerStrip = (form.rowsPerStrip + kBlockRows - 1) / kBlockRows * kBlockRows;
    if (form.samples == 3) form.photometric = PHOTOMETRIC_YCBCR;
  }
  Require(Takes(form.compression, image), kFileFormatNotWritten);
  return form;
}

void SetPalette(TIFF* tiff, const Pixels& image) {
  constexpr std::uint16_t kByteTo16 = 257;
  std::array<std::array<std::uint16_t, 256>, 3> tones{};
  for (int i = 0; i < image.paletteSize(); ++i) {
    const auto entry = static_cast<std::size_t>(i);
    tones[0][entry] = static_cast<std::uint16_t>(image.palette[i].rgbRed * kByteTo16);
    tones[1][entry] = static_cast<std::uint16_t>(image.palette[i].rgbGreen * kByteTo16);
    tones[2][entry] = static_cast<std::uint16_t>(image.palette[i].rgbBlue * kByteTo16);
  }
  Require(
      TIFFSetField(tiff, TIFFTAG_COLORMAP, tones[0].data(), tones[1].data(), tones[2].data()) != 0,
      kFileFormatNotWritten);
}

// In whole dots per inch, as people count, where that gives the same pixels per metre again; else
// in dots per centimetre, which keep them exactly.
void SetResolution(TIFF* tiff, const BITMAPINFOHEADER& header) {
  constexpr double kCentimetresPerMetre = 100;
  const auto isWhole = [](std::int32_t metre) {
    return orvo::PixelsPerMetre(orvo::DotsPerInch(metre)) == metre;
  };
  const std::int32_t x = header.biXPelsPerMeter;
  const std::int32_t y = header.biYPelsPerMeter;
  if (x <= 0 || y <= 0) {
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);
    return;
  }
  const bool inches = isWhole(x) && isWhole(y);
  TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, inches ? RESUNIT_INCH : RESUNIT_CENTIMETER);
  TIFFSetField(tiff, TIFFTAG_XRESOLUTION, inches ? orvo::DotsPerInch(x) : x / kCentimetresPerMetre);
  TIFFSetField(tiff, TIFFTAG_YRESOLUTION, inches ? orvo::DotsPerInch(y) : y / kCentimetresPerMetre);
}

void SetTags(TIFF* tiff, const LockedDib& image, const RowForm& form) {
  const auto set = [=](std::uint32_t tag, auto... value) {
    Require(TIFFSetField(tiff, tag, value...) != 0, kFileFormatNotWritten);
  };
  set(TIFFTAG_IMAGEWIDTH, image->width);
  set(TIFFTAG_IMAGELENGTH, image->height);
  set(TIFFTAG_BITSPERSAMPLE, form.bits);
  set(TIFFTAG_SAMPLESPERPIXEL, form.samples);
  set(TIFFTAG_PHOTOMETRIC, form.photometric);
  set(TIFFTAG_COMPRESSION, form.compression);
  set(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  set(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  set(TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip);
  constexpr std::uint16_t kAlpha = EXTRASAMPLE_UNASSALPHA;
  if (form.samples == 4) set(TIFFTAG_EXTRASAMPLES, 1, &kAlpha);
  const bool areTones = form.bits == 8 && form.photometric != PHOTOMETRIC_PALETTE;
  if (form.photometric == PHOTOMETRIC_PALETTE) SetPalette(tiff, *image);
  const bool takesDifferences =
      form.compression == COMPRESSION_LZW || form.compression == COMPRESSION_ADOBE_DEFLATE;
  if (takesDifferences && areTones) {
    set(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
  }
  if (form.compression == COMPRESSION_JPEG) {
    set(TIFFTAG_JPEGQUALITY, form.quality);
    if (form.samples == 3) {
      set(TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
      set(TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    }
  }
  SetResolution(tiff, image.header());
}

// Pixels of `step` bytes, blue first, as `samples` bytes of them, red first.
template <int step, int samples>
void TurnRound(const std::uint8_t* from, int pixels, std::uint8_t* out) {
  for (int x = 0; x < pixels; ++x, from += step, out += samples) {
    out[0] = from[2];
    out[1] = from[1];
    out[2] = from[0];
    if constexpr (samples == 4) out[3] = from[3];
  }
}

// Fills out with a row as the file has it. The library may change it, so it is never the image's.
void MakeRow(const Pixels& image, const RowForm& form, int y, std::uint8_t* out,
             std::vector<Color>& colors) {
  const std::uint8_t* const row = image.row(y);
  switch (image.depth) {
    case 16:
      colors.resize(static_cast<std::size_t>(image.width));
      ReadColors(image, y, colors.data());
      return TurnRound<3, 3>(reinterpret_cast<const std::uint8_t*>(colors.data()), image.width,
                             out);
    case 24:
      return TurnRound<3, 3>(row, image.width, out);
    case 32:
      return form.samples == 4 ? TurnRound<4, 4>(row, image.width, out)
                               : TurnRound<4, 3>(row, image.width, out);
    default:
      break;
  }
  const auto flip = static_cast<std::uint8_t>(form.flips ? 255 : 0);
  std::transform(row, row + image.rowBytes(), out,
                 [=](std::uint8_t byte) { return static_cast<std::uint8_t>(byte ^ flip); });
}

// Whether the chain of pages can be followed to its end, so that one more can be hung there.
void CheckAppendable(const char* path) {
  int faults = 0;
  const TiffHandle tiff = OpenTiffFile(path, "rm", faults);
  Require(tiff, kModuleBadFile);
  (void)FollowPages(tiff.get());
  // A chain that leads back to an earlier page never reaches its end, which the library would seek.
  Require(TIFFLastDirectory(tiff.get()) != 0 && faults == 0, kFileFormatDamaged);
}

const char* ModeOf(TiffWriter::Form form) {
  switch (form) {
    case TiffWriter::Form::kPlain:
      return "w";
    case TiffWriter::Form::kBig:
      return "w8";
    default:
      return "a";
  }
}

}  // namespace

TiffWriter::TiffWriter(const char* path, Form form)
    : tiff_(OpenTiffFile(path, ModeOf(form), faults_)) {
  Require(tiff_, kModuleFileNotOpened);
}

// The library would write what is left of a page, and crashes when memory ran out for its coding.
TiffWriter::~TiffWriter() {
  if (tiff_) (void)TIFFSetMode(tiff_.get(), O_RDONLY);
}

bool Takes(std::uint16_t compression, const Pixels& image) {
  if (compression == COMPRESSION_CCITTFAX4) return IsBlackAndWhite(image);
  if (compression != COMPRESSION_JPEG) return true;
  return image.depth > 8 ? !HasAlpha(image) : image.depth == 8 && HasGrayRamp(image);
}

void TiffWriter::add(const LockedDib& image, const TiffCoding& coding, Report report,
                     const MoreTags& moreTags) {
  TIFF* const tiff = tiff_.get();
  const RowForm form = FormFor(*image, coding);
  SetTags(tiff, image, form);
  if (moreTags) moreTags(tiff);
  std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(tiff)));
  std::vector<Color> colors;
  Progress progress(static_cast<std::uint64_t>(image->height), report);
  for (int line = 0; line < image->height; ++line) {
    MakeRow(*image, form, image->height - 1 - line, row.data(), colors);
    Require(TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(line), 0) == 1,
            kModuleWriteFailed);
    Require(progress.report(static_cast<std::uint64_t>(line) + 1), kModuleAborted);
  }
  Require(TIFFWriteDirectory(tiff) != 0, kModuleWriteFailed);
}

void TiffWriter::finish() {
  tiff_.reset();
  Require(faults_ == 0, kModuleWriteFailed);
}

void SaveTiff(const SaveRequest& request, const LockedDib& image) {
  // Beyond this the offsets of the usual form, 32 bits, may not reach.
  constexpr std::size_t kMostPlainBytes = std::size_t{7} << 29;
  const std::size_t bytes = image->stride * static_cast<std::size_t>(image->height);
  if (request.appendPage) CheckAppendable(request.path);
  TiffWriter writer(request.path, request.appendPage        ? TiffWriter::Form::kAppended
                                  : bytes > kMostPlainBytes ? TiffWriter::Form::kBig
                                                            : TiffWriter::Form::kPlain);
  const bool compresses = request.format == kFormatTiffCompressed;
  const std::uint16_t compression = compresses ? COMPRESSION_LZW : COMPRESSION_NONE;
  writer.add(image, {.compression = compression}, request.report);
  writer.finish();
}

}  // namespace modules
