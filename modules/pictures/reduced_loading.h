// Large pictures on their way into small bitmaps.
#ifndef MODULES_PICTURES_REDUCED_LOADING_H
#define MODULES_PICTURES_REDUCED_LOADING_H

#include "common/dib_image.h"
#include "pictures/picture.h"

namespace modules {

// Reads the rows of the page at hand, averages each square of `factor` pixels a side into one, and
// turns the result upright: 8 bits of tones, or 24 or 32 of colours. No more than a row of the page
// is in memory. Squares at the right and bottom edges may be cut.
OwnedBlock LoadReduced(PictureReader& reader, int factor);

}  // namespace modules

#endif  // MODULES_PICTURES_REDUCED_LOADING_H
