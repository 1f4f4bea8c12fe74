// The entries of the toolkit's own algorithms.
//
// In place a COrvoCS method sees the source in the result handle; where the handle is passed by
// value it stays.
#include <orvo/CLeadTools.h>
#include <orvo/COrvoCS.h>
#include <orvo/instance.h>

#include "binding/file_types.h"
#include "methods/auto_trim.h"
#include "methods/descreen.h"
#include "methods/deskew.h"
#include "methods/regions.h"
#include "table/running_call.h"

using namespace orvo;

// --- Photographs ---------------------------------------------------------------------------------

int COrvoInstance::ConvertRGB(DibHandle source, DibHandle* result, const char* library) noexcept {
  const RunningCall call(leadTools, source, result);
  return orvoCS->CSConvertRGB(source, result, library);
}

int COrvoInstance::ConvertRGBInPlace(DibHandle source, const char* library) noexcept {
  const RunningCall call(leadTools, source, &source);
  return orvoCS->CSConvertRGB(source, &source, library);
}

int COrvoInstance::SharpnessAdjust(DibHandle source, DibHandle* result,
                                   std::uint8_t level) noexcept {
  const RunningCall call(leadTools, source, result);
  return orvoCS->CSSharpnessAdjust(source, result, level);
}

int COrvoInstance::SharpnessAdjustInPlace(DibHandle source, std::uint8_t level) noexcept {
  const RunningCall call(leadTools, source, &source);
  return orvoCS->CSSharpnessAdjust(source, &source, level);
}

int COrvoInstance::HistogramAdjust(DibHandle source, DibHandle* result,
                                   std::uint8_t level) noexcept {
  const RunningCall call(leadTools, source, result);
  return orvoCS->CSHistogramAdjust(source, result, level);
}

int COrvoInstance::HistogramAdjustInPlace(DibHandle source, std::uint8_t level) noexcept {
  const RunningCall call(leadTools, source, &source);
  return orvoCS->CSHistogramAdjust(source, &source, level);
}

int COrvoInstance::ExposureAdjust(DibHandle source, DibHandle* result,
                                  std::uint8_t level) noexcept {
  const RunningCall call(leadTools, source, result);
  return orvoCS->CSExposureAdjust(source, result, level);
}

int COrvoInstance::ExposureAdjustInPlace(DibHandle source, std::uint8_t level) noexcept {
  const RunningCall call(leadTools, source, &source);
  return orvoCS->CSExposureAdjust(source, &source, level);
}

int COrvoInstance::WhitenessAdjust(DibHandle source, DibHandle* result,
                                   std::uint32_t threshold) noexcept {
  const RunningCall call(leadTools, source, result);
  return orvoCS->CSWhitenessAdjust(source, result, threshold);
}

int COrvoInstance::WhitenessAdjustInPlace(DibHandle source, std::uint32_t threshold) noexcept {
  const RunningCall call(leadTools, source, &source);
  return orvoCS->CSWhitenessAdjust(source, &source, threshold);
}

int COrvoInstance::SearchRedEyeRegion(DibHandle source, std::uint32_t x, std::uint32_t y,
                                      std::uint32_t* foundX, std::uint32_t* foundY,
                                      std::uint32_t* foundRadius) noexcept {
  const RunningCall call(leadTools, source);
  return orvoCS->CSSearchRedEyeRegion(source, x, y, foundX, foundY, foundRadius);
}

int COrvoInstance::ReduceRedEye(DibHandle source, DibHandle* result, std::uint32_t x,
                                std::uint32_t y, std::uint32_t radius) noexcept {
  const RunningCall call(leadTools, source, result);
  return orvoCS->CSReduceRedEye(source, result, x, y, radius);
}

int COrvoInstance::ReduceRedEyeInPlace(DibHandle source, std::uint32_t x, std::uint32_t y,
                                       std::uint32_t radius) noexcept {
  const RunningCall call(leadTools, source, &source);
  return orvoCS->CSReduceRedEye(source, &source, x, y, radius);
}

