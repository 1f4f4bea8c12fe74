// The measure behind ImgIsRedEyeColor: how much of a full turn an outline takes up, seen from a
// colour. It is slow, so the library carries its answers as a table that is made when it is built.
#ifndef ORVO_IMAGING_REDEYE_OUTLINE_ANGLES_H
#define ORVO_IMAGING_REDEYE_OUTLINE_ANGLES_H

#include "imaging/redeye/red_eye_outlines.h"

namespace orvo {

// True inside and on the outline, and where it is seen under more than 3 radians from outside.
[[nodiscard]] bool IsWithinOutline(const RedEyeOutline& outline, int cb, int cr) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_OUTLINE_ANGLES_H
