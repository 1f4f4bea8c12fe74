// Reading and writing of JPEG. The functions are those of a Codec.
#ifndef MODULES_LTFIL13N_JPEG_CODEC_H
#define MODULES_LTFIL13N_JPEG_CODEC_H

#include "ltfil13n/codec.h"
#include "pictures/file_image.h"

namespace modules {

int DescribeJpeg(const char* path, int page, LTFILEINFO& info);
int LoadJpeg(const char* path, int page, struct_LEAD_Bitmap& bitmap);
int LoadJpegAtLeast(const char* path, int page, int width, int height, struct_LEAD_Bitmap& bitmap);
int SaveJpeg(const SaveRequest& request, const LockedDib& image);

}  // namespace modules

#endif  // MODULES_LTFIL13N_JPEG_CODEC_H
