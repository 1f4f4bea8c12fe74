// Pixels between the library's images, 16 bits for each tone, and locked DIBs.
#ifndef MODULES_PICTURES_MAGICK_PIXELS_H
#define MODULES_PICTURES_MAGICK_PIXELS_H

#include <vector>

#include "common/color.h"
#include "common/dib_image.h"
#include "pictures/magick_session.h"

namespace modules {

// Whether the rows of the image can be stored as indexes of `depth` bits.
bool FitsPalette(const Image& image, int depth);

// The colours of the image's palette.
std::vector<RGBQUAD> PaletteOf(const Image& image);

// Copies the line of an image to a bitmap's row, of at most 24 bits; transparent parts show white.
// Depths to 8 ask for FitsPalette.
void CopyLine(const Image& image, long line, int depth, std::uint8_t* row);

// Gives an image that has no pixels yet those of a DIB: with a palette for depths to 8; with
// opacity for 32 bits when withAlpha.
void CopyToMagick(const Pixels& source, bool withAlpha, Image& image, MagickProgress& progress);

}  // namespace modules

#endif  // MODULES_PICTURES_MAGICK_PIXELS_H
