// What the plain reference of red-eye stands on: colours, masks and hulls, told once more, slowly
// and independently of the shipped code.
#ifndef TESTS_IMAGING_REDEYE_PLAIN_SHAPES_H
#define TESTS_IMAGING_REDEYE_PLAIN_SHAPES_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <orvo/platform.h>

#include "imaging/redeye/red_eye_outlines.h"
#include "imaging/redeye/region_mask.h"

using namespace orvo;

namespace plain {

// --- Colours -------------------------------------------------------------------------------------

inline bool SeesOutline(int y, int cb, int cr) {
  const RedEyeOutline& row = RedEyeOutlines[y];
  std::array<double, 20> a{};
  const auto n = static_cast<std::size_t>(row.count);
  for (std::size_t i = 0; i < n; ++i) {
    const int dCb = row.vertices[i].cb - cb;
    const int dCr = row.vertices[i].cr - cr;
    if (dCb == 0 && dCr == 0) return true;
    a[i] = std::atan2(dCr, dCb);
  }
  double sum = 0;
  for (std::size_t i = 0; i < n; ++i) {
    double d = std::abs(a[(i + 1) % n] - a[i]);
    if (d > 3.14159) d = 6.28318 - d;
    sum += d;
  }
  return sum > 6.0;
}

// The same, each colour measured once.
inline bool IsRed(int y, int cb, int cr) {
  static std::vector<std::int8_t> known(std::size_t{1} << 24, -1);
  std::int8_t& answer = known[static_cast<std::size_t>((y * 256 + cb) * 256 + cr)];
  if (answer < 0) answer = SeesOutline(y, cb, cr) ? 1 : 0;
  return answer == 1;
}

inline bool IsWhite(int y, int cb, int cr) {
  return y >= 129 && cb >= 119 && cb <= 137 && cr >= 116 && cr <= 139;
}

// Steps of (last luma, offset), from luma 50 on.
using Steps = std::vector<std::pair<int, int>>;
inline int StepAt(const Steps& steps, int y) {
  for (const auto& [last, offset] : steps) {
    if (y <= last) return offset;
  }
  return 0;
}

inline bool IsSkin(int y, int cb, int cr) {
  static const Steps cbOffsets = {{50, 72}, {54, 66}, {59, 59},  {63, 54},  {65, 49},  {68, 48},
                                  {72, 43}, {75, 39}, {77, 38},  {81, 34},  {86, 30},  {91, 25},
                                  {95, 22}, {97, 19}, {100, 18}, {104, 15}, {108, 12}, {109, 11},
                                  {113, 8}, {118, 5}, {119, 3},  {122, 2},  {124, 0}};
  static const Steps crOffsets = {{53, 66},  {54, 58}, {59, 59},  {65, 52},  {71, 46},
                                  {75, 39},  {77, 41}, {82, 34},  {86, 28},  {88, 30},
                                  {94, 24},  {97, 19}, {100, 20}, {106, 15}, {108, 10},
                                  {111, 11}, {117, 7}, {119, 3},  {123, 4},  {124, 0}};
  if (y < 50) return false;
  const int a = cb - StepAt(cbOffsets, y) - 109;
  const int b = cr - StepAt(crOffsets, y) - 152;
  const int p = 57 * b - 82 * a - 160;
  const int q = -57 * a - 82 * b - 241;
  return p * p / 645 + q * q / 197 < 10000;
}

// --- Masks ---------------------------------------------------------------------------------------

struct Mask {
  Mask(int w, int h)
      : width(w), height(h), bytes(3 * static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

  std::uint8_t& flag(int x, int y, std::size_t which) {
    return bytes[static_cast<std::size_t>(y * width + x) * 3 + which];
  }
  std::uint8_t& visited(int x, int y) { return flag(x, y, 0); }
  std::uint8_t& foreground(int x, int y) { return flag(x, y, 1); }
  std::uint8_t& member(int x, int y) { return flag(x, y, 2); }
  template <class Function>
  void eachInner(Function function) {
    for (int y = 1; y < height - 1; ++y) {
      for (int x = 1; x < width - 1; ++x) function(x, y);
    }
  }

  int width;
  int height;
  std::vector<std::uint8_t> bytes;
};

using Element = std::vector<std::pair<int, int>>;
inline const Element kCross = {{0, -1}, {-1, 0}, {0, 0}, {1, 0}, {0, 1}};
inline const Element kSquare = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {0, 0},
                                {1, 0},   {-1, 1}, {0, 1},  {1, 1}};

inline void Open(Mask& mask, const Element& element) {
  mask.eachInner([&](int x, int y) {
    bool all = true;
    for (const auto& [dx, dy] : element) all = all && mask.foreground(x + dx, y + dy) != 0;
    mask.visited(x, y) = all ? 1 : 0;
  });
  mask.eachInner([&](int x, int y) {
    bool any = false;
    for (const auto& [dx, dy] : element) any = any || mask.visited(x + dx, y + dy) != 0;
    mask.foreground(x, y) = any ? 1 : 0;
  });
  for (int y = 0; y < mask.height; ++y) {
    for (int x = 0; x < mask.width; ++x) mask.visited(x, y) = 0;
  }
}

struct Blob {
  std::int64_t area;
  Box box;
  int x;  // centroid
  int y;
};

inline Blob Fill(int seedX, int seedY, Mask& mask) {
  Blob region{1, {seedX, seedY, seedX, seedY}, 0, 0};
  std::int64_t sumX = seedX;
  std::int64_t sumY = seedY;
  mask.visited(seedX, seedY) = 1;
  std::deque<std::pair<int, int>> queue = {{seedX, seedY}};
  while (!queue.empty()) {
    const auto [atX, atY] = queue.front();
    queue.pop_front();
    for (const auto& [dx, dy] : kSquare) {
      const int x = atX + dx;
      const int y = atY + dy;
      if (x < 0 || y < 0 || x >= mask.width || y >= mask.height) continue;
      if (mask.foreground(x, y) == 0 || mask.visited(x, y) != 0) continue;
      mask.visited(x, y) = mask.member(x, y) = 1;
      Box& box = region.box;
      box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
             std::max(box.bottom, y)};
      ++region.area;
      sumX += x;
      sumY += y;
      queue.emplace_back(x, y);
    }
  }
  region.x = static_cast<int>(sumX / region.area);
  region.y = static_cast<int>(sumY / region.area);
  return region;
}

