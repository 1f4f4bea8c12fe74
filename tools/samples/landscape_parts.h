// What stands in the landscape.
#ifndef TOOLS_SAMPLES_LANDSCAPE_PARTS_H
#define TOOLS_SAMPLES_LANDSCAPE_PARTS_H

#include <cstdint>

#include "canvas.h"

namespace samples {

// A leafy tree; foot is where the trunk meets the ground, height in pixels.
void PlantTree(Canvas& canvas, Point foot, double height, std::uint32_t seed);
// A small house with its door to the left; corner is the lower left of the front wall.
void BuildHouse(Canvas& canvas, Point corner);
// Posts and rails along the lower edge of the picture.
void BuildFence(Canvas& canvas);

}  // namespace samples

#endif  // TOOLS_SAMPLES_LANDSCAPE_PARTS_H
