// Pixels between the library's images, 16 bits for each tone, and locked DIBs.
#ifndef MODULES_PICTURES_MAGICK_PIXELS_H
#define MODULES_PICTURES_MAGICK_PIXELS_H

#include "common/dib_image.h"
#include "pictures/magick_session.h"

namespace modules {

// Whether the rows of the image can be stored as indexes of `depth` bits.
bool FitsPalette(const Image& image, int depth);

// Fills palette and rows of a DIB of the same measures. To 32 bits the fourth byte is the opacity;
// otherwise transparent parts show white. Depths to 8 ask for FitsPalette. Module code.
int CopyFromMagick(const Image& image, const Pixels& target, MagickProgress& progress);

// Gives an image that has no pixels yet those of a DIB: with a palette for depths to 8; with
// opacity for 32 bits when withAlpha. Module code.
int CopyToMagick(const Pixels& source, bool withAlpha, Image& image, MagickProgress& progress);

}  // namespace modules

#endif  // MODULES_PICTURES_MAGICK_PIXELS_H
