// The skew of a region: the turn that makes its upright bounding rectangle smallest. Only the
// outline is turned, and only whole degrees are tried.
//
// y grows downward, so a positive angle turns clockwise as the image is shown. What is found is the
// correction to apply: a region tilted by +3 gives -3.
#ifndef ORVO_IMAGING_REGIONS_SKEW_H
#define ORVO_IMAGING_REGIONS_SKEW_H

#include "imaging/regions/pixel_region.h"

namespace orvo {

// A turned point on the pixel grid. The two cuts differ: x goes up from a first decimal digit of 5,
// y only from 9.
[[nodiscard]] POINT RoundPoint(double x, double y);

// Which way a turn makes the region's rectangle no larger: 1 clockwise, -1 against it, 0 neither.
[[nodiscard]] int SkewDirection(const PixelRegion& region);

// Degrees, -55 to 55. box, which may be null, receives the rectangle of the best turn, or of the
// region itself when no turn helps. The region must not be empty.
[[nodiscard]] int FindSkew(const PixelRegion& region, RECT* box);

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_SKEW_H
