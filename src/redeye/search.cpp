#include "redeye/search.h"

#include <algorithm>

#include "imaginglib/results.h"
#include "imaginglib/working_image.h"
#include "redeye/color_planes.h"
#include "redeye/color_tests.h"
#include "redeye/region_mask.h"

namespace {

constexpr std::uint32_t kReach = 25;  // half-side of the square at scale 1
constexpr std::uint32_t kSmallestRadius = 3;

// Marks what can belong to the pupil; close to the point also a catch-light.
void MarkPupil(const std::uint8_t* corner, std::size_t stride, std::uint32_t scale,
               RegionMask& mask) {
  const std::int32_t middle = mask.width / 2;
  for (std::int32_t row = 1; row + 1 < mask.height; ++row) {
    for (std::int32_t column = 1; column + 1 < mask.width; ++column) {
      const auto [y, cb, cr] = ColorOfPixel(corner + stride * static_cast<std::size_t>(row) +
                                            3 * static_cast<std::size_t>(column));
      const double dx = column - middle;
      const double dy = row - middle;
      const bool close = ImgSqrt(dx * dx + dy * dy) <= scale;
      mask.foreground[mask.at(column, row)] =
          ImgIsRedEyeColor(y, cb, cr) || (close && ImgIsBrightNeutral(y, cb, cr));
    }
  }
}

}  // namespace

int ImgSearchRedEyeRegion(const std::uint8_t* source, std::uint32_t width, std::uint32_t height,
                          std::uint32_t x, std::uint32_t y, PupilCircle* found) noexcept {
  if (x >= width || y >= height) {
    *found = {x, y, 0};
    return kImgNotFound;
  }
  const std::uint32_t scale = std::max(std::max(width, height) >> 9, 1U);
  const std::uint32_t reach = std::min({kReach * scale, x, y, width - 1 - x, height - 1 - y});
  const std::uint32_t left = x - reach;
  const std::uint32_t top = y - reach;
  const std::size_t stride = WorkingStride(width, kColorDepth);
  const auto side = static_cast<std::int32_t>(2 * reach + 1);
  const auto middle = static_cast<std::int32_t>(reach);

  RegionMask mask;
  if (!mask.allocate(static_cast<std::size_t>(side) * static_cast<std::size_t>(side))) {
    return kImgNoMemory;
  }
  mask.start(side, side);
  MarkPupil(source + stride * top + 3 * std::size_t{left}, stride, scale, mask);
  ImgOpenMask(mask);
  const FilledRegion region = ImgFillRegion(middle, middle, mask);
  const std::uint32_t radius = RadiusOfArea(region.area);
  if (radius < kSmallestRadius) {
    *found = {x, y, kSmallestRadius - 1};
    return kImgNotFound;
  }
  *found = {left + static_cast<std::uint32_t>(region.x), top + static_cast<std::uint32_t>(region.y),
            radius};
  return kImgDone;
}
