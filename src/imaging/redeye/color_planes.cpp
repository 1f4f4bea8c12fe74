#include "imaging/redeye/color_planes.h"

#include "imaging/redeye/plane_row.h"

namespace orvo {

bool ColorPlanes::allocate(std::size_t pixels) noexcept {
  bytes_ = ImgAllocArray<std::uint8_t>(3 * pixels);
  return bytes_ != nullptr;
}

PlaneView ColorPlanes::view(std::int32_t width, std::int32_t height) const noexcept {
  const auto stride = static_cast<std::size_t>(width);
  const std::size_t pixels = stride * static_cast<std::size_t>(height);
  return {bytes_.get(), bytes_.get() + pixels, bytes_.get() + 2 * pixels, stride};
}

void FillPlaneRow(const std::uint8_t* pixels, std::int32_t count, std::int32_t step,
                  const PlaneView& planes, std::int32_t row) noexcept {
  const PlaneView to = planes.from(0, row);
  ORVO_BEST(FillPlaneRow)
  (pixels, static_cast<std::size_t>(count), static_cast<std::size_t>(step), to.y, to.cb, to.cr);
}

void WritePixel(std::uint8_t* pixel, const YCbCrBytes& color) noexcept {
  const double y = color.y;
  const double cb = color.cb - 128;
  const double cr = color.cr - 128;
  pixel[0] = ChannelByte(BlueOf(y, cb));
  pixel[1] = ChannelByte(GreenOf(y, cb, cr));
  pixel[2] = ChannelByte(RedOf(y, cr));
}

}  // namespace orvo
