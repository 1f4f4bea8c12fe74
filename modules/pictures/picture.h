// An image as a file describes it, and its way into a file information or a bitmap.
#ifndef MODULES_PICTURES_PICTURE_H
#define MODULES_PICTURES_PICTURE_H

#include <cstdint>

#include "binding/module_contract.h"
#include "common/dib_image.h"
#include "pictures/orientation.h"

namespace modules {

// Measures as stored, before the orientation is applied.
struct FileImage {
  int width = 0;
  int height = 0;
  int depth = 0;  // that the image has when loaded
  std::int32_t xPixelsPerMetre = 0;
  std::int32_t yPixelsPerMetre = 0;
  int orientation = kUpright;
};

// Pixels per metre, rounded; 0 for what no header can hold.
std::int32_t PixelsPerMetreOf(double dots, double metres);

// Describes a page of one-page kinds, upright; sizeOnDisk stays.
void DescribeImage(const FileImage& image, int format, const char* compression, LTFILEINFO& info);

// An empty image with these measures, not yet turned upright; empty when out of memory.
OwnedBlock BlockFor(const FileImage& image);

// Turns a painted block upright and hands it to the bitmap. Module code.
int HandOver(OwnedBlock block, const FileImage& image, struct_LEAD_Bitmap& bitmap);

// Makes the image, lets paint (Pixels to module code) fill its rows and hands it to the bitmap,
// which holds nothing unless all went well.
template <class Paint>
int LoadImage(const FileImage& image, struct_LEAD_Bitmap& bitmap, const Paint& paint) {
  OwnedBlock block = BlockFor(image);
  {
    const LockedDib locked(block.get());
    if (!locked) return kModuleNoMemory;
    if (const int code = paint(*locked); code != kModuleSuccess) return code;
  }
  return HandOver(std::move(block), image, bitmap);
}

// The stored row that shows line y, counted from the top.
inline std::uint8_t* LineFromTop(const Pixels& image, int y) {
  return image.row(image.height - 1 - y);
}

// Spreads 2-bit values over 4-bit ones, multiplied by `factor`. May work in place. Writes whole
// bytes: an even number of them for every four values begun.
void WidenTwoBits(const std::uint8_t* values, int count, int factor, std::uint8_t* out);

}  // namespace modules

#endif  // MODULES_PICTURES_PICTURE_H
