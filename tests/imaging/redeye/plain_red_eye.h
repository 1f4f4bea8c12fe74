// Red-eye in plain steps: search and reduction at a point, and the automatic run, which notes each
// decision that it takes.
#ifndef TESTS_IMAGING_REDEYE_PLAIN_RED_EYE_H
#define TESTS_IMAGING_REDEYE_PLAIN_RED_EYE_H

#include "imaging/adjust/plain_image.h"
#include "imaging/adjust/ycbcr.h"
#include "imaging/redeye/plain_shapes.h"
#include "imaging/redeye/red_eye_scan.h"
#include "imaging/redeye/search.h"

using namespace orvo;

namespace plain {

// How often a decision was taken: without reduction, and with it.
inline std::map<std::string, std::array<int, 2>> decisions;
inline void Note(int reduction, const char* what) {
  ++decisions[what][reduction > 1 ? 1 : 0];
}

inline YCbCrBytes ColorAt(const std::uint8_t* pixels, const Image& image, int x, int y) {
  const std::uint8_t* const p =
      pixels + image.at(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
  return ToYCbCrBytes(p[2], p[1], p[0]);
}

inline void StoreAt(std::uint8_t* pixels, const Image& image, int x, int y,
                    const YCbCrBytes& color) {
  std::uint8_t* const p =
      pixels + image.at(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
  const int cb = color.cb - 128;
  const int cr = color.cr - 128;
  p[0] = Limited(static_cast<int>(color.y + 1.772 * cb));
  p[1] = Limited(static_cast<int>(color.y - 0.34414 * cb - 0.71414 * cr));
  p[2] = Limited(static_cast<int>(color.y + 1.402 * cr));
}

inline double Distance(int dx, int dy) {
  return std::sqrt(static_cast<double>(dx * dx + dy * dy));
}

inline std::uint8_t Feather(int chroma, int m, double d, double radius) {
  return Limited(static_cast<int>((chroma - 128) * m * (d - radius) * 4.0 / radius + 128.0));
}

// --- At a point ----------------------------------------------------------------------------------

inline int Search(const std::uint8_t* source, const Image& image, std::uint32_t x, std::uint32_t y,
                  PupilCircle& found) {
  found = {x, y, 0};
  if (x > image.width - 1 || y > image.height - 1) return 1;
  const std::uint32_t s = std::max(std::max(image.width, image.height) >> 9, 1U);
  const auto q =
      static_cast<int>(std::min({25 * s, x, y, image.width - 1 - x, image.height - 1 - y}));
  const int left = static_cast<int>(x) - q;
  const int top = static_cast<int>(y) - q;
  Mask mask(2 * q + 1, 2 * q + 1);
  mask.eachInner([&](int c, int k) {
    const YCbCrBytes p = ColorAt(source, image, left + c, top + k);
    const bool close = Distance(c - q, k - q) <= s;
    const bool wanted = IsRed(p.y, p.cb, p.cr) || (close && IsWhite(p.y, p.cb, p.cr));
    mask.foreground(c, k) = wanted ? 1 : 0;
  });
  Open(mask, kCross);
  const Blob blob = Fill(q, q, mask);
  const int radius = Radius(blob.area);
  found.radius = 2;
  if (radius <= 2) return 1;
  found = {static_cast<std::uint32_t>(left + blob.x), static_cast<std::uint32_t>(top + blob.y),
           static_cast<std::uint32_t>(radius)};
  return 0;
}

inline void Reduce(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                   const PupilCircle& pupil) {
  CopyAll(source, target, image);
  const auto [x, y, radius] = pupil;
  if (x >= image.width || y >= image.height) return;
  const std::uint64_t limit = std::min({x, y, image.width - 1 - x, image.height - 1 - y});
  const auto q = static_cast<int>(std::min(std::uint64_t{radius} + (radius >> 2), limit));
  const double rd = radius;
  for (int dy = -q; dy <= q; ++dy) {
    for (int dx = -q; dx <= q; ++dx) {
      const int column = static_cast<int>(x) + dx;
      const int row = static_cast<int>(y) + dy;
      YCbCrBytes p = ColorAt(source, image, column, row);
      const int m = IsRed(p.y, p.cb, p.cr) ? 0 : 1;
      const double d = Distance(dx, dy);
      if (d < rd) {
        p = {static_cast<std::uint8_t>(p.y - (p.y >> 2)), 128, 128};
      } else if (d < rd * 1.25) {
        p = {p.y, Feather(p.cb, m, d, rd), Feather(p.cr, m, d, rd)};
      }
      StoreAt(target, image, column, row, p);
    }
  }
}

// --- Skin regions --------------------------------------------------------------------------------

struct Planes {
  Planes(std::uint32_t w, std::uint32_t h)
      : width(static_cast<int>(w)), height(static_cast<int>(h)), bytes(std::size_t{3} * w * h) {}
  std::uint8_t& plane(int x, int y, int which) {
    return bytes[static_cast<std::size_t>((which * height + y) * width + x)];
  }
  YCbCrBytes get(int x, int y) { return {plane(x, y, 0), plane(x, y, 1), plane(x, y, 2)}; }
  void set(int x, int y, const YCbCrBytes& color) {
    plane(x, y, 0) = color.y;
    plane(x, y, 1) = color.cb;
    plane(x, y, 2) = color.cr;
  }

  int width;
  int height;
  std::vector<std::uint8_t> bytes;  // one plane after the other
};

// Top and bottom of each column; the marks are cleared on the way. A walk that does not close ends
// the reference, for no region gives one.
inline Points OutlinePoints(Mask& mask, const Box& box, int s) {
  Points list;
  for (int x = box.left; x <= box.right; ++x) {
    int a = box.bottom;
    int b = box.top;
    for (int y = box.bottom; y >= box.top; --y) {
      if (mask.member(x, y) != 0) a = y;
    }
    for (int y = box.top; y <= box.bottom; ++y) {
      if (mask.member(x, y) != 0) b = y;
    }
    for (int y = a; y <= b; ++y) mask.member(x, y) = 0;
    if (a != b) list.insert(list.end(), {{x, a}, {x, b}});
    if (list.size() == 1000) {
      Note(s, "list full");
      if (!Thin(list, 5)) std::abort();
    }
    if (list.size() > 998) break;
  }
  while (list.size() > 200) {
    Note(s, "thinned");
    if (!Thin(list, list.size() / 200)) std::abort();
  }
  return list;
}

inline void StoreOutline(RedEyeScan& scan, std::size_t index, Points list, const Box& box, int s) {
  std::optional<std::size_t> m = Hull(list, 0, list.size());
  if (!m) std::abort();
  if (*m > 19) Note(s, "outline cut at 19");
  m = std::min(*m, std::size_t{19});
  scan.outlineCounts[index] = static_cast<int>(*m);
  for (std::size_t k = 0; k < *m; ++k) {
    scan.outlines[index][k] = {(list[k].x - box.left) * s, (list[k].y - box.top) * s};
  }
}

inline bool IsLargeRegion(const Box& box, int s) {
  if (box.right - box.left <= 10) return Note(s, "region too narrow"), false;
  if (box.bottom - box.top <= 20) return Note(s, "region too low"), false;
  return true;
}

inline int FindRegions(RedEyeScan& scan, Planes& planes, int s) {
  Mask mask(planes.width, planes.height);
  mask.eachInner([&](int x, int y) {
    const YCbCrBytes p = planes.get(x, y);
    mask.foreground(x, y) = IsSkin(p.y, p.cb, p.cr) ? 1 : 0;
  });
  if (mask.width > 2 && mask.height > 2) Open(mask, kSquare);
  scan.reduction = s;
  std::size_t count = 0;
  for (int y = 0; y < mask.height; ++y) {
    for (int x = 0; x < mask.width; ++x) {
      if (mask.foreground(x, y) == 0 || mask.visited(x, y) != 0) continue;
      if (count == 10) return Note(s, "eleventh region"), 10;
      const Box box = Fill(x, y, mask).box;
      if (!IsLargeRegion(box, s)) {
        for (int k = box.top; k <= box.bottom; ++k) {
          for (int c = box.left; c <= box.right; ++c) mask.member(c, k) = 0;
        }
        continue;
      }
      scan.regionRects[count] = {box.left * s, box.top * s, box.right * s, box.bottom * s};
      StoreOutline(scan, count++, OutlinePoints(mask, box, s), box, s);
    }
  }
  return static_cast<int>(count);
}

}  // namespace plain

#endif  // TESTS_IMAGING_REDEYE_PLAIN_RED_EYE_H
