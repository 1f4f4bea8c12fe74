// CLeadTools: everyday bitmap work and files, carried out by the imaging modules that lie beside
// the library (ltkrn13n.dll, ltimg13n.dll, ltfil13n.dll, PdfLib.dll). A module that is missing only
// makes the methods that need it return ORVO_ERR_NO_VENDOR.
//
// Applications reach all of this through COrvoInstance (<orvo/instance.h>), whose table says what
// each operation does; here stands what the handles do.
//
// Source and result. Every image method takes a reference to the source handle and a pointer to the
// result handle.
//   result null      in place: the block passes to the module and comes back, perhaps under another
//                    handle. The source variable holds the valid handle afterwards, success or
//                    not.
//   result not null  a copy is changed, the source stays as it is. On success a handle that stood
//                    in the result is freed and the new block, owned by the caller, takes its
//                    place; so source and result may be the same variable. On failure the result is
//                    left alone or set to the source: compare the two before freeing both.
//
// Common codes: ORVO_ERR_NULL_IMAGE (source null), ORVO_ERR_NO_VENDOR, ORVO_ERR_OUT_OF_RANGE
// (result set to the source), ORVO_ERR_BAD_DEPTH (result left alone), ORVO_ERR_NO_MEMORY,
// ORVO_ERR_CANCELLED and ORVO_ERR_VENDOR (result set to the source).
#ifndef ORVO_CLEADTOOLS_H
#define ORVO_CLEADTOOLS_H

#include <cstddef>

#include <orvo/dib.h>
#include <orvo/export.h>
#include <orvo/records.h>

namespace orvo {
class Modules;
}

class ORVO_API CLeadTools {
 public:
  // Loads the modules from the directory of the library's own file and sets dithering mode 1. Never
  // fails: what is missing is reported by the methods that need it.
  CLeadTools() noexcept;
  virtual ~CLeadTools();
  CLeadTools(const CLeadTools&) = delete;
  CLeadTools& operator=(const CLeadTools&) = delete;

  // Adjustments. change is -1000..1000, 0 changes nothing; for 4, 8, 16, 24 and 32 bits.
  int LTContrastAdjust(DibHandle& source, DibHandle* result, int change,
                       StatusCallback callback) noexcept;
  // A refused depth sets the result to the source here.
  int LTIntensityAdjust(DibHandle& source, DibHandle* result, int change,
                        StatusCallback callback) noexcept;
  int LTSaturationAdjust(DibHandle& source, DibHandle* result, int change,
                         StatusCallback callback) noexcept;
  int LTSharpnessAdjust(DibHandle& source, DibHandle* result, int change,
                        StatusCallback callback) noexcept;
  // change in hundredths of a degree round the colour circle, any value.
  int LTHueAdjust(DibHandle& source, DibHandle* result, int change,
                  StatusCallback callback) noexcept;
  // gamma in hundredths, not 0; 100 changes nothing, above brightens.
  int LTGammaAdjust(DibHandle& source, DibHandle* result, unsigned gamma,
                    StatusCallback callback) noexcept;
  int LTInvert(DibHandle& source, DibHandle* result, StatusCallback callback) noexcept;
  // table: 256 entries, the new value of each tone (0..255); the caller keeps it. channel: 0 all, 1
  // red, 2 green, 3 blue.
  int LTRemapIntensity(DibHandle& source, DibHandle* result, const std::uint32_t* table,
                       int channel, StatusCallback callback) noexcept;

  // To 8-bit gray, from any depth.
  int LTConvertToGrayScaleRes(DibHandle& source, DibHandle* result,
                              StatusCallback callback) noexcept;
  // bits: 1, 4, 8, 16, 24 or 32. From 4 bits up; dithered as LTSetDitheringMode says.
  int LTConvertToColorRes(DibHandle& source, DibHandle* result, int bits) noexcept;

  // angle in whole degrees, clockwise; flags bit 0: the result grows to hold the turned image. What
  // the turn uncovers is white. From any depth.
  int LTRotate(DibHandle& source, DibHandle* result, int angle, std::uint32_t flags,
               StatusCallback callback) noexcept;
  // width and height in pixels; flags 0 nearest, 2 bilinear, 4 best.
  int LTChangeSize(DibHandle& source, DibHandle* result, int width, int height, unsigned flags,
                   StatusCallback callback) noexcept;
  // Dots per inch. The image is resampled so that its physical size stays. The result handle is
  // overwritten without being freed, and left alone on failure. ORVO_ERR_NOT_SUPPORTED when the
  // image has no resolution of its own.
  int LTChangeResolution(DibHandle& source, DibHandle* result, int horizontal, int vertical,
                         StatusCallback callback) noexcept;
  // Cuts to the rectangle: pixels and stored rows, right and bottom exclusive.
  int LTTrim(DibHandle& source, DibHandle* result, const RECT* rect) noexcept;

  // mode 1..8 as COrvoInstance::SetDitheringMode tells, any other for none.
  int LTSetDitheringMode(int mode) noexcept;
  // 1 for an 8-bit image with a gray palette, else 0. The handle may change.
  int LTIsGrayScaleBitmap(DibHandle& image) noexcept;

  // Files. Paths have at most 259 characters. A load that fails leaves the result alone; one that
  // succeeds frees what stood there.
  int LTLoadFile(const char* path, DibHandle* result) noexcept;
  int LTSaveFile(DibHandle source, const char* path, int flag, int quality) noexcept;
  int LTImageFileInfo(const char* path, ORVOIMAGEFILEINFO* info) noexcept;
  int LTConvertFile(const char* source, const char* target, int quality,
                    StatusCallback callback) noexcept;
  int LTCreateThumbnailFromFile(const char* path, DibHandle* result, int width,
                                int height) noexcept;
  int LTGetVersionInfo(LTVERSIONINFO* info) noexcept;

  // Memory of an object comes from the platform's working memory; new gives null when there is
  // none.
  static void* operator new(std::size_t bytes) noexcept;
  static void operator delete(void* memory) noexcept;

 private:
  friend class orvo::Modules;
  using EntryPoint = void (*)();
  static constexpr std::size_t kModuleEntryCount = 41;

  void GetLTProcAddresses(char* path) noexcept;
  int SavePdf(DibHandle source, const char* path) noexcept;
  int ConvertToPDF(const char* source, const char* target) noexcept;

  void* pdfModule = nullptr;
  void* kernelModule = nullptr;
  void* imageModule = nullptr;
  void* fileModule = nullptr;
  int ditheringMode = 0;
  EntryPoint moduleEntries[kModuleEntryCount] = {};
};

#endif  // ORVO_CLEADTOOLS_H
