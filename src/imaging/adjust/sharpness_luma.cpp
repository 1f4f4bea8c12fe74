#include "imaging/adjust/sharpness_luma.h"

#include "imaging/adjust/luma.h"

namespace orvo::ORVO_LEVEL {

void FillLumaRow(const std::uint8_t* pixels, std::size_t width, KernelWeights weights,
                 const LumaRow& row) {
  double* const values = row.value;
  double* const outers = row.outer;
  for (std::size_t x = 0; x < width; ++x) {
    const double blue = pixels[3 * x];
    const double green = pixels[3 * x + 1];
    const double red = pixels[3 * x + 2];
    const double value = LumaOf(red, green, blue);
    values[x] = value;
    outers[x] = weights.outer * value;
  }
}

void SumLumaRows(const LumaRow (&rows)[kKernelRows], std::size_t count, KernelWeights weights,
                 double* __restrict sums) {
  const double* values[kKernelRows];
  const double* outers[kKernelRows];
  for (std::uint32_t i = 0; i < kKernelRows; ++i) {
    values[i] = rows[i].value;
    outers[i] = rows[i].outer;
  }
  for (std::size_t i = 0; i < count; ++i) {
    sums[i] = KernelSum(
        [&](std::size_t row, std::size_t column) { return outers[row][i + column]; },
        [&](std::size_t row, std::size_t column) { return weights.near * values[row][i + column]; },
        values[kKernelBorder][i + kKernelBorder]);
  }
}

}  // namespace orvo::ORVO_LEVEL
