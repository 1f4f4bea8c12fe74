#include "pictures/pixel_kinds.h"

namespace modules {

bool HasAlpha(const Pixels& image) {
  if (image.depth != 32) return false;
  for (int y = 0; y < image.height; ++y) {
    const std::uint8_t* const row = image.row(y);
    unsigned any = 0;
    for (std::size_t i = 3; i < image.rowBytes(); i += 4) any |= row[i];
    if (any != 0) return true;
  }
  return false;
}

bool HasGrayRamp(const Pixels& image) {
  if (!PaletteIsGray(image)) return false;
  const int last = image.paletteSize() - 1;
  for (int i = 0; i <= last; ++i) {
    if (image.palette[i].rgbRed != i * 255 / last) return false;
  }
  return true;
}

}  // namespace modules
