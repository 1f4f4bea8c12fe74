#include "imaging/redeye/skin_regions.h"

#include <algorithm>

#include "imaging/redeye/color_tests.h"
#include "imaging/redeye/hull.h"

namespace orvo {

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

// Rows of the first and the last member of each column of a region.
class ColumnEnds {
 public:
  [[nodiscard]] bool allocate(std::int32_t maskWidth) noexcept {
    ends_ = ImgAllocArray<Ends>(static_cast<std::size_t>(maskWidth));
    return ends_ != nullptr;
  }

  void take(const FilledRegion& region, std::int32_t maskWidth) {
    // A column without a member has its ends the wrong way round.
    for (std::int32_t x = region.box.left; x <= region.box.right; ++x) {
      at(x) = {region.box.bottom, region.box.top};
    }
    const auto width = static_cast<std::uint32_t>(maskWidth);
    for (const std::uint32_t member : region.members) {
      const auto row = static_cast<std::int32_t>(member / width);
      Ends& ends = at(static_cast<std::int32_t>(member % width));
      ends = {std::min(ends.first, row), std::max(ends.last, row)};
    }
  }
  void addTo(EdgePoints& edge, const Box& box) {
    edge.start();
    for (std::int32_t x = box.left; x <= box.right; ++x) {
      const auto [first, last] = at(x);
      if (first != last && !edge.add(x, first, last)) return;
    }
  }

 private:
  struct Ends {
    std::int32_t first;
    std::int32_t last;
  };
  Ends& at(std::int32_t x) { return ends_[static_cast<std::size_t>(x)]; }

  ImgArray<Ends> ends_;
};

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
  ColumnEnds ends;
  EdgePoints edge;
  const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (!mask.allocate(pixels) || !ends.allocate(width) || !edge.allocate()) return std::nullopt;
  mask.start(width, height);
  MarkSkin(planes, mask);
  OpenMaskBySquares(mask);
  scan.reduction = reduction;
  int count = 0;
  for (std::int32_t row = 0; row < height; ++row) {
    for (std::int32_t column = 0; column < width; ++column) {
      const std::size_t at = mask.at(column, row);
      if (mask.foreground[at] == 0 || mask.visited[at] != 0) continue;
      const FilledRegion region = ImgFillRegion(column, row, mask);
      const Box& box = region.box;
      if (box.right - box.left <= kMostDroppedWidth || box.bottom - box.top <= kMostDroppedHeight) {
        continue;
      }
      scan.regionRects[count] = {box.left * reduction, box.top * reduction, box.right * reduction,
                                 box.bottom * reduction};
      ends.take(region, width);
      ends.addTo(edge, box);
      StoreOutline(edge.hull(), box, scan, count);
      if (++count == kMostRegions) return count;
    }
  }
  return count;
}

}  // namespace orvo
