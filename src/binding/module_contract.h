// What the binding and the modules that it loads agree on: records, values and entry points.
//
// The modules define these functions; the binding only takes their types and binds them by name at
// run time, so any of them may be absent. Unless told otherwise a function returns a module code, 1
// for success. A struct_LEAD_Bitmap is provided by the caller.
#ifndef ORVO_BINDING_MODULE_CONTRACT_H
#define ORVO_BINDING_MODULE_CONTRACT_H

#include <orvo/dib.h>
#include <orvo/platform.h>
#include <orvo/records.h>

#if defined(_WIN32)
#define ORVO_MODULE_API
#else
#define ORVO_MODULE_API __attribute__((visibility("default")))
#endif

extern "C" {

// Modules codes, named by what the modules mean with them.
enum ModuleCode : int {
  kModuleSuccess = 1,
  kModuleFailure = 0,
  kModuleNoMemory = -1,
  kModuleNoBitmap = -2,
  kModuleReadFailed = -5,
  kModuleWriteFailed = -6,
  kModuleBadFile = -8,
  kFileFormatNotRead = -9,
  kModuleFileNotFound = -10,
  kFileFormatDamaged = -11,
  kFileFormatNotWritten = -12,
  kModuleBadParameter = -13,
  kModuleFileNotOpened = -14,
  kModuleDepthNotSupported = -16,
  kModuleAborted = -100,
};

// The bitmap record. Resolutions are in dots per inch; storing one stamps the image. A record of
// zeros holds nothing.
struct struct_LEAD_Bitmap {
  int width;
  int height;
  int bitsPerPixel;
  int xResolution;
  int yResolution;
  DibHandle block;
  void* reserved[2];
};

// Result of L_FileInfo.
struct LTFILEINFO {
  int format;
  int width;
  int height;
  int bitsPerPixel;
  int order;  // of the colour bytes: 1 blue first
  int xResolution;
  int yResolution;
  int sizeInMemory;
  int sizeOnDisk;
  int pageCount;
  int page;  // counted from 1
  char compression[32];
};

struct LTLOADOPTIONS {
  int size;  // of this record in bytes
  int page;  // counted from 1
};

struct LTTHUMBNAILOPTIONS {
  int width;
  int height;
  int bitsPerPixel;  // 0: the image's own
  int colorResolutionFlags;
  int keepAspect;  // not 0: the image's aspect is kept
  int forceSize;   // not 0: exactly width x height, the rest in the background colour
  int backgroundColor;
  int loadStamp;  // not 0: a thumbnail stored in the file will do
  int resample;
};

// File formats by number, as L_SaveBitmap, L_SaveFile, L_FileConvert and LTFILEINFO have them.
enum FileFormat : int {
  kFormatPcx = 1,
  kFormatGif = 2,  // only read
  kFormatTiff = 3,
  kFormatTga = 4,
  kFormatCmp = 5,
  kFormatBmp = 6,
  kFormatJpeg = 10,
  kFormatWmf = 15,
  kFormatEps = 16,
  kFormatWpg = 54,
  kFormatRas = 55,
  kFormatPct = 56,
  kFormatPcd = 57,
  kFormatPng = 75,
  kFormatPsd = 76,
  kFormatFpx = 82,
  kFormatTiffCompressed = 87,
};

// Flags of L_RotateBitmap, L_SizeBitmap, L_ColorResBitmap and L_SaveFile.
enum : unsigned {
  kRotateGrows = 1,
  kSizeNearest = 0,
  kSizeBilinear = 2,
  kSizeBest = 4,
  kColorResOptimisedPalette = 1,
  kColorResDitheringShift = 16,
  kSaveAppendsPage = 6,
  kInfoUsesOptions = 1,
};

constexpr unsigned kModuleWhite = 16777215;

// --- ltkrn13n.dll: bitmaps -----------------------------------------------------------------------

// The bitmap takes over the block.
ORVO_MODULE_API int L_ChangeFromDIB(struct_LEAD_Bitmap* bitmap, DibHandle dib);
// Gives the block back; the bitmap then holds nothing.
ORVO_MODULE_API DibHandle L_ChangeToDIB(struct_LEAD_Bitmap* bitmap);
ORVO_MODULE_API DibHandle L_ChangeToDIB2(struct_LEAD_Bitmap* bitmap, unsigned flags);
// The bitmap becomes a copy of a locked DIB.
ORVO_MODULE_API int L_ConvertFromDIB(struct_LEAD_Bitmap* bitmap, const BITMAPINFOHEADER* header,
                                     const void* pixels);
// A new block with the bitmap's image; the bitmap stays.
ORVO_MODULE_API DibHandle L_ConvertToDIB(struct_LEAD_Bitmap* bitmap);
ORVO_MODULE_API int L_FreeBitmap(struct_LEAD_Bitmap* bitmap);
// Not 0 for a gray image; no module code.
ORVO_MODULE_API int L_IsGrayScaleBitmap(struct_LEAD_Bitmap* bitmap);
// Installs the process-wide status callback and gives the one before; no module code.
ORVO_MODULE_API StatusCallback L_SetStatusCallBack(StatusCallback callback, void* userData);
ORVO_MODULE_API int L_DefaultDithering(unsigned mode);
ORVO_MODULE_API int L_ColorResBitmap(struct_LEAD_Bitmap* source, struct_LEAD_Bitmap* target,
                                     int bits, unsigned flags, void* palette, void* systemPalette,
                                     void* colors, void* callback, void* userData);
ORVO_MODULE_API int L_GrayScaleBitmap(struct_LEAD_Bitmap* bitmap, int bits);
// Angle in hundredths of a degree, clockwise; color fills what is uncovered.
ORVO_MODULE_API int L_RotateBitmap(struct_LEAD_Bitmap* bitmap, int angle, unsigned flags,
                                   unsigned color);
ORVO_MODULE_API int L_SizeBitmap(struct_LEAD_Bitmap* bitmap, int width, int height, unsigned flags);
// left and top in pixels and stored rows.
ORVO_MODULE_API int L_TrimBitmap(struct_LEAD_Bitmap* bitmap, int left, int top, int width,
                                 int height);
ORVO_MODULE_API int L_VersionInfo(LTVERSIONINFO* info);

// --- ltimg13n.dll: adjustments -------------------------------------------------------------------

ORVO_MODULE_API int L_ChangeBitmapContrast(struct_LEAD_Bitmap* bitmap, int change);
ORVO_MODULE_API int L_ChangeBitmapHue(struct_LEAD_Bitmap* bitmap, int change);
ORVO_MODULE_API int L_ChangeBitmapIntensity(struct_LEAD_Bitmap* bitmap, int change);
ORVO_MODULE_API int L_ChangeBitmapSaturation(struct_LEAD_Bitmap* bitmap, int change);
ORVO_MODULE_API int L_SharpenBitmap(struct_LEAD_Bitmap* bitmap, int change);
ORVO_MODULE_API int L_GammaCorrectBitmap(struct_LEAD_Bitmap* bitmap, unsigned gamma);
ORVO_MODULE_API int L_InvertBitmap(struct_LEAD_Bitmap* bitmap);
ORVO_MODULE_API int L_RemapBitmapIntensity(struct_LEAD_Bitmap* bitmap, const unsigned* table,
                                           unsigned length, int channel);

// --- ltfil13n.dll: files -------------------------------------------------------------------------

ORVO_MODULE_API int L_LoadBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int bits, int order,
                                 void* callback, void* userData);
