// Turns by right angles and mirrors: pixels move, none changes.
#ifndef MODULES_COMMON_PIXEL_TURNS_H
#define MODULES_COMMON_PIXEL_TURNS_H

#include "common/dib_image.h"

namespace modules {

// Where a turned image's pixels come from, in stored rows: the pixel of column x and row y from
// column x and row y, or y and x when sides are swapped, each counted from the other end when it is
// mirrored.
struct PixelTurn {
  bool swapsSides;
  bool mirrorsColumns;  // of the source
  bool mirrorsRows;
};

constexpr int kTurnedBand = 64;  // rows

// Draws a band of the turned image: kTurnedBand rows from a multiple of it on, or what is left. The
// target is zero-filled, with the depth of the source and its sides, swapped if need be.
void DrawTurnedBand(const Pixels& source, const Pixels& target, PixelTurn turn, int firstRow);

}  // namespace modules

#endif  // MODULES_COMMON_PIXEL_TURNS_H
