// The entries that the imaging modules carry out: each forwards to a method of the binding and adds
// the handle plumbing of its form.
#include <cstring>

#include <orvo/CLeadTools.h>
#include <orvo/instance.h>

#include "platform/version.h"
#include "table/running_call.h"

using namespace orvo;

namespace {

// A binding method to a new handle: it gets its own copy of the source's handle value.
template <class... Parameters, class... Arguments>
int ToNewHandle(int (CLeadTools::*method)(DibHandle&, DibHandle*, Parameters...) noexcept,
                CLeadTools& tools, DibHandle source, DibHandle* result, Arguments... arguments) {
  const RunningCall call(&tools, source, result);
  if (result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  return (tools.*method)(source, result, arguments...);
}

// A binding method in place: the caller's variable receives the handle that comes back.
template <class... Parameters, class... Arguments>
int InPlace(int (CLeadTools::*method)(DibHandle&, DibHandle*, Parameters...) noexcept,
            CLeadTools& tools, DibHandle* image, Arguments... arguments) {
  if (image == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const RunningCall call(&tools, *image, image);
  return (tools.*method)(*image, nullptr, arguments...);
}

// The table's rotations grow the image to hold the turned one.
constexpr std::uint32_t kTableRotationFlags = 1;

}  // namespace

// --- Everyday bitmap work ------------------------------------------------------------------------

int COrvoInstance::GetVersion(ORVOVERSIONINFO* info) noexcept {
  const RunningCall call(leadTools);
  if (info == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  std::memcpy(info->version, ORVO_VERSION_SHORT, sizeof ORVO_VERSION_SHORT);
  return leadTools->LTGetVersionInfo(info->vendorInfo);
}

int COrvoInstance::ChangeResolution(DibHandle source, DibHandle* result, int horizontal,
                                    int vertical, StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTChangeResolution, *leadTools, source, result, horizontal,
                     vertical, callback);
}

int COrvoInstance::ChangeResolutionInPlace(DibHandle* image, int horizontal, int vertical,
                                           StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTChangeResolution, *leadTools, image, horizontal, vertical,
                 callback);
}

int COrvoInstance::ContrastAdjust(DibHandle source, DibHandle* result, int change,
                                  StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTContrastAdjust, *leadTools, source, result, change, callback);
}

int COrvoInstance::ContrastAdjustInPlace(DibHandle* image, int change,
                                         StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTContrastAdjust, *leadTools, image, change, callback);
}

int COrvoInstance::ConvertToColorRes(DibHandle source, DibHandle* result, int bits) noexcept {
  return ToNewHandle(&CLeadTools::LTConvertToColorRes, *leadTools, source, result, bits);
}

int COrvoInstance::ConvertToColorResInPlace(DibHandle* image, int bits) noexcept {
  return InPlace(&CLeadTools::LTConvertToColorRes, *leadTools, image, bits);
}

int COrvoInstance::ConvertToGrayScaleRes(DibHandle source, DibHandle* result,
                                         StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTConvertToGrayScaleRes, *leadTools, source, result, callback);
}

int COrvoInstance::ConvertToGrayScaleResInPlace(DibHandle* image,
                                                StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTConvertToGrayScaleRes, *leadTools, image, callback);
}

int COrvoInstance::GammaAdjust(DibHandle source, DibHandle* result, unsigned gamma,
                               StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTGammaAdjust, *leadTools, source, result, gamma, callback);
}

int COrvoInstance::GammaAdjustInPlace(DibHandle* image, unsigned gamma,
                                      StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTGammaAdjust, *leadTools, image, gamma, callback);
}

int COrvoInstance::HueAdjust(DibHandle source, DibHandle* result, int change,
                             StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTHueAdjust, *leadTools, source, result, change, callback);
}

int COrvoInstance::HueAdjustInPlace(DibHandle* image, int change,
                                    StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTHueAdjust, *leadTools, image, change, callback);
}

int COrvoInstance::IntensityAdjust(DibHandle source, DibHandle* result, int change,
                                   StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTIntensityAdjust, *leadTools, source, result, change, callback);
}

int COrvoInstance::IntensityAdjustInPlace(DibHandle* image, int change,
                                          StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTIntensityAdjust, *leadTools, image, change, callback);
}

