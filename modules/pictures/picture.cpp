#include "pictures/picture.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>

namespace modules {

std::int32_t PixelsPerMetreOf(double dots, double metres) {
  const double value = std::round(dots / metres);
  return value > 0 && value <= orvo::kMostResolution ? static_cast<std::int32_t>(value) : 0;
}

void DescribeImage(const FileImage& image, int format, const char* compression, LTFILEINFO& info) {
  constexpr int kBlueFirst = 1;
  const bool turned = SwapsSides(image.orientation);
  const auto layout = orvo::DibLayoutFor(turned ? image.height : image.width,
                                         turned ? image.width : image.height, image.depth);
  info.format = format;
  info.width = turned ? image.height : image.width;
  info.height = turned ? image.width : image.height;
  info.bitsPerPixel = image.depth;
  info.order = kBlueFirst;
  info.xResolution = orvo::DotsPerInch(turned ? image.yPixelsPerMetre : image.xPixelsPerMetre);
  info.yResolution = orvo::DotsPerInch(turned ? image.xPixelsPerMetre : image.yPixelsPerMetre);
  info.sizeInMemory =
      layout ? static_cast<int>(std::min<std::size_t>(layout->totalBytes, INT_MAX)) : INT_MAX;
  info.pageCount = 1;
  info.page = 1;
  (void)std::snprintf(info.compression, sizeof info.compression, "%s", compression);
}

OwnedBlock BlockFor(const FileImage& image) {
  BITMAPINFOHEADER model{};
  model.biXPelsPerMeter = image.xPixelsPerMetre;
  model.biYPelsPerMeter = image.yPixelsPerMetre;
  return NewDibLike(model, image.width, image.height, image.depth);
}

int HandOver(OwnedBlock block, const FileImage& image, struct_LEAD_Bitmap& bitmap) {
  if (image.orientation != kUpright) {
    block = TurnedUpright(std::move(block), image.orientation);
    if (!block) return kModuleNoMemory;
  }
  TakeBlock(bitmap, std::move(block));
  return kModuleSuccess;
}

void WidenTwoBits(const std::uint8_t* values, int count, int factor, std::uint8_t* out) {
  // From the last byte to the first: written bytes never lie before those still to be read.
  for (int i = (count + 3) / 4 - 1; i >= 0; --i) {
    const int four = values[i];
    const auto pair = [=](int shift) {
      return static_cast<std::uint8_t>((four >> (shift + 2) & 3) * factor << 4 |
                                       (four >> shift & 3) * factor);
    };
    const std::uint8_t first = pair(4);
    out[2 * i + 1] = pair(0);
    out[2 * i] = first;
  }
}

}  // namespace modules
