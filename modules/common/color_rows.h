// Rows of pixels as colours, whatever their depth.
#ifndef MODULES_COMMON_COLOR_ROWS_H
#define MODULES_COMMON_COLOR_ROWS_H

#include <vector>

#include "common/color.h"
#include "common/dib_image.h"

namespace modules {

// The palette's entries; none above 8 bits.
std::vector<Color> PaletteColors(const Pixels& image);
// The colours of a stored row, width of them.
void ReadColors(const Pixels& image, int y, Color* colors);
// The same, where they lie at 24 bits, else in colors.
const Color* RowOfColors(const Pixels& image, int y, Color* colors);
// The luma of each colour.
void WriteTones(const Color* colors, std::size_t count, std::uint8_t* tones);
// Stores colours; 16 bits and above. The fourth byte of 32-bit pixels becomes 0.
void WriteColors(const Pixels& image, int y, const Color* colors);
// The palette indexes of a stored row, a byte each; 8 bits and below.
void ReadIndexes(const Pixels& image, int y, std::uint8_t* indexes);
void WriteIndexes(const Pixels& image, int y, const std::uint8_t* indexes);

}  // namespace modules

#endif  // MODULES_COMMON_COLOR_ROWS_H