int COrvoInstance::Invert(DibHandle source, DibHandle* result, StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTInvert, *leadTools, source, result, callback);
}

int COrvoInstance::InvertInPlace(DibHandle* image, StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTInvert, *leadTools, image, callback);
}

int COrvoInstance::Rotate(DibHandle source, DibHandle* result, int angle,
                          StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTRotate, *leadTools, source, result, angle, kTableRotationFlags,
                     callback);
}

int COrvoInstance::RotateInPlace(DibHandle* image, int angle, StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTRotate, *leadTools, image, angle, kTableRotationFlags, callback);
}

int COrvoInstance::SaturationAdjust(DibHandle source, DibHandle* result, int change,
                                    StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTSaturationAdjust, *leadTools, source, result, change, callback);
}

int COrvoInstance::SaturationAdjustInPlace(DibHandle* image, int change,
                                           StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTSaturationAdjust, *leadTools, image, change, callback);
}

int COrvoInstance::LeadSharpnessAdjust(DibHandle source, DibHandle* result, int change,
                                       StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTSharpnessAdjust, *leadTools, source, result, change, callback);
}

int COrvoInstance::LeadSharpnessAdjustInPlace(DibHandle* image, int change,
                                              StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTSharpnessAdjust, *leadTools, image, change, callback);
}

int COrvoInstance::ChangeSize(DibHandle source, DibHandle* result, int width, int height,
                              unsigned flags, StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTChangeSize, *leadTools, source, result, width, height, flags,
                     callback);
}

int COrvoInstance::ChangeSizeInPlace(DibHandle* image, int width, int height, unsigned flags,
                                     StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTChangeSize, *leadTools, image, width, height, flags, callback);
}

int COrvoInstance::RemapIntensity(DibHandle source, DibHandle* result, const std::uint32_t* table,
                                  int channel, StatusCallback callback) noexcept {
  return ToNewHandle(&CLeadTools::LTRemapIntensity, *leadTools, source, result, table, channel,
                     callback);
}

int COrvoInstance::RemapIntensityInPlace(DibHandle* image, const std::uint32_t* table, int channel,
                                         StatusCallback callback) noexcept {
  return InPlace(&CLeadTools::LTRemapIntensity, *leadTools, image, table, channel, callback);
}

int COrvoInstance::SetDitheringMode(int mode) noexcept {
  const RunningCall call(leadTools);
  return leadTools->LTSetDitheringMode(mode);
}

int COrvoInstance::Trim(DibHandle source, DibHandle* result, int left, int top, int right,
                        int bottom) noexcept {
  const RECT rect{left, top, right, bottom};
  return ToNewHandle(&CLeadTools::LTTrim, *leadTools, source, result, &rect);
}

int COrvoInstance::TrimInPlace(DibHandle* image, int left, int top, int right,
                               int bottom) noexcept {
  const RECT rect{left, top, right, bottom};
  return InPlace(&CLeadTools::LTTrim, *leadTools, image, &rect);
}

// --- Files ---------------------------------------------------------------------------------------

int COrvoInstance::LoadFile(const char* path, DibHandle* result) noexcept {
  const RunningCall call(leadTools);
  return leadTools->LTLoadFile(path, result);
}

int COrvoInstance::SaveFile(DibHandle source, const char* path, int flag, int quality) noexcept {
  const RunningCall call(leadTools, source);
  return leadTools->LTSaveFile(source, path, flag, quality);
}

int COrvoInstance::CreateThumbnailFromFile(const char* path, DibHandle* result, int width,
                                           int height) noexcept {
  const RunningCall call(leadTools);
  return leadTools->LTCreateThumbnailFromFile(path, result, width, height);
}

int COrvoInstance::ImageFileInfo(const char* path, ORVOIMAGEFILEINFO* info) noexcept {
  const RunningCall call(leadTools);
  return leadTools->LTImageFileInfo(path, info);
}

int COrvoInstance::ConvertFile(const char* source, const char* target, int quality,
                               StatusCallback callback) noexcept {
  const RunningCall call(leadTools);
  return leadTools->LTConvertFile(source, target, quality, callback);
}
