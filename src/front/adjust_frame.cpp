// The frame round the adjust functions of the pixel library: brings an image into one of the two
// working shapes, runs the function on raw rows, and brings the image back.
#include <cstring>
#include <utility>

#include <orvo/CLeadTools.h>
#include <orvo/COrvoCS.h>
#include <orvo/result_codes.h>

#include "front/imaging_result.h"
#include "handles/result_block.h"
#include "imaginglib/exposure.h"
#include "imaginglib/histogram.h"
#include "imaginglib/sharpness.h"
#include "imaginglib/utilities.h"
#include "imaginglib/working_image.h"

namespace {

constexpr std::uint8_t kMostLevel = 10;

// Low byte of biBitCount, nothing when the block cannot be locked or is malformed.
std::optional<std::uint8_t> DepthOf(DibHandle image) {
  const LockedImage locked(image, kLowByteOfDepth);
  if (!locked) return std::nullopt;
  return static_cast<std::uint8_t>(locked.layout().depth);
}

// One pixel under the header and palette of an 8-bit image; false when a block cannot be locked.
bool FillProbe(DibHandle probe, DibHandle image) {
  const LockedImage source(image, kLowByteOfDepth);
  void* const bytes = source ? GlobalLock(probe) : nullptr;
  if (bytes == nullptr) return false;
  BITMAPINFOHEADER header = orvo::DibHeaderOf(source.bytes());
  header.biWidth = header.biHeight = 1;
  std::memcpy(bytes, source.bytes(), source.layout().pixelOffset);
  std::memcpy(bytes, &header, sizeof header);
  GlobalUnlock(probe);
  return true;
}

// Asks the bridge whether the palette of an 8-bit image is gray. The bridge may give an image back
// under another handle, and the caller's handle must not change; so it is shown a single pixel of
// the same palette.
int TestGray(CLeadTools& tools, DibHandle image) {
  const auto onePixel = orvo::DibLayoutFor(1, 1, kGrayDepth);
  DibHandle probe = GlobalAlloc(orvo::kDibBlockFlags, onePixel->totalBytes);
  if (probe == nullptr) return ORVO_ERR_NO_MEMORY;
  int code = FillProbe(probe, image) ? ORVO_OK : ORVO_ERR_FAILURE;
  if (code == ORVO_OK && tools.LTIsGrayScaleBitmap(probe) == 0) code = ORVO_ERR_BAD_DEPTH;
  GlobalFree(probe);
  return code;
}

}  // namespace

// An image as the pixel function sees it. 16-bit and 32-bit images are worked on in a 24-bit copy,
// which is source and target at once.
struct COrvoCS::WorkingImage {
  WorkingImage() = default;
  ~WorkingImage() {
    unlock();
    if (copy != nullptr) GlobalFree(copy);
  }
  WorkingImage(const WorkingImage&) = delete;
  WorkingImage& operator=(const WorkingImage&) = delete;

  [[nodiscard]] bool lock(DibHandle from, DibHandle to) {
    source.emplace(from, kLowByteOfDepth);
    target.emplace(to, kLowByteOfDepth);
    return *source && target->bytes() != nullptr;
  }
  void unlock() {
    source.reset();
    target.reset();
  }

  DibHandle copy = nullptr;
  std::uint8_t incomingDepth = 0;
  std::uint8_t depth = 0;
  std::optional<LockedImage> source;
  std::optional<LockedImage> target;
};

// Leaves the image locked on success. On any other code no block is locked and none made here is
// left; the result handle is then for the caller to set.
int COrvoCS::PrepareBitmapForImagingLib(DibHandle source, DibHandle* result,
                                        WorkingImage& image) noexcept {
  if (leadTools == nullptr) return ORVO_ERR_FAILURE;
  std::optional<std::uint8_t> depth = DepthOf(source);
  if (!depth) return ORVO_ERR_FAILURE;
  image.incomingDepth = *depth;
  if (*depth == 16 || *depth == 32) {
    DibHandle converted = nullptr;
    leadTools->LTConvertToColorRes(source, &converted, kColorDepth);
    // A conversion that failed leaves no image, or the source; the depth test then refuses it.
    if (converted == nullptr || converted == source) return ORVO_ERR_BAD_DEPTH;
    image.copy = converted;
    depth = DepthOf(converted);
    if (!depth) return ORVO_ERR_FAILURE;
  }
  if (*depth == kGrayDepth) {
    const int code = TestGray(*leadTools, source);
    if (code != ORVO_OK) return code;
  }
  if (*depth != kGrayDepth && *depth != kColorDepth) return ORVO_ERR_BAD_DEPTH;
  image.depth = *depth;
  if (image.copy != nullptr) {
    return image.lock(image.copy, image.copy) ? ORVO_OK : ORVO_ERR_FAILURE;
  }

  ResultBlock block(source, result);
  if (!block.makeSameSize()) return ORVO_ERR_NO_MEMORY;
  if (!image.lock(source, *result)) {
    image.unlock();
    return block.takeBack(ORVO_ERR_FAILURE);
  }
  ImgCopy(image.target->bytes(), image.source->bytes(), image.source->layout().pixelOffset);
  return ORVO_OK;
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
  WorkingImage image;
  if (const int code = PrepareBitmapForImagingLib(source, result, image); code != ORVO_OK) {
    *result = source;
    return code;
  }
  const orvo::DibLayout layout = image.source->layout();
  const int imagingResult =
      function(image.source->pixels(), image.target->bytes() + layout.pixelOffset,
               static_cast<std::uint32_t>(layout.width), static_cast<std::uint32_t>(layout.height),
               image.depth, level);
  image.unlock();
  if (image.copy != nullptr) {
    leadTools->LTConvertToColorRes(image.copy, nullptr, image.incomingDepth);
    if (*result == source) {
      TakeImage(source, image.copy);
    } else {
      TakeHeader(image.copy, source);
      *result = std::exchange(image.copy, nullptr);
    }
  }
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
