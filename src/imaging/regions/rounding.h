// Rounding by the first decimal digit alone: 2.5 gives 3, and so does no number below it, however
// close.
#ifndef ORVO_IMAGING_REGIONS_ROUNDING_H
#define ORVO_IMAGING_REGIONS_ROUNDING_H

#include <cmath>

namespace orvo {

// Up when the digit is at least `upFrom`, else down.
inline int RoundTenths(double value, int upFrom = 5) {
  const double below = std::floor(value);
  const int tenths = static_cast<int>((value - below) * 10);
  return static_cast<int>(tenths < upFrom ? below : std::ceil(value));
}

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_ROUNDING_H
