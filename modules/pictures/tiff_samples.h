// Samples of TIFF files as bytes.
#ifndef MODULES_PICTURES_TIFF_SAMPLES_H
#define MODULES_PICTURES_TIFF_SAMPLES_H

#include <span>

#include "common/color.h"
#include "pictures/tiff_page.h"

namespace modules {

// Brings packed samples of a page, which are no bytes yet, to bytes from black to white. `sample`
// says which of a pixel's comes first; of planes it is the only one.
void NarrowSamples(const TiffPage& page, const std::uint8_t* packed, std::size_t sample,
                   std::span<std::uint8_t> bytes);

// Of the lightness, 255 for 100, and a and b, which count from -128, under the light that screens
// show as white.
Color ColorOfLab(std::uint8_t lightness, std::int8_t a, std::int8_t b);

}  // namespace modules

#endif  // MODULES_PICTURES_TIFF_SAMPLES_H
