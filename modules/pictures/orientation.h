// Orientation tags of cameras and scanners: how a stored image has to be turned to stand upright.
//
// 1 upright, 2 mirrored left to right, 3 turned by 180 degrees, 4 mirrored top to bottom, 5
// mirrored along the diagonal from the top left, 6 needs a quarter turn clockwise, 7 mirrored along
// the other diagonal, 8 needs a quarter turn counter-clockwise.
#ifndef MODULES_PICTURES_ORIENTATION_H
#define MODULES_PICTURES_ORIENTATION_H

#include "common/dib_image.h"

namespace modules {

constexpr int kUpright = 1;

// What a tag says; what no tag may say counts as upright.
constexpr int OrientationOf(unsigned tag) {
  return tag >= 1 && tag <= 8 ? static_cast<int>(tag) : kUpright;
}
constexpr bool SwapsSides(int orientation) {
  return orientation >= 5;
}

// The image turned upright, resolutions and palette with it; empty when out of memory.
OwnedBlock TurnedUpright(OwnedBlock block, int orientation);

}  // namespace modules

#endif  // MODULES_PICTURES_ORIENTATION_H
