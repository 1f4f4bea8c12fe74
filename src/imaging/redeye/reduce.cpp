#include "imaging/redeye/reduce.h"

#include "imaging/redeye/color_planes.h"
#include "imaging/redeye/color_tests.h"
#include "imaging/redeye/pupil.h"
#include "imaging/results.h"
#include "imaging/utilities.h"
#include "imaging/working_image.h"

namespace orvo {

namespace {

YCbCrBytes Reduced(const YCbCrBytes& color, double distance, double radius) {
  if (distance < radius) return DarkNeutral(color);
  if (distance >= radius * kFeatherEnd) return color;
  const int share = ImgIsRedEyeColor(color.y, color.cb, color.cr) ? 0 : 1;
  return Feathered(color, share, distance, radius);
}

}  // namespace

int ImgReduceRedEye(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                    std::uint32_t height, const PupilCircle& pupil) noexcept {
  const std::size_t stride = WorkingStride(width, kColorDepth);
  ImgCopy(target, source, stride * height);
  const auto [x, y, radius] = pupil;
  if (x >= width || y >= height) return kImgDone;
  const std::uint64_t wanted = std::uint64_t{radius} + (radius >> 2);
  const auto reach = std::min<std::uint64_t>({wanted, x, y, width - 1 - x, height - 1 - y});
  for (std::uint64_t row = y - reach; row <= y + reach; ++row) {
    for (std::uint64_t column = x - reach; column <= x + reach; ++column) {
      const double dx = static_cast<double>(column) - x;
      const double dy = static_cast<double>(row) - y;
      const std::size_t at = stride * row + 3 * column;
      WritePixel(target + at,
                 Reduced(ColorOfPixel(source + at), ImgSqrt(dx * dx + dy * dy), radius));
    }
  }
  return kImgDone;
}

}  // namespace orvo
