#include "imaging/redeye/plane_row.h"

#include "imaging/adjust/ycbcr.h"

namespace orvo::ORVO_LEVEL {

namespace {

ORVO_ALWAYS_INLINE void Fill(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                             std::uint8_t* __restrict y, std::uint8_t* __restrict cb,
                             std::uint8_t* __restrict cr) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t* const pixel = pixels + 3 * step * i;
    const YCbCrBytes color = ToYCbCrBytes(pixel[2], pixel[1], pixel[0]);
    y[i] = color.y;
    cb[i] = color.cb;
    cr[i] = color.cr;
  }
}

}  // namespace

void FillPlaneRow(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                  std::uint8_t* __restrict y, std::uint8_t* __restrict cb,
                  std::uint8_t* __restrict cr) {
  // Pixels side by side fill vectors only when the step is known.
  if (step == 1) return Fill(pixels, count, 1, y, cb, cr);
  Fill(pixels, count, step, y, cb, cr);
}

}  // namespace orvo::ORVO_LEVEL
