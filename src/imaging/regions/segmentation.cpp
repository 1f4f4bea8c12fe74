#include "imaging/regions/segmentation.h"

#include <algorithm>
#include <new>
#include <utility>

namespace orvo {

namespace {

class Flood {
 public:
  Flood(Mask& mask, Segments& segments) : mask_(mask), segments_(segments) {}

  // Moves the part that holds a foreground pixel from the mask to a new region.
  void from(int x, int y) {
    const int label = static_cast<int>(segments_.regions.size());
    PixelRegion& region = segments_.regions.emplace_back();
    reach(x, y, label);
    while (!points_.empty()) {
      const POINT point = points_.back();
      points_.pop_back();
      if (!region.AddPixel(point.x, point.y)) throw std::bad_alloc();
      const int right = std::min(point.x + 1, mask_.width - 1);
      const int bottom = std::min(point.y + 1, mask_.height - 1);
      for (int j = std::max(point.y - 1, 0); j <= bottom; ++j) {
        for (int i = std::max(point.x - 1, 0); i <= right; ++i) reach(i, j, label);
      }
    }
  }

 private:
  // The mask byte is the only mark of what was reached.
  void reach(int x, int y, int label) {
    const std::size_t index = mask_.index(x, y);
    if (mask_.bytes[index] == 0) return;
    mask_.bytes[index] = 0;
    segments_.labels[index] = label;
    points_.push_back({x, y});
  }

  Mask& mask_;
  Segments& segments_;
  std::vector<POINT> points_;
};

}  // namespace

Segments FindSegments(Mask mask, int seedStep) {
  Segments segments{
      mask.width, mask.height, {}, std::vector<int>(mask.bytes.size(), Segments::kNone)};
  Flood flood(mask, segments);
  for (int y = 0; y < mask.height; y += seedStep) {
    for (int x = y % 2 * (seedStep / 2); x < mask.width; x += seedStep) {
      if (mask.bytes[mask.index(x, y)] != 0) flood.from(x, y);
    }
  }
  return segments;
}

}  // namespace orvo
