// The scenes: the colour at each point, from 0,0 in the top left to 1 at the bottom.
#ifndef TOOLS_SAMPLE_PICTURES_SCENES_H
#define TOOLS_SAMPLE_PICTURES_SCENES_H

#include "color.h"

namespace samples {

// Hills, a meadow, a house and trees under a hazy sky; 4/3 wide.
Color Landscape(double x, double y);

// A face with flash-lit red pupils; 4/5 wide.
Color Portrait(double x, double y);

}  // namespace samples

#endif  // TOOLS_SAMPLE_PICTURES_SCENES_H
