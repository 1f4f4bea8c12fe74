// Colours in byte form as three planes.
#ifndef ORVO_IMAGING_REDEYE_COLOR_PLANES_H
#define ORVO_IMAGING_REDEYE_COLOR_PLANES_H

#include "imaging/adjust/ycbcr.h"
#include "imaging/utilities.h"

namespace orvo {

// Three planes of equal shape inside somebody's memory.
struct PlaneView {
  [[nodiscard]] std::size_t at(std::int32_t x, std::int32_t row) const {
    return static_cast<std::size_t>(row) * stride + static_cast<std::size_t>(x);
  }
  // The same planes counted from another pixel.
  [[nodiscard]] PlaneView from(std::int32_t x, std::int32_t row) const {
    return {y + at(x, row), cb + at(x, row), cr + at(x, row), stride};
  }

  std::uint8_t* y;
  std::uint8_t* cb;
  std::uint8_t* cr;
  std::size_t stride;
};

class ColorPlanes {
 public:
  // Room for planes of up to this many pixels each; false when there is none.
  [[nodiscard]] bool allocate(std::size_t pixels) noexcept;
  // Planes of this size, with whatever was there.
  [[nodiscard]] PlaneView view(std::int32_t width, std::int32_t height) const noexcept;

 private:
  ImgArray<std::uint8_t> bytes_;
};

// One row of pixels (blue, green, red), every step-th of them, into row `row` of the planes.
void FillPlaneRow(const std::uint8_t* pixels, std::int32_t count, std::int32_t step,
                  const PlaneView& planes, std::int32_t row) noexcept;

inline YCbCrBytes ColorOfPixel(const std::uint8_t* pixel) {
  return ToYCbCrBytes(pixel[2], pixel[1], pixel[0]);
}
void WritePixel(std::uint8_t* pixel, const YCbCrBytes& color) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_COLOR_PLANES_H
