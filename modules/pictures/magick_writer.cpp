// PCX, TGA, Sun raster, PICT and EPS by GraphicsMagick. EPS is written, not read: reading it takes
// an outside program.
#include <algorithm>
#include <array>

#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/magick_pixels.h"
#include "pictures/magick_session.h"

namespace modules {
namespace {

// How the formats are written, by the library's name.
struct Target {
  int format;
  const char* magick;
  bool holdsAlpha;
  bool holdsBits;  // has a form of 1 bit a pixel, in black and white
  CompressionType compression;
  int leastWidth = 1;
};
constexpr std::array kTargets{
    Target{kFormatPcx, "PCX", false, true, RLECompression},
    Target{kFormatTga, "TGA", true, false, RLECompression},
    Target{kFormatRas, "SUN", false, true, RLECompression},
    // Rows below 8 bytes, which this format keeps without runs, come out damaged.
    Target{kFormatPct, "PICT", false, false, UndefinedCompression, 8},
    Target{kFormatEps, "EPS3", false, true, ZipCompression},
};

const Target& TargetFor(int format, const Pixels& pixels) {
  constexpr int kMostSide = 0x7FFF;  // what the measures of all these formats hold
  const auto* const target = std::find_if(
      kTargets.begin(), kTargets.end(), [&](const Target& each) { return each.format == format; });
  Require(target != kTargets.end() && pixels.width >= target->leastWidth &&
              std::max(pixels.width, pixels.height) <= kMostSide,
          kFileFormatNotWritten);
  return *target;
}

}  // namespace

void SaveRare(const SaveRequest& request, const LockedDib& locked) {
  const Pixels& pixels = *locked;
  const Target& target = TargetFor(request.format, pixels);
  const MagickImageInfo info = NewMagickInfo(target.magick);
  const MagickImage image = NewMagickImage(*info);
  info->compression = target.compression;
  // Black and white stay 1 bit where such files are read everywhere; the library has to look.
  if (pixels.depth == 1 && target.holdsBits) info->type = OptimizeType;
  image->units = PixelsPerInchResolution;
  image->x_resolution = orvo::DotsPerInch(locked.header().biXPelsPerMeter);
  image->y_resolution = orvo::DotsPerInch(locked.header().biYPelsPerMeter);

  MagickProgress progress(MagickProgress::Order::kRowsFirst, request.report);
  CopyToMagick(pixels, target.holdsAlpha && HasAlpha(pixels), *image, progress);
  WriteFile(request.path, [&](std::FILE* file) { EncodeMagick(*info, *image, progress, file); });
}

}  // namespace modules
