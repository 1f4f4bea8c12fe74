// The frame round the adjust functions of the pixel library: brings an image into one of the two
// working shapes, runs the function on raw rows, and brings the image back.
#include <cstring>

#include <orvo/CLeadTools.h>
#include <orvo/COrvoCS.h>
#include <orvo/result_codes.h>

#include "imaging/adjust/exposure.h"
#include "imaging/adjust/histogram.h"
#include "imaging/adjust/sharpness.h"
#include "imaging/working_image.h"
#include "methods/frame_image.h"
#include "methods/imaging_result.h"

using namespace orvo;

namespace {

constexpr std::uint8_t kMostLevel = 10;

// One pixel under the header and palette of an 8-bit image; false when a block cannot be locked.
bool FillProbe(DibHandle probe, DibHandle image) {
  const LockedImage source(image, kLowByteOfDepth);
  const BlockLock target(probe);
  if (!source || !target) return false;
  BITMAPINFOHEADER header = source.header();
  header.biWidth = header.biHeight = 1;
  std::memcpy(target.bytes(), source.bytes(), source.layout().pixelOffset);
  std::memcpy(target.bytes(), &header, sizeof header);
  return true;
}

// Asks the binding whether the palette of an 8-bit image is gray. The binding may give an image
// back under another handle, and the caller's handle must not change; so it is shown a single pixel
// of the same palette.
int TestGray(CLeadTools& tools, DibHandle image) {
  const auto onePixel = DibLayoutFor(1, 1, kGrayDepth);
  OwnedDib probe(GlobalAlloc(kDibBlockFlags, onePixel->totalBytes));
  if (!probe) return ORVO_ERR_NO_MEMORY;
  if (!FillProbe(probe.get(), image)) return ORVO_ERR_FAILURE;
  return tools.LTIsGrayScaleBitmap(*probe.address()) != 0 ? ORVO_OK : ORVO_ERR_BAD_DEPTH;
}

}  // namespace

// On any code but ORVO_OK the result handle is for the caller to set.
int COrvoCS::PrepareBitmapForImagingLib(DibHandle source, DibHandle* result,
                                        FrameImage& image) noexcept {
  if (leadTools == nullptr) return ORVO_ERR_FAILURE;
  if (const int code = image.take(leadTools, source); code != ORVO_OK) return code;
  if (image.depth() == kGrayDepth) {
    if (const int code = TestGray(*leadTools, source); code != ORVO_OK) return code;
  } else if (image.depth() != kColorDepth) {
    return ORVO_ERR_BAD_DEPTH;
  }
  return image.open(source, result);
}

int COrvoCS::RunAdjust(DibHandle source, DibHandle* result, std::uint8_t level,
                       AdjustFunction function) noexcept {
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  if (level > kMostLevel) {
    *result = source;
    return ORVO_ERR_OUT_OF_RANGE;
  }
  if (source == nullptr) {
    *result = nullptr;
    return ORVO_ERR_NULL_IMAGE;
  }
  FrameImage image;
  if (const int code = PrepareBitmapForImagingLib(source, result, image); code != ORVO_OK) {
    *result = source;
    return code;
  }
  const int imagingResult =
      function(image.source(), image.target(), image.width(), image.height(), image.depth(), level);
  image.finish(leadTools, source, result);
  return MapImagingLibResult(imagingResult);
}

int COrvoCS::CSSharpnessAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept {
  return RunAdjust(source, result, level, ImgSharpnessAdjust);
}

int COrvoCS::CSHistogramAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept {
  return RunAdjust(source, result, level, ImgHistogramAdjust);
}

int COrvoCS::CSExposureAdjust(DibHandle source, DibHandle* result, std::uint8_t level) noexcept {
  return RunAdjust(source, result, level, ImgExposureAdjust);
}
