// Sharpness by the mean of a pixel's neighbourhood of 3 x 3.
#ifndef MODULES_LTIMG13N_SHARPEN_H
#define MODULES_LTIMG13N_SHARPEN_H

#include "binding/module_contract.h"

namespace modules {

// Moves every channel towards the mean (change below 0; -1000 gives the mean itself) or away from
// it (above 0; 1000 by four times the distance). Beyond the border its pixels repeat. Gray images
// whose bytes are their tones change the bytes; with any other palette each pixel's colour is
// sharpened and the nearest entry takes its place, the palette stays. Module code.
int Sharpen(struct_LEAD_Bitmap* bitmap, int change);

}  // namespace modules

#endif  // MODULES_LTIMG13N_SHARPEN_H
