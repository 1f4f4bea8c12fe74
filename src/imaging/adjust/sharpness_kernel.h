// The 5x5 kernel of sharpness. It has only three different weights: `outer` in the ring of sixteen,
// `near` beside, above and below the centre, 1 in the centre; the four diagonal neighbours weigh
// nothing. So a pixel of the result is a sum of 21 products. The sum runs row by row from the top
// left in double precision; that order is part of the result.
#ifndef ORVO_IMAGING_ADJUST_SHARPNESS_KERNEL_H
#define ORVO_IMAGING_ADJUST_SHARPNESS_KERNEL_H

#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

constexpr std::uint32_t kKernelBorder = 2;
constexpr std::uint32_t kKernelRows = 5;

struct KernelWeights {
  double outer;
  double near;
};

// outer(row, column) and near(row, column) give the products of the window's values.
template <class Outer, class Near>
ORVO_ALWAYS_INLINE double KernelSum(const Outer& outer, const Near& near, double centre) {
  return outer(0, 0) + outer(0, 1) + outer(0, 2) + outer(0, 3) + outer(0, 4) +  //
         outer(1, 0) + near(1, 2) + outer(1, 4) +                               //
         outer(2, 0) + near(2, 1) + centre + near(2, 3) + outer(2, 4) +         //
         outer(3, 0) + near(3, 2) + outer(3, 4) +                               //
         outer(4, 0) + outer(4, 1) + outer(4, 2) + outer(4, 3) + outer(4, 4);
}

// Limited to tones and truncated. The sums lie far inside the range of int, so it is all the same
// which of the two comes first; limits of integers are what compilers make vectors of.
ORVO_ALWAYS_INLINE int ToneOfSum(double sum) {
  return Least(Most(static_cast<int>(sum), 0), 255);
}

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_SHARPNESS_KERNEL_H
