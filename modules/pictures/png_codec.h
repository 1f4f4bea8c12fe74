// Reading and writing of PNG. The functions are those of a Codec.
#ifndef MODULES_PICTURES_PNG_CODEC_H
#define MODULES_PICTURES_PNG_CODEC_H

#include <png.h>

#include <csetjmp>

#include "pictures/formats.h"
#include "pictures/picture.h"

namespace modules {

int DescribePng(const char* path, int page, LTFILEINFO& info);
int LoadPng(const char* path, int page, struct_LEAD_Bitmap& bitmap);
int SavePng(const SaveRequest& request, const LockedDib& image);

// The library's error and warning functions: errors leave to the std::jmp_buf that is the error
// pointer, warnings are not heard.
[[noreturn]] void OnPngError(png_structp png, png_const_charp message);
void OnPngWarning(png_structp png, png_const_charp message);

}  // namespace modules

#endif  // MODULES_PICTURES_PNG_CODEC_H
