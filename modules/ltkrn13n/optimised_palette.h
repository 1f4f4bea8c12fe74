// The palette that shows an image best with a given number of colours.
#ifndef MODULES_LTKRN13N_OPTIMISED_PALETTE_H
#define MODULES_LTKRN13N_OPTIMISED_PALETTE_H

#include "ltkrn13n/color_histogram.h"

namespace modules {

struct ChosenPalette {
  std::vector<Color> colors;  // as many as are of use, at most as many as asked
  bool isExact;               // whether it holds every colour of the image
};

// At most `most` colours, 16 or 256. A gray image gets the palette of all tones where that fits, so
// that its bytes are its tones.
ChosenPalette OptimisedPalette(const ColorHistogram& histogram, std::size_t most);

}  // namespace modules

#endif  // MODULES_LTKRN13N_OPTIMISED_PALETTE_H