inline int Radius(std::int64_t area) {
  return static_cast<int>(std::sqrt(static_cast<double>(area) * 0.31831015504887655) + 0.5);
}

// --- Hulls ---------------------------------------------------------------------------------------

using Points = std::vector<POINT>;

inline double AngleOf(int dx, int dy) {
  if (dx == 0) return dy == 0 ? 0 : dy > 0 ? 90 : 270;
  if (dy == 0) return dx > 0 ? 360 : 180;
  const double degrees = std::atan2(dy, dx) * 57.29582790879778;
  return dy > 0 ? degrees : degrees + 360;
}

// Nothing when there is no candidate.
inline std::optional<std::size_t> NextVertex(const Points& list, std::size_t first,
                                             std::size_t current, std::size_t n) {
  const auto angleTo = [&](std::size_t i) {
    return AngleOf(list[i].x - list[current].x, list[i].y - list[current].y);
  };
  const double back = current == first ? 180.1 : angleTo(current - 1);
  const bool low = back <= 180;
  const bool high = back > 270;
  double best = back;
  int bestDistance = 0;
  std::optional<std::size_t> candidate;
  for (std::size_t i = 0; i < n; ++i) {
    double a = angleTo(first + i);
    if (high && a >= 0 && a < 180) a += 360;
    if (!high && !low && a > 0 && a <= 90) a += 360;
    const int dx = list[first + i].x - list[current].x;
    const int dy = list[first + i].y - list[current].y;
    const int distance = dx * dx + dy * dy;
    if (a > best) {
      best = a;
      bestDistance = distance;
      candidate = first + i;
    } else if (a == best && candidate && i != 0) {
      if (!high && !low && a == 270) continue;
      if (high ? distance < bestDistance : distance > bestDistance) candidate = first + i;
    }
  }
  return candidate;
}

// The number of vertices; nothing for a walk that does not close.
inline std::optional<std::size_t> Hull(Points& list, std::size_t first, std::size_t n) {
  std::size_t current = first;
  std::optional<std::size_t> next = NextVertex(list, first, first, n);
  do {
    if (!next || current + 1 == first + n) return std::nullopt;
    std::swap(list[current + 1], list[*next]);
    ++current;
    next = NextVertex(list, first, current, n);
  } while (next != first);
  std::fill(list.begin() + static_cast<std::ptrdiff_t>(current) + 1,
            list.begin() + static_cast<std::ptrdiff_t>(first + n), list[current]);
  return current - first + 1;
}

inline bool SamePlace(const POINT& a, const POINT& b) {
  return a.x == b.x && a.y == b.y;
}

inline void Tidy(Points& list) {
  list.erase(std::unique(list.begin(), list.end(), SamePlace), list.end());
  std::stable_sort(list.begin(), list.end(), [](const POINT& a, const POINT& b) {
    return std::pair(a.x, a.y) < std::pair(b.x, b.y);
  });
}

// False when a block's walk does not close.
inline bool Thin(Points& list, std::size_t blocks) {
  for (std::size_t b = 0; b < blocks; ++b) {
    if (!Hull(list, 200 * b, 200)) return false;
  }
  Tidy(list);
  return true;
}

}  // namespace plain

#endif  // TESTS_IMAGING_REDEYE_PLAIN_SHAPES_H