int COrvoInstance::AutoRedEyeInPlace(DibHandle source, int* found) noexcept {
  const RunningCall call(leadTools, source, &source);
  return orvoCS->CSAutoRedEye(source, &source, found);
}

int COrvoInstance::AutoRedEye(DibHandle source, DibHandle* result, int* found) noexcept {
  const RunningCall call(leadTools, source, result);
  if (result == nullptr || found == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const int code = orvoCS->CSAutoRedEye(source, result, found);
  if (*found != 0) return code;
  // Nothing was corrected: the caller gets no second image of the same picture.
  if (*result != nullptr && *result != source) GlobalFree(*result);
  *result = nullptr;
  return code;
}

// --- Scans ---------------------------------------------------------------------------------------

// The second step goes through the table.
int COrvoInstance::Descreen(DibHandle source, DibHandle* result, std::uint32_t level,
                            std::uint32_t sharpenAmount, StatusCallback callback) noexcept {
  const RunningCall call(leadTools, source, result);
  const int code = orvoCS->CSDescreen(source, result, level, callback);
  if (code != ORVO_OK || sharpenAmount == 0) return code;
  return LeadSharpnessAdjust(*result, result, SharpenChange(sharpenAmount), callback);
}

int COrvoInstance::DescreenInPlace(DibHandle source, std::uint32_t level,
                                   std::uint32_t sharpenAmount, StatusCallback callback) noexcept {
  const RunningCall call(leadTools, source, &source);
  int code = orvoCS->CSDescreen(source, &source, level, callback);
  if (code != ORVO_OK || sharpenAmount == 0) return code;
  // The handle came by value and has to stay, so the sharpened image moves into its block.
  DibHandle sharpened = nullptr;
  code = LeadSharpnessAdjust(source, &sharpened, SharpenChange(sharpenAmount), callback);
  if (code == ORVO_OK) MoveImage(source, sharpened);
  return code;
}

int COrvoInstance::GetAutoTrimRect(DibHandle source, std::uint8_t threshold, RECT* rect) noexcept {
  const RunningCall call(leadTools, source);
  return FindAutoTrimRect(*orvoCS, source, threshold, rect);
}

int COrvoInstance::AutoTrim(DibHandle source, DibHandle* result, std::uint8_t threshold) noexcept {
  const RunningCall call(leadTools, source, result);
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  RECT rect;
  const int code = FindAutoTrimRect(*orvoCS, source, threshold, &rect);
  return code == ORVO_OK ? leadTools->LTTrim(source, result, &rect) : code;
}

int COrvoInstance::AutoTrimInPlace(DibHandle* image, std::uint8_t threshold) noexcept {
  if (image == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const RunningCall call(leadTools, *image, image);
  RECT rect;
  const int code = FindAutoTrimRect(*orvoCS, *image, threshold, &rect);
  return code == ORVO_OK ? leadTools->LTTrim(*image, nullptr, &rect) : code;
}

int COrvoInstance::FindRegions(DibHandle source, RegionRecord** list, int* count, int reach,
                               int level) noexcept {
  const RunningCall call(leadTools, source);
  if (list == nullptr || count == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  orvo::FindRegions(source, reach, level, *list, *count);
  return ORVO_OK;
}

int COrvoInstance::AutoDeskew(DibHandle source, DibHandle* result, int* angle,
                              StatusCallback callback) noexcept {
  const RunningCall call(leadTools, source, result);
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const int turned = orvo::AutoDeskew(*leadTools, source, result, callback);
  if (angle != nullptr) *angle = turned;
  return ORVO_OK;
}

// --- Names ---------------------------------------------------------------------------------------

int COrvoInstance::IsImageFileName(const char* path) noexcept {
  return orvo::IsImageFileName(path) ? 1 : 0;
}

int COrvoInstance::GetFileExtensions(int* count, char* buffer, std::uint32_t* size) noexcept {
  return CopyLoadableExtensions(count, buffer, size);
}
