#include "imaging/redeye/search.h"

#include <algorithm>

#include "imaging/redeye/color_planes.h"
#include "imaging/redeye/color_tests.h"
#include "imaging/redeye/region_mask.h"
#include "imaging/results.h"
#include "imaging/working_image.h"

namespace orvo {

namespace {

constexpr std::uint32_t kReach = 25;  // half-side of the square at scale 1
constexpr std::uint32_t kSmallestRadius = 3;

// The square round the point that is looked at.
struct Square {
  std::uint32_t left;
  std::uint32_t top;
  std::int32_t reach;  // half-side

  [[nodiscard]] std::int32_t side() const { return 2 * reach + 1; }
  // Whether a region of the square's mask would be the same in a larger square. The opening changes
  // pixels by what lies two further on, and the mask's outermost ones are always clear.
  [[nodiscard]] bool keepsOffEdge(const Box& region) const {
    constexpr std::int32_t kMargin = 4;
    return std::min(region.left, region.top) >= kMargin &&
           std::max(region.right, region.bottom) < side() - kMargin;
  }
};

// Marks what can belong to the pupil; close to the point also a catch-light.
void MarkPupil(const std::uint8_t* source, std::size_t stride, const Square& square,
               std::uint32_t scale, RegionMask& mask) {
  for (std::int32_t row = 1; row + 1 < mask.height; ++row) {
    const std::uint8_t* pixel = source + stride * (square.top + static_cast<std::uint32_t>(row)) +
                                3 * std::size_t{square.left};
    std::uint8_t* const foreground = &mask.foreground[mask.at(0, row)];
    const double dy = row - square.reach;
    for (std::int32_t column = 1; column + 1 < mask.width; ++column) {
      pixel += 3;
      const auto [y, cb, cr] = ColorOfPixel(pixel);
      const double dx = column - square.reach;
      foreground[column] = ImgIsRedEyeColor(y, cb, cr) ||
                           (ImgIsBrightNeutral(y, cb, cr) && ImgSqrt(dx * dx + dy * dy) <= scale);
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
  const std::size_t stride = WorkingStride(width, kColorDepth);
  RegionMask mask;
  const std::size_t side = 2 * std::size_t{reach} + 1;
  if (!mask.allocate(side * side)) return kImgNoMemory;

  // Most pupils end well inside a smaller square, and what ends there is the same in the whole one.
  Square square{};
  FilledRegion region{};
  std::uint32_t tried = std::min(reach, kReach);
  for (;; tried = std::min(2 * tried, reach)) {
    square = {x - tried, y - tried, static_cast<std::int32_t>(tried)};
    mask.start(square.side(), square.side());
    MarkPupil(source, stride, square, scale, mask);
    ImgOpenMask(mask);
    region = ImgFillRegion(square.reach, square.reach, mask);
    if (tried == reach || square.keepsOffEdge(region.box)) break;
  }
  const std::uint32_t radius = RadiusOfArea(region.area);
  if (radius < kSmallestRadius) {
    *found = {x, y, kSmallestRadius - 1};
    return kImgNotFound;
  }
  *found = {square.left + static_cast<std::uint32_t>(region.x),
            square.top + static_cast<std::uint32_t>(region.y), radius};
  return kImgDone;
}

}  // namespace orvo
