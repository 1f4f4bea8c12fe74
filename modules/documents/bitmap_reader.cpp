#include "documents/bitmap_reader.h"

#include <algorithm>

#include "common/pixel_formats.h"

namespace modules {

BitmapReader::BitmapReader(DibHandle bitmap) : PictureReader("", nullptr), image_(bitmap) {
  Require(image_, kModuleNoBitmap);
  picture_.width = image_->width;
  picture_.height = image_->height;
  picture_.xPixelsPerMetre = image_.header().biXPelsPerMeter;
  picture_.yPixelsPerMetre = image_.header().biYPelsPerMeter;
  picture_.hasAlpha = HasAlpha(*image_);
  if (image_->depth <= 8) {
    picture_.bits = image_->depth;
    takePalette();
  } else {
    picture_.samples = picture_.hasAlpha ? 4 : 3;
  }
}

// Even steps need no palette.
void BitmapReader::takePalette() {
  picture_.isGray = HasGrayRamp(*image_);
  picture_.reversed = !picture_.isGray && HasGrayRamp(*image_, true);
  if (picture_.isGray || picture_.reversed) return;
  picture_.palette.assign(image_->palette, image_->palette + image_->paletteSize());
}

void BitmapReader::readRow(std::uint8_t* row) {
  const std::uint8_t* const from = image_->row(--nextRow_);
  if (image_->depth != 16 && (image_->depth != 32 || picture_.hasAlpha)) {
    std::copy_n(from, image_->rowBytes(), row);
    return;
  }
  WithColorFormat(image_->depth, [&](auto format) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(image_->width); ++x) {
      Format24::write(row, x, ColorOf(format.read(from, x)));
    }
  });
}

}  // namespace modules
