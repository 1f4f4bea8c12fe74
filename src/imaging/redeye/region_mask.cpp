#include "imaging/redeye/region_mask.h"

#include <algorithm>
#include <cmath>

#include "imaging/redeye/mask_row.h"

namespace orvo {

namespace {

void Open(RegionMask& mask, MaskShape shape) {
  if (mask.width < 3 || mask.height < 3) return;
  const auto width = static_cast<std::size_t>(mask.width);
  const auto throughRows = [&](MaskStep step, const std::uint8_t* from, std::uint8_t* to) {
    for (std::int32_t y = 1; y + 1 < mask.height; ++y) {
      ORVO_BEST(CombineMaskRow)(step, shape, from + mask.at(0, y), width, to + mask.at(0, y));
    }
  };
  throughRows(MaskStep::kErase, mask.foreground.get(), mask.visited.get());
  throughRows(MaskStep::kGrow, mask.visited.get(), mask.foreground.get());
  ImgFill(mask.visited.get(), 0, mask.pixelCount());
}

}  // namespace

bool RegionMask::allocate(std::size_t pixels) noexcept {
  if (pixels > UINT32_MAX) return false;
  foreground = ImgAllocArray<std::uint8_t>(pixels);
  visited = ImgAllocArray<std::uint8_t>(pixels);
  queue = ImgAllocArray<std::uint32_t>(pixels);
  return foreground != nullptr && visited != nullptr && queue != nullptr;
}

void RegionMask::start(std::int32_t maskWidth, std::int32_t maskHeight) noexcept {
  width = maskWidth;
  height = maskHeight;
  ImgFill(foreground.get(), 0, pixelCount());
  ImgFill(visited.get(), 0, pixelCount());
}

void ImgOpenMask(RegionMask& mask) noexcept {
  Open(mask, MaskShape::kCross);
}

void OpenMaskBySquares(RegionMask& mask) noexcept {
  Open(mask, MaskShape::kSquare);
}

FilledRegion ImgFillRegion(std::int32_t seedX, std::int32_t seedY, RegionMask& mask) noexcept {
  const auto width = static_cast<std::uint32_t>(mask.width);
  const std::uint32_t neighbors[] = {0U - width - 1, 0U - width, 0U - width + 1, 0U - 1, 1,
                                     width - 1,      width,      width + 1};
  const bool hasInterior = mask.width > 2 && mask.height > 2;
  const std::uint8_t* const foreground = mask.foreground.get();
  std::uint8_t* const visited = mask.visited.get();
  std::uint32_t* const queue = mask.queue.get();
  Box box{seedX, seedY, seedX, seedY};
  std::int64_t sumX = 0;
  std::int64_t sumY = 0;
  std::size_t taken = 0;
  queue[taken++] = static_cast<std::uint32_t>(mask.at(seedX, seedY));
  visited[queue[0]] = 1;
  for (std::size_t next = 0; next < taken; ++next) {
    const auto x = static_cast<std::int32_t>(queue[next] % width);
    const auto y = static_cast<std::int32_t>(queue[next] / width);
    sumX += x;
    sumY += y;
    box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
           std::max(box.bottom, y)};
    if (!hasInterior) break;
    for (const std::uint32_t offset : neighbors) {
      const std::uint32_t neighbor = queue[next] + offset;
      if (foreground[neighbor] == 0 || visited[neighbor] != 0) continue;
      visited[neighbor] = 1;
      queue[taken++] = neighbor;
    }
  }
  const auto area = static_cast<std::int64_t>(taken);
  return {.area = area,
          .box = box,
          .x = static_cast<std::int32_t>(sumX / area),
          .y = static_cast<std::int32_t>(sumY / area),
          .members = {queue + 1, taken - 1}};
}

std::uint32_t RadiusOfArea(std::int64_t area) noexcept {
  constexpr double kOnePerPi = 0.31831015504887655;  // 1 / 3.14159
  const double radius = ImgSqrt(static_cast<double>(area) * kOnePerPi);
  return static_cast<std::uint32_t>(std::floor(radius + 0.5));
}

}  // namespace orvo
