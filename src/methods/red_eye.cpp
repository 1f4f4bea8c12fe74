// The frame round the red-eye functions: 24-bit images, and 16-bit and 32-bit ones by way of a
// working copy. Images of 8 bits are refused, gray ones too.
#include <orvo/COrvoCS.h>
#include <orvo/result_codes.h>

#include "imaging/redeye/auto_red_eye.h"
#include "imaging/redeye/reduce.h"
#include "imaging/redeye/search.h"
#include "imaging/results.h"
#include "imaging/working_image.h"
#include "methods/frame_image.h"
#include "methods/imaging_result.h"

using namespace orvo;

namespace {

int TakeColorImage(FrameImage& image, CLeadTools* tools, DibHandle source) {
  const int code = image.take(tools, source);
  return code == ORVO_OK && image.depth() != kColorDepth ? static_cast<int>(ORVO_ERR_BAD_DEPTH)
                                                         : code;
}

// function(image) gives the result of the pixel function.
template <class Function>
int RunRedEye(CLeadTools* tools, DibHandle source, DibHandle* result, Function function) {
  FrameImage image;
  int code = TakeColorImage(image, tools, source);
  if (code == ORVO_OK) code = image.open(source, result);
  if (code != ORVO_OK) {
    // A working copy that cannot be locked leaves the result handle as it was.
    if (!image.hasCopy() || code != ORVO_ERR_FAILURE) *result = source;
    return code;
  }
  const int imagingResult = function(image);
  image.finish(tools, source, result);
  return MapImagingLibResult(imagingResult);
}

}  // namespace

int COrvoCS::CSSearchRedEyeRegion(DibHandle source, std::uint32_t x, std::uint32_t y,
                                  std::uint32_t* foundX, std::uint32_t* foundY,
                                  std::uint32_t* foundRadius) noexcept {
  if (source == nullptr) return ORVO_ERR_NULL_IMAGE;
  if (foundX == nullptr || foundY == nullptr || foundRadius == nullptr) {
    return ORVO_ERR_BAD_ARGUMENT;
  }
  FrameImage image;
  int code = TakeColorImage(image, leadTools, source);
  if (code == ORVO_OK) code = image.open(source);
  if (code != ORVO_OK) return code;
  PupilCircle found{};
  const int imagingResult =
      ImgSearchRedEyeRegion(image.source(), image.width(), image.height(), x, y, &found);
  if (imagingResult != kImgNoMemory) {
    *foundX = found.x;
    *foundY = found.y;
    *foundRadius = found.radius;
  }
  return MapImagingLibResult(imagingResult);
}

int COrvoCS::CSReduceRedEye(DibHandle source, DibHandle* result, std::uint32_t x, std::uint32_t y,
                            std::uint32_t radius) noexcept {
  if (source == nullptr) return ORVO_ERR_NULL_IMAGE;
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  return RunRedEye(leadTools, source, result, [&](const FrameImage& image) {
    return ImgReduceRedEye(image.source(), image.target(), image.width(), image.height(),
                           {x, y, radius});
  });
}

int COrvoCS::CSAutoRedEye(DibHandle source, DibHandle* result, int* found) noexcept {
  if (source == nullptr) return ORVO_ERR_NULL_IMAGE;
  if (result == nullptr || found == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  return RunRedEye(leadTools, source, result, [&](const FrameImage& image) {
    const int imagingResult =
        ImgAutoRedEye(image.source(), image.target(), image.width(), image.height());
    *found = imagingResult == kImgDone ? 1 : 0;
    return imagingResult;
  });
}
