// Reading and writing of JPEG. The functions are those of a Codec.
#ifndef MODULES_PICTURES_JPEG_CODEC_H
#define MODULES_PICTURES_JPEG_CODEC_H

#include "pictures/formats.h"
#include "pictures/picture.h"

namespace modules {

int DescribeJpeg(const char* path, int page, LTFILEINFO& info);
int LoadJpeg(const char* path, int page, struct_LEAD_Bitmap& bitmap);
int LoadJpegAtLeast(const char* path, int page, int width, int height, struct_LEAD_Bitmap& bitmap);
int SaveJpeg(const SaveRequest& request, const LockedDib& image);

}  // namespace modules

#endif  // MODULES_PICTURES_JPEG_CODEC_H
