#include "imaging/redeye/decisions.h"

#include <algorithm>
#include <cstdlib>

namespace orvo {

namespace {

POINT CentreOf(const Box& box) {
  return {(box.left + box.right) / 2, (box.top + box.bottom) / 2};
}

// Where the outline passes one column of the region: the lowest and the highest row that it marks.
class OutlineColumn {
 public:
  OutlineColumn(std::int32_t column, std::int32_t height) : column_(column), lowest_(height) {}

  // An edge marks every column but its last, which is left to the next edge; an upright one marks
  // its two ends.
  void addEdge(const POINT& from, const POINT& to) {
    const std::int32_t dx = to.x - from.x;
    const std::int32_t t = column_ - from.x;
    if (dx == 0) {
      if (t != 0) return;
      mark(from.y);
      mark(to.y);
    } else if (dx > 0 ? t >= 0 && t < dx : t <= 0 && t > dx) {
      const double slope = (to.y - from.y) / static_cast<double>(dx);
      mark(static_cast<std::int32_t>(t * slope + from.y));
    }
  }

  // Rows strictly between the two marks, one more away from the higher. None without a mark.
  [[nodiscard]] bool encloses(std::int32_t row) const {
    return row > lowest_ && row < highest_ - 1;
  }

 private:
  void mark(std::int32_t row) {
    lowest_ = std::min(lowest_, row);
    highest_ = std::max(highest_, row);
  }

  std::int32_t column_;
  std::int32_t lowest_;
  std::int32_t highest_ = 0;
};

bool LiesInOutline(const RedEyeScan& scan, int region, const Box& eye) {
  const Box& rect = scan.regionRects[region];
  const auto [x, y] = CentreOf(eye);
  if (x <= rect.left + scan.reduction || x >= rect.right - scan.reduction) return false;
  if (y <= rect.top + rect.height() / 2) return false;
  OutlineColumn column(x - rect.left, rect.height());
  const int count = scan.outlineCounts[region];
  const POINT* const vertices = scan.outlines[region];
  for (int i = 0; i < count; ++i) column.addEdge(vertices[i], vertices[(i + 1) % count]);
  return column.encloses(y - rect.top);
}

}  // namespace

bool ImgIsEyePair(const RedEyeScan& scan, int i, int j) noexcept {
  const Box& a = scan.eyeRects[i];
  const Box& b = scan.eyeRects[j];
  const std::int32_t dx = std::abs(CentreOf(a).x - CentreOf(b).x);
  const std::int32_t dy = std::abs(CentreOf(a).y - CentreOf(b).y);
  const std::int32_t widthA = a.right - a.left;
  const std::int32_t widthB = b.right - b.left;
  return dy <= dx / 3 && widthA / widthB <= 1 && widthB / widthA <= 1;
}

int ImgKeepEyePairs(RedEyeScan& scan, int count) noexcept {
  bool kept[kMostEyes] = {};
  int pairs = 0;
  for (int i = 0; i < count; ++i) {
    for (int j = i + 1; j < count && pairs < 2; ++j) {
      if (!ImgIsEyePair(scan, i, j)) continue;
      kept[i] = kept[j] = true;
      ++pairs;
    }
  }
  int number = 0;
  for (int i = 0; i < count; ++i) {
    if (kept[i]) scan.eyeRects[number++] = scan.eyeRects[i];
  }
  return number;
}

int ImgCheckEyesInOutline(RedEyeScan& scan, int region, int count) noexcept {
  const std::int32_t width = scan.regionRects[region].width();
  const std::int32_t height = scan.regionRects[region].height();
  if (width > height || height > 2 * width) return 0;
  Box* const eyes = scan.eyeRects;
  const auto outside = [&](const Box& eye) { return !LiesInOutline(scan, region, eye); };
  return static_cast<int>(std::remove_if(eyes, eyes + count, outside) - eyes);
}

int KeepBelievableEyes(RedEyeScan& scan, int region, int count) noexcept {
  if (count == 0 || (count == 2 && ImgIsEyePair(scan, 0, 1))) return count;
  return count > 2 ? ImgKeepEyePairs(scan, count) : ImgCheckEyesInOutline(scan, region, count);
}

}  // namespace orvo
