// What a codec asks about an image before it chooses the form in which it writes it.
#ifndef MODULES_PICTURES_PIXEL_KINDS_H
#define MODULES_PICTURES_PIXEL_KINDS_H

#include "common/dib_image.h"

namespace modules {

// Whether the fourth bytes of 32-bit pixels mean transparency. They usually are padding and 0
// throughout; taken for transparency that would make the whole picture invisible. So they count
// only when one of them is not 0.
bool HasAlpha(const Pixels& image);

// Whether the palette is the even ramp from black to white that FillGrayPalette makes.
bool HasGrayRamp(const Pixels& image);

}  // namespace modules

#endif  // MODULES_PICTURES_PIXEL_KINDS_H
