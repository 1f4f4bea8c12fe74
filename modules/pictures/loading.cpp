#include "pictures/loading.h"

#include <algorithm>
#include <climits>
#include <cstdio>

#include "pictures/picture_rows.h"

namespace modules {

void DescribePicture(const Picture& picture, LTFILEINFO& info) {
  constexpr int kBlueFirst = 1;
  const bool turned = SwapsSides(picture.orientation);
  info.format = picture.format;
  info.width = turned ? picture.height : picture.width;
  info.height = turned ? picture.width : picture.height;
  info.bitsPerPixel = picture.depth();
  info.order = kBlueFirst;
  info.xResolution = orvo::DotsPerInch(turned ? picture.yPixelsPerMetre : picture.xPixelsPerMetre);
  info.yResolution = orvo::DotsPerInch(turned ? picture.xPixelsPerMetre : picture.yPixelsPerMetre);
  const auto layout = orvo::DibLayoutFor(info.width, info.height, info.bitsPerPixel);
  info.sizeInMemory =
      layout ? static_cast<int>(std::min<std::size_t>(layout->totalBytes, INT_MAX)) : INT_MAX;
  (void)std::snprintf(info.compression, sizeof info.compression, "%s", picture.compression);
}

OwnedBlock LoadPicture(PictureReader& reader) {
  reader.start();
  const Picture& picture = reader.picture();
  OwnedBlock block = BitmapFor(picture, picture.width, picture.height);
  {
    const LockedDib image(block.get());
    Require(image, kModuleNoMemory);
    PictureRows rows(reader);
    for (int y = 0; y < image->height; ++y) {
      rows.read(image->row(picture.bottomUp ? y : image->height - 1 - y));
    }
  }
  return UprightBlock(std::move(block), picture.orientation);
}

}  // namespace modules
