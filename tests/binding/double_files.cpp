// Double of ltfil13n.dll: loads one small picture whatever the path, and writes nothing.
#include "double_log.h"

using doubles::Called;

namespace {

// A bitmap of 6 x 4 x 24 at 300 by 200 dots per inch.
int MakePicture(struct_LEAD_Bitmap* bitmap) {
  const auto layout = orvo::DibLayoutFor(6, 4, 24);
  void* const block = GlobalAlloc(orvo::kDibBlockFlags, layout->totalBytes);
  void* const bytes = GlobalLock(block);
  if (bytes == nullptr) return kModuleNoMemory;
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = layout->width;
  header.biHeight = layout->height;
  header.biPlanes = 1;
  header.biBitCount = 24;
  header.biXPelsPerMeter = orvo::PixelsPerMetre(300);
  header.biYPelsPerMeter = orvo::PixelsPerMetre(200);
  std::memcpy(bytes, &header, sizeof header);
  GlobalUnlock(block);
  doubles::Hold(bitmap, block);
  return kModuleSuccess;
}

std::string TextOf(const LTLOADOPTIONS* options) {
  if (options == nullptr) return "0";
  return options->size == sizeof *options
             ? std::string("page ").append(std::to_string(options->page))
             : "bad size";
}

std::string TextOf(const LTTHUMBNAILOPTIONS& options) {
  std::string text = "[";
  for (const int field : {options.width, options.height, options.bitsPerPixel,
                          options.colorResolutionFlags, options.keepAspect, options.forceSize,
                          options.backgroundColor, options.loadStamp, options.resample}) {
    text.append(text.size() > 1 ? " " : "").append(std::to_string(field));
  }
  return text + "]";
}

}  // namespace

int L_LoadBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int bits, int order, void* callback,
                 void* userData) {
  const int code = Called("L_LoadBitmap", path, bitmap, bits, order, callback, userData);
  return code == kModuleSuccess ? MakePicture(bitmap) : code;
}

int L_SaveBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits, int quality,
                 void* options) {
  return Called("L_SaveBitmap", path, bitmap, format, bits, quality, options);
}

int L_SaveFile(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits, int quality,
               unsigned flags, void* callback, void* userData, void* options) {
  return Called("L_SaveFile", path, bitmap, format, bits, quality, flags, callback, userData,
                options);
}

// The record of page 1, asked for by its number, differs in its width from the file's own.
int L_FileInfo(const char* path, LTFILEINFO* info, unsigned flags, const LTLOADOPTIONS* options) {
  *info = {.format = kFormatTiff,
           .width = options == nullptr ? 640 : 320,
           .height = 480,
           .bitsPerPixel = 24,
           .order = 1,
           .xResolution = 300,
           .yResolution = 200,
           .sizeInMemory = 921600,
           .sizeOnDisk = 5000,
           .pageCount = doubles::TheState().pageCount,
           .page = 1,
           .compression = {}};
  return Called("L_FileInfo", path, flags, TextOf(options));
}

int L_FileConvert(const char* source, const char* target, int format, int width, int height,
                  int bits, int quality, void* loadOptions, void* saveOptions, void* info) {
  return Called("L_FileConvert", source, target, format, width, height, bits, quality, loadOptions,
                saveOptions, info);
}

int L_CreateThumbnailFromFile(const char* path, struct_LEAD_Bitmap* bitmap,
                              const LTTHUMBNAILOPTIONS* options, void* info, void* saveOptions,
                              void* callback, void* userData) {
  const int code = Called("L_CreateThumbnailFromFile", path, bitmap, TextOf(*options), info,
                          saveOptions, callback, userData);
  return code == kModuleSuccess ? MakePicture(bitmap) : code;
}
