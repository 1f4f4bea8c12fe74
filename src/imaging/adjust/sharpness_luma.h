// Rows of the luma of colour images on their way through the kernel of sharpness.
#ifndef ORVO_IMAGING_ADJUST_SHARPNESS_LUMA_H
#define ORVO_IMAGING_ADJUST_SHARPNESS_LUMA_H

#include <cstddef>

#include "imaging/adjust/sharpness_kernel.h"

namespace orvo {

struct LumaRow {
  double* value;
  double* outer;  // its product
};

ORVO_EACH_LEVEL(
    void FillLumaRow(const std::uint8_t* pixels, std::size_t width, KernelWeights weights,
                     const LumaRow& row);

    // Filtered luma of columns 2 to width - 3 of the middle row; sums[i] belongs to column i + 2.
    void SumLumaRows(const LumaRow (&rows)[kKernelRows], std::size_t count, KernelWeights weights,
                     double* __restrict sums);)

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_SHARPNESS_LUMA_H
