#include "redeye/skin_regions.h"

#include <algorithm>

#include "redeye/color_tests.h"
#include "redeye/hull.h"

namespace {

// A region is kept when its box is wider and taller than this, in reduced pixels.
constexpr std::int32_t kMostDroppedWidth = 10;
constexpr std::int32_t kMostDroppedHeight = 20;

// The points on the upper and lower edge of a region. When the list grows long its stretches are
// replaced by their hulls; it is in the order of rising x and y whenever that happens, so that each
// stretch starts where a walk has to start.
class EdgePoints {
 public:
  [[nodiscard]] bool allocate() noexcept {
    points_ = ImgAllocArray<POINT>(kCapacity);
    return points_ != nullptr;
  }

  void start() { count_ = 0; }
  // Two points of one column, to the right of all before; false when the list takes no more.
  [[nodiscard]] bool add(std::int32_t column, std::int32_t top, std::int32_t bottom) {
    points_[count_++] = {column, top};
    points_[count_++] = {column, bottom};
    if (count_ == kCapacity) thin();
    return count_ + 2 <= kCapacity;
  }
  // The hull, in walk order.
  [[nodiscard]] std::span<const POINT> hull() {
    if (count_ == 0) return {};
    for (std::size_t before = kCapacity + 1; count_ > kStretch && count_ < before;) {
      before = count_;
      thin();
    }
    return {points_.get(), ImgConvexHull({points_.get(), count_})};
  }

 private:
  static constexpr std::size_t kCapacity = 1000;
  static constexpr std::size_t kStretch = 200;

  // Points behind the last whole stretch stay as they are.
  void thin() {
    for (std::size_t first = 0; first + kStretch <= count_; first += kStretch) {
      ImgConvexHull({&points_[first], kStretch});
    }
    count_ = ImgRemoveRepeats({points_.get(), count_});
    ImgSortPoints({points_.get(), count_});
  }

  ImgArray<POINT> points_;
  std::size_t count_ = 0;
};

void MarkSkin(const PlaneView& planes, RegionMask& mask) {
  for (std::int32_t row = 1; row + 1 < mask.height; ++row) {
    for (std::int32_t column = 1; column + 1 < mask.width; ++column) {
      const std::size_t at = planes.at(column, row);
      mask.foreground[mask.at(column, row)] =
          ImgIsSkinColor(planes.y[at], planes.cb[at], planes.cr[at]);
    }
  }
}

void ClearMembers(const Box& box, RegionMask& mask) {
  for (std::int32_t row = box.top; row <= box.bottom; ++row) {
    ImgFill(&mask.member[mask.at(box.left, row)], 0, static_cast<std::size_t>(box.width()));
  }
}

// Takes the members of the box, column by column, and clears them, for the box of a later region
// may overlap this one.
void TakeEdge(const Box& box, RegionMask& mask, EdgePoints& edge) {
  edge.start();
  for (std::int32_t column = box.left; column <= box.right; ++column) {
    std::int32_t first = box.bottom;
    std::int32_t last = box.top;
    for (std::int32_t row = box.top; row <= box.bottom; ++row) {
      std::uint8_t& member = mask.member[mask.at(column, row)];
      if (member == 0) continue;
      member = 0;
      first = std::min(first, row);
      last = row;
    }
    if (first != last && !edge.add(column, first, last)) return;
  }
}

void StoreOutline(std::span<const POINT> hull, const Box& box, RedEyeScan& scan, int region) {
  const std::size_t count = std::min<std::size_t>(hull.size(), kMostOutlineVertices);
  scan.outlineCounts[region] = static_cast<std::int32_t>(count);
  for (std::size_t k = 0; k < count; ++k) {
    scan.outlines[region][k] = {(hull[k].x - box.left) * scan.reduction,
                                (hull[k].y - box.top) * scan.reduction};
  }
}

}  // namespace

std::optional<int> ImgFindSkinRegions(RedEyeScan& scan, const PlaneView& planes, std::int32_t width,
                                      std::int32_t height, std::int32_t reduction) noexcept {
  RegionMask mask;
  EdgePoints edge;
  const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (!mask.allocate(pixels) || !edge.allocate()) return std::nullopt;
  mask.start(width, height);
  MarkSkin(planes, mask);
  OpenMaskBySquares(mask);
  scan.reduction = reduction;
  int count = 0;
  for (std::int32_t row = 0; row < height; ++row) {
    for (std::int32_t column = 0; column < width; ++column) {
      const std::size_t at = mask.at(column, row);
      if (mask.foreground[at] == 0 || mask.visited[at] != 0) continue;
      const Box box = ImgFillRegion(column, row, mask).box;
      if (box.right - box.left <= kMostDroppedWidth || box.bottom - box.top <= kMostDroppedHeight) {
        ClearMembers(box, mask);
        continue;
      }
      scan.regionRects[count] = {box.left * reduction, box.top * reduction, box.right * reduction,
                                 box.bottom * reduction};
      TakeEdge(box, mask, edge);
      StoreOutline(edge.hull(), box, scan, count);
      if (++count == kMostRegions) return count;
    }
  }
  return count;
}
