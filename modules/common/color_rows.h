// Rows of pixels as colours, whatever their depth.
#ifndef MODULES_COMMON_COLOR_ROWS_H
#define MODULES_COMMON_COLOR_ROWS_H

#include "common/color.h"
#include "common/dib_image.h"

namespace modules {

// The colours of a stored row, width of them.
void ReadColors(const Pixels& image, int y, Color* colors);
// Stores colours; 16 bits and above. The fourth byte of 32-bit pixels becomes 0.
void WriteColors(const Pixels& image, int y, const Color* colors);
// Stores palette indexes; 8 bits and below.
void WriteIndexes(const Pixels& image, int y, const std::uint8_t* indexes);

}  // namespace modules

#endif  // MODULES_COMMON_COLOR_ROWS_H