ORVO_MODULE_API int L_SaveBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits,
                                 int quality, void* options);
ORVO_MODULE_API int L_SaveFile(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits,
                               int quality, unsigned flags, void* callback, void* userData,
                               void* options);
ORVO_MODULE_API int L_FileInfo(const char* path, LTFILEINFO* info, unsigned flags,
                               const LTLOADOPTIONS* options);
ORVO_MODULE_API int L_FileConvert(const char* source, const char* target, int format, int width,
                                  int height, int bits, int quality, void* loadOptions,
                                  void* saveOptions, void* info);
ORVO_MODULE_API int L_CreateThumbnailFromFile(const char* path, struct_LEAD_Bitmap* bitmap,
                                              const LTTHUMBNAILOPTIONS* options, void* info,
                                              void* saveOptions, void* callback, void* userData);

// --- PdfLib.dll: PDF documents -------------------------------------------------------------------

struct PdfDocument;

ORVO_MODULE_API PdfDocument* PDF_new();
ORVO_MODULE_API int PDF_open_file(PdfDocument* document, const char* path);  // -1 on failure
ORVO_MODULE_API void PDF_set_info(PdfDocument* document, const char* key, const char* value);
// The image's number, -1 on failure.
ORVO_MODULE_API int PDF_open_image_file(PdfDocument* document, const char* type, const char* path,
                                        const char* parameter, int number);
ORVO_MODULE_API float PDF_get_value(PdfDocument* document, const char* key, float image);
ORVO_MODULE_API void PDF_begin_page(PdfDocument* document, float width, float height);
ORVO_MODULE_API void PDF_scale(PdfDocument* document, float x, float y);
ORVO_MODULE_API void PDF_place_image(PdfDocument* document, int image, float x, float y,
                                     float scale);
ORVO_MODULE_API void PDF_close_image(PdfDocument* document, int image);
ORVO_MODULE_API void PDF_end_page(PdfDocument* document);
ORVO_MODULE_API void PDF_close(PdfDocument* document);
ORVO_MODULE_API void PDF_delete(PdfDocument* document);

}  // extern "C"

#endif  // ORVO_BINDING_MODULE_CONTRACT_H
