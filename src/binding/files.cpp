// The methods that touch files. The work on the file is the file module's; here is chosen which
// format, quality and depth it uses.
#include <algorithm>
#include <array>
#include <string_view>

#include <orvo/result_codes.h>

#include "binding/file_types.h"
#include "binding/jfif_density.h"
#include "binding/module_codes.h"
#include "binding/module_entries.h"
#include "binding/pdf.h"

using namespace orvo;

namespace {

constexpr int kDotsPerDensity = 72;
constexpr int kOwnDepth = 0;
constexpr int kColorOrderBlueFirst = 1;
constexpr int kLowFixedQuality = 2;

int QualityFor(const SaveType& type, int callers) {
  switch (type.quality) {
    case SaveQuality::kCallers:
      return callers;
    case SaveQuality::kFixedLow:
      return kLowFixedQuality;
    case SaveQuality::kNone:
      break;
  }
  return 0;
}

// Stores a new block in a result handle and frees the one that stood there.
void Replace(DibHandle* result, DibHandle block) {
  if (*result != nullptr) GlobalFree(*result);
  *result = block;
}

}  // namespace

int CLeadTools::LTLoadFile(const char* path, DibHandle* result) noexcept {
  const Modules modules(*this);
  if (!modules.hasAll({Entry::L_LoadBitmap, Entry::L_FreeBitmap, Entry::L_ConvertToDIB})) {
    return ORVO_ERR_NO_VENDOR;
  }
  if (path == nullptr || result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const auto density = UnitlessJfifDensity(path);
  struct_LEAD_Bitmap bitmap{};
  const int moduleCode = modules.call<Entry::L_LoadBitmap>()(
      path, &bitmap, kOwnDepth, kColorOrderBlueFirst, nullptr, nullptr);
  if (density) {
    bitmap.xResolution = density->x * kDotsPerDensity;
    bitmap.yResolution = density->y * kDotsPerDensity;
  }
  if (moduleCode != kModuleSuccess) return MapReturnCodeLT2ORVO(moduleCode);
  const DibHandle dib = modules.call<Entry::L_ConvertToDIB>()(&bitmap);
  modules.call<Entry::L_FreeBitmap>()(&bitmap);
  if (dib == nullptr) return ORVO_ERR_NO_MEMORY;
  Replace(result, dib);
  return ORVO_OK;
}

int CLeadTools::LTSaveFile(DibHandle source, const char* path, int flag, int quality) noexcept {
  if (source == nullptr) return ORVO_ERR_NULL_IMAGE;
  const Modules modules(*this);
  if (!modules.hasAll({Entry::L_SaveBitmap, Entry::L_SaveFile, Entry::L_FreeBitmap})) {
    return ORVO_ERR_NO_VENDOR;
  }
  if (path == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  if (IsPdfName(path)) return SavePdf(source, path);
  struct_LEAD_Bitmap bitmap{};
  modules.ConvertFromDIB(&bitmap, source);
  int code = ORVO_ERR_BAD_FORMAT;
  if (const auto type = SaveTypeOf(path)) {
    const bool append = type->takesPages && flag != 0;
    code = MapReturnCodeLT2ORVO(
        append ? modules.call<Entry::L_SaveFile>()(path, &bitmap, type->format, kOwnDepth, 0,
                                                   kSaveAppendsPage, nullptr, nullptr, nullptr)
               : modules.call<Entry::L_SaveBitmap>()(path, &bitmap, type->format, kOwnDepth,
                                                     QualityFor(*type, quality), nullptr));
  }
  modules.call<Entry::L_FreeBitmap>()(&bitmap);
  return code;
}

// By way of a temporary TIFF file beside the target.
int CLeadTools::SavePdf(DibHandle source, const char* path) noexcept {
  const std::string_view name(path);
  const std::string_view stem = name.substr(0, name.rfind('.'));
  constexpr std::string_view kEnding = "$$$.tif";
  std::array<char, MAX_PATH> temporary{};
  if (stem.size() + kEnding.size() >= temporary.size()) return ORVO_ERR_BAD_ARGUMENT;
  std::ranges::copy(kEnding, std::ranges::copy(stem, temporary.begin()).out);

  const Modules modules(*this);
  struct_LEAD_Bitmap bitmap{};
  modules.ConvertFromDIB(&bitmap, source);
  const int moduleCode = modules.call<Entry::L_SaveBitmap>()(temporary.data(), &bitmap, kFormatTiff,
                                                             kOwnDepth, 0, nullptr);
  int code = MapReturnCodeLT2ORVO(moduleCode);
  if (moduleCode == kModuleSuccess) {
    DeleteFileA(path);
    code = ConvertToPDF(temporary.data(), path) == kPdfDone ? ORVO_OK : ORVO_ERR_FAILURE;
  }
  DeleteFileA(temporary.data());
  modules.call<Entry::L_FreeBitmap>()(&bitmap);
  return code;
}

int CLeadTools::LTImageFileInfo(const char* path, ORVOIMAGEFILEINFO* info) noexcept {
  if (path == nullptr || info == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const auto fileInfo = Modules(*this).call<Entry::L_FileInfo>();
  if (fileInfo == nullptr) return ORVO_ERR_NO_VENDOR;
  LTFILEINFO read{};
  const int moduleCode = fileInfo(path, &read, 0, nullptr);
  if (moduleCode != kModuleSuccess) {
    return moduleCode == kModuleFileNotFound ? ORVO_ERR_BAD_FILE : ORVO_ERR_FAILURE;
  }
  if (read.pageCount > 1) {
    const LTLOADOPTIONS firstPage{sizeof firstPage, 1};
    fileInfo(path, &read, kInfoUsesOptions, &firstPage);
  }
  *info = {read.width,       read.height,      read.bitsPerPixel, read.order,
           read.xResolution, read.yResolution, read.sizeInMemory, read.sizeOnDisk};
  return ORVO_OK;
}

int CLeadTools::LTConvertFile(const char* source, const char* target, int quality,
                              StatusCallback callback) noexcept {
  if (source != nullptr && target != nullptr && IsPdfName(target)) {
    return ConvertToPDF(source, target) == kPdfDone ? ORVO_OK : ORVO_ERR_FAILURE;
  }
  const Modules modules(*this);
  if (!modules.hasAll({Entry::L_FileInfo, Entry::L_SetStatusCallBack, Entry::L_FileConvert})) {
    return ORVO_ERR_NO_VENDOR;
  }
  if (source == nullptr || target == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const int format = DetermineFileTypeByName(target);
  if (format == kUnknownFileType) return ORVO_ERR_BAD_FORMAT;
  LTFILEINFO info{};
  if (modules.call<Entry::L_FileInfo>()(source, &info, 0, nullptr) != kModuleSuccess) {
    return ORVO_ERR_BAD_FILE;
  }
  if (info.pageCount > 1) return ORVO_ERR_BAD_FORMAT;
  const auto install = modules.call<Entry::L_SetStatusCallBack>();
  const StatusCallback previous = callback != nullptr ? install(callback, nullptr) : nullptr;
  const int moduleCode = modules.call<Entry::L_FileConvert>()(
      source, target, format, 0, 0, info.bitsPerPixel, quality, nullptr, nullptr, nullptr);
  // Alone among the methods this one puts the previous callback back after a failure too.
  if (previous != nullptr) install(previous, nullptr);
  return moduleCode == kModuleSuccess ? ORVO_OK : ORVO_ERR_FAILURE;
}

int CLeadTools::LTCreateThumbnailFromFile(const char* path, DibHandle* result, int width,
                                          int height) noexcept {
  const Modules modules(*this);
  if (!modules.hasAll({Entry::L_CreateThumbnailFromFile, Entry::L_ChangeToDIB})) {
    return ORVO_ERR_NO_VENDOR;
  }
  if (path == nullptr || result == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  const LTTHUMBNAILOPTIONS options{.width = width,
                                   .height = height,
                                   .bitsPerPixel = kOwnDepth,
                                   .colorResolutionFlags = 0,
                                   .keepAspect = 1,
                                   .forceSize = 1,
                                   .backgroundColor = static_cast<int>(kModuleWhite),
                                   .loadStamp = 0,
                                   .resample = 0};
  struct_LEAD_Bitmap bitmap{};
  const int moduleCode = modules.call<Entry::L_CreateThumbnailFromFile>()(
      path, &bitmap, &options, nullptr, nullptr, nullptr, nullptr);
  if (moduleCode != kModuleSuccess) return MapReturnCodeLT2ORVO(moduleCode);
  Replace(result, modules.call<Entry::L_ChangeToDIB>()(&bitmap));
  return *result != nullptr ? ORVO_OK : ORVO_ERR_FAILURE;
}

int CLeadTools::LTGetVersionInfo(LTVERSIONINFO* info) noexcept {
  const auto versionInfo = Modules(*this).call<Entry::L_VersionInfo>();
  return versionInfo == nullptr ? static_cast<int>(ORVO_ERR_NO_VENDOR)
                                : MapReturnCodeLT2ORVO(versionInfo(info));
}
