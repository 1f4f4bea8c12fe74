// What reduction does to a colour at a distance from the pupil's middle: dark and neutral up to the
// radius, then a feathered edge that ends at five quarters of it.
#ifndef ORVO_IMAGING_REDEYE_PUPIL_H
#define ORVO_IMAGING_REDEYE_PUPIL_H

#include <algorithm>

#include "imaging/adjust/ycbcr.h"

namespace orvo {

constexpr double kFeatherEnd = 1.25;  // radii

constexpr YCbCrBytes DarkNeutral(const YCbCrBytes& color) {
  return {static_cast<std::uint8_t>(color.y - (color.y >> 2)), 128, 128};
}

// share: 0 for a colour that has to go, else 1. distance: from the radius to kFeatherEnd of it.
inline std::uint8_t FeatheredChroma(std::uint8_t chroma, int share, double distance,
                                    double radius) {
  const double value = (chroma - 128) * share * (distance - radius) * 4.0 / radius + 128.0;
  return static_cast<std::uint8_t>(std::clamp(static_cast<int>(value), 0, 255));
}

inline YCbCrBytes Feathered(const YCbCrBytes& color, int share, double distance, double radius) {
  return {color.y, FeatheredChroma(color.cb, share, distance, radius),
          FeatheredChroma(color.cr, share, distance, radius)};
}

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_PUPIL_H
