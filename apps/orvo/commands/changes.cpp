#include "changes.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include <orvo/dib_block.h>

namespace client {
namespace {

constexpr int kReach = 4;  // pixels without a change that part two rectangles at least

using orvo::LockedImage;

const std::uint8_t* RowFromTop(const LockedImage& image, int y) {
  return image.row(image.layout().height - 1 - y);
}

bool HaveOneShape(const LockedImage& a, const LockedImage& b) {
  if (!a || !b) return false;
  return std::tie(a.layout().width, a.layout().height, a.layout().depth) ==
         std::tie(b.layout().width, b.layout().height, b.layout().depth);
}

// Bytes of a pixel that hold colour: all, but for the fourth.
std::size_t ColorBytes(const orvo::DibLayout& layout) {
  return std::min<std::size_t>(static_cast<std::size_t>(layout.depth) / 8, 3);
}

bool Near(const RECT& a, const RECT& b) {
  return a.left <= b.right + kReach && b.left <= a.right + kReach && a.top <= b.bottom + kReach &&
         b.top <= a.bottom + kReach;
}

// Adds a rectangle, joined with all that are near it and then near what has been joined.
void Join(Rects& rects, RECT added) {
  const auto isNear = [&added](const RECT& rect) { return Near(rect, added); };
  for (auto near = std::find_if(rects.begin(), rects.end(), isNear); near != rects.end();
       near = std::find_if(rects.begin(), rects.end(), isNear)) {
    added = {std::min(added.left, near->left), std::min(added.top, near->top),
             std::max(added.right, near->right), std::max(added.bottom, near->bottom)};
    rects.erase(near);
  }
  rects.push_back(added);
}

// Adds the stretches of a row in which the two differ.
void JoinRow(Rects& rects, const LockedImage& before, const LockedImage& after, int y) {
  const orvo::DibLayout& layout = before.layout();
  const std::uint8_t* const old = RowFromTop(before, y);
  const std::uint8_t* const fresh = RowFromTop(after, y);
  const std::size_t step = static_cast<std::size_t>(layout.depth) / 8;
  const auto differs = [&, bytes = ColorBytes(layout)](int x) {
    const std::size_t at = step * static_cast<std::size_t>(x);
    return std::memcmp(old + at, fresh + at, bytes) != 0;
  };
  for (int x = 0; x < layout.width; ++x) {
    const int left = x;
    while (x < layout.width && differs(x)) ++x;
    if (left < x) Join(rects, {left, y, x, y + 1});
  }
}

}  // namespace

Rects ChangedParts(DibHandle before, DibHandle after) {
  const LockedImage old(before);
  const LockedImage fresh(after);
  Rects rects;
  if (!HaveOneShape(old, fresh)) return rects;
  for (int y = 0; y < old.layout().height; ++y) {
    if (std::memcmp(RowFromTop(old, y), RowFromTop(fresh, y), old.layout().stride) != 0) {
      JoinRow(rects, old, fresh, y);
    }
  }
  std::sort(rects.begin(), rects.end(),
            [](const RECT& a, const RECT& b) { return a.left < b.left; });
  return rects;
}

}  // namespace client
