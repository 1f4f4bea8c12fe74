// The second half of the automatic run in plain steps: eyes in a region, and what is made of them.
#ifndef TESTS_IMAGING_REDEYE_PLAIN_AUTO_H
#define TESTS_IMAGING_REDEYE_PLAIN_AUTO_H

#include "imaging/redeye/plain_red_eye.h"

using namespace orvo;

namespace plain {

inline int ApproxSqrt(int v, int g) {
  if (v < 0) return 1;
  for (int round = 0; round < 20; ++round) {
    const int next = (v / g + g) / 2;
    const int delta = std::abs(g - next);
    g = next;
    if (delta < 3) break;
  }
  return g;
}

// --- Eyes in one region --------------------------------------------------------------------------

class EyeSearch {
 public:
  EyeSearch(RedEyeScan& scan, Planes& planes, int region)
      : scan_(scan),
        planes_(planes),
        rect_(scan.regionRects[region]),
        fw_(rect_.right - rect_.left + 1),
        fh_(rect_.bottom - rect_.top + 1),
        red_(fw_, fh_),
        white_(fw_, fh_) {}

  int run() {
    red_.eachInner([&](int c, int k) {
      const YCbCrBytes p = planes_.get(rect_.left + c, rect_.top + k);
      red_.foreground(c, k) = IsRed(p.y, p.cb, p.cr) ? 1 : 0;
      white_.foreground(c, k) = IsWhite(p.y, p.cb, p.cr) ? 1 : 0;
    });
    Open(red_, kCross);
    std::size_t count = 0;
    red_.eachInner([&](int c, int k) {
      if (count == 4 || red_.foreground(c, k) == 0 || red_.visited(c, k) != 0) return;
      const YCbCrBytes p = planes_.get(rect_.left + c, rect_.top + k);
      if (IsSkin(p.y, p.cb, p.cr)) return note("seed like skin");
      const Blob blob = Fill(c, k, red_);
      int r = 0;
      if (!isPupil(blob, r) || isFlat(blob, r) || !hasWhite(blob, r)) return;
      scan_.eyeRects[count++] = reduce(blob, r);
      note(count == 4 ? "fourth candidate" : "candidate");
    });
    return static_cast<int>(count);
  }

 private:
  void note(const char* what) const { Note(scan_.reduction, what); }
  [[nodiscard]] bool fails(const char* why) const { return note(why), false; }

  bool isPupil(const Blob& blob, int& r) const {
    const Box& b = blob.box;
    const int across = b.right - b.left;
    const int along = b.bottom - b.top;
    if (static_cast<double>(blob.area) < 3.14159) return fails("small area");
    if (b.left < 6 || b.top < 6 || b.right >= fw_ - 5 || b.bottom >= fh_ - 5) {
      return fails("near the edge");
    }
    if (across * along >= 3 * blob.area) return fails("fills too little of its box");
    if (across >= 2 * along) return fails("too wide");
    if (along >= 2 * across) return fails("too tall");
    if (blob.y <= fh_ / 3) return fails("below the band");
    if (blob.y >= 7 * fh_ / 8) return fails("above the band");
    r = Radius(blob.area);
    if (r > fw_ / 16) return fails("too large");
    if (r == 0) return fails("radius 0");
    if (r < scan_.reduction / 2) return fails("too small");
    if (r == 1) {
      note("radius 1");
      r = 2;
    }
    return true;
  }

  [[nodiscard]] Box boxAround(const Blob& blob, int reach) const {
    const int x = rect_.left + blob.x;
    const int y = rect_.top + blob.y;
    return {std::max(x - reach, rect_.left), std::max(y - reach, rect_.top),
            std::min(x + reach, rect_.right), std::min(y + reach, rect_.bottom)};
  }

  int spread(const Box& box, int plane) {
    const std::int64_t n = std::int64_t{box.right - box.left + 1} * (box.bottom - box.top + 1);
    const auto sumOf = [&](auto function) {
      std::int64_t sum = 0;
      for (int y = box.top; y <= box.bottom; ++y) {
        for (int x = box.left; x <= box.right; ++x) sum += function(planes_.plane(x, y, plane));
      }
      return sum;
    };
    const auto mean = static_cast<int>(sumOf([](int byte) { return byte; }) / n);
    const auto squares = sumOf([&](int byte) { return (byte - mean) * (byte - mean); });
    return ApproxSqrt(static_cast<int>(squares / (n - 1)), 10);
  }

  bool isFlat(const Blob& blob, int r) {
    const Box box = boxAround(blob, 3 * r);
    if (spread(box, 0) < 20) return note("flat luma"), true;
    if (spread(box, 1) < 2) return note("flat Cb"), true;
    if (spread(box, 2) < 5) return note("flat Cr"), true;
    return false;
  }

  bool hasWhite(const Blob& blob, int r) {
    int sum = 0;
    for (int y = blob.y - r; y <= blob.y + r; ++y) {
      if (y <= 0 || y >= fh_) continue;
      for (int x = blob.x - 4 * r; x <= blob.x - r - 1; ++x) {
        if (x > 0) sum += white_.foreground(x, y);
      }
      for (int x = blob.x + r; x <= blob.x + 4 * r - 1; ++x) {
        if (x < fw_) sum += white_.foreground(x, y);
      }
    }
    return sum >= r || fails("no white beside it");
  }

  Box reduce(const Blob& blob, int r) {
    const double rd = r;
    const double outer = 1.25 * rd;
    const auto q = static_cast<int>(outer + 0.5);
    const Box box = boxAround(blob, q);
    if (box.right - box.left < 2 * q || box.bottom - box.top < 2 * q) note("box cut");
    const int mx = (box.left + box.right) / 2;
    const int my = (box.top + box.bottom) / 2;
    for (int y = box.top; y < box.bottom; ++y) {
      for (int x = box.left; x < box.right; ++x) {
        const double d = Distance(x - mx, y - my);
        const int m = red_.foreground(x - rect_.left, y - rect_.top) != 0 ? 0 : 1;
        const YCbCrBytes p = planes_.get(x, y);
        if (d <= rd) {
          planes_.set(x, y, {static_cast<std::uint8_t>(p.y - (p.y >> 2)), 128, 128});
        } else if (d < outer) {
          planes_.set(x, y, {p.y, Feather(p.cb, m, d, rd), Feather(p.cr, m, d, rd)});
        }
      }
    }
    return box;
  }

  RedEyeScan& scan_;
  Planes& planes_;
  const Box rect_;
  const int fw_;
  const int fh_;
  Mask red_;
  Mask white_;
};

// --- Decisions -----------------------------------------------------------------------------------

inline bool IsPair(const RedEyeScan& scan, int i, int j) {
  const Box& a = scan.eyeRects[i];
  const Box& b = scan.eyeRects[j];
  const int dx = (b.left + b.right) / 2 - (a.left + a.right) / 2;
  const int dy = (b.top + b.bottom) / 2 - (a.top + a.bottom) / 2;
  const auto no = [&](const char* why) { return Note(scan.reduction, why), false; };
  if (std::abs(dy) > std::abs(dx) / 3) return no("no pair: one above the other");
  if ((a.right - a.left) / (b.right - b.left) > 1) return no("no pair: first twice as wide");
  if ((b.right - b.left) / (a.right - a.left) > 1) return no("no pair: second twice as wide");
  return true;
}

inline int KeepPairs(RedEyeScan& scan, int n) {
  std::set<int> kept;
  int pairs = 0;
  for (int i = 0; i < n && pairs < 2; ++i) {
    for (int j = i + 1; j < n && pairs < 2; ++j) {
      if (!IsPair(scan, i, j)) continue;
      kept.insert({i, j});
      ++pairs;
    }
  }
  int count = 0;
  for (const int index : kept) scan.eyeRects[count++] = scan.eyeRects[index];
  return count;
}

// Marks of the outline, by column.
inline std::vector<std::set<int>> DrawOutline(const RedEyeScan& scan, int region, int fw) {
  std::vector<std::set<int>> marks(static_cast<std::size_t>(fw));
  const auto mark = [&](int x, int y) { marks.at(static_cast<std::size_t>(x)).insert(y); };
  for (int k = 0; k < scan.outlineCounts[region]; ++k) {
    const POINT cur = scan.outlines[region][k];
    const POINT nxt = scan.outlines[region][(k + 1) % scan.outlineCounts[region]];
    const int dx = nxt.x - cur.x;
    if (dx == 0) {
      mark(cur.x, cur.y);
      mark(cur.x, nxt.y);
      continue;
    }
    const double slope = (nxt.y - cur.y) / static_cast<double>(dx);
    const int step = dx > 0 ? 1 : -1;
    for (int t = 0; cur.x + t != nxt.x; t += step) {
      mark(cur.x + t, static_cast<int>(t * slope + cur.y));
    }
  }
  return marks;
}

inline int CheckInOutline(RedEyeScan& scan, int region, int n) {
  const int s = scan.reduction;
  const Box r = scan.regionRects[region];
  const int fw = r.right - r.left + 1;
  const int fh = r.bottom - r.top + 1;
  if (fw > fh) return Note(s, "region wider than tall"), 0;
  if (fh > 2 * fw) return Note(s, "region more than twice as tall"), 0;
  const std::vector<std::set<int>> marks = DrawOutline(scan, region, fw);
  const auto isKept = [&](const Box& eye) {
    const int cx = (eye.left + eye.right) / 2;
    const int cy = (eye.top + eye.bottom) / 2;
    const auto no = [&](const char* why) { return Note(s, why), false; };
    if (cx <= r.left + s) return no("at the left");
    if (cx >= r.right - s) return no("at the right");
    if (cy <= r.top + fh / 2) return no("in the lower half");
    const std::set<int>& column = marks[static_cast<std::size_t>(cx - r.left)];
    if (column.empty()) Note(s, "column without a mark");
    const int a = column.empty() ? fh : *column.begin();
    const int b = column.empty() ? fh : fh - *column.rbegin();
    if (cy <= r.top + a) return no("below the outline");
    if (cy >= r.bottom - b) return no("above the outline");
    Note(s, "inside the outline");
    return true;
  };
  int count = 0;
  for (int i = 0; i < n; ++i) {
    if (isKept(scan.eyeRects[i])) scan.eyeRects[count++] = scan.eyeRects[i];
  }
  return count;
}

inline int Decide(RedEyeScan& scan, int region, int m) {
  static const char* const kNames[] = {"no candidate", "one candidate", "two that are no pair",
                                       "three candidates", "four candidates"};
  if (m == 2 && IsPair(scan, 0, 1)) return Note(scan.reduction, "a pair"), 2;
  Note(scan.reduction, kNames[m]);
  if (m == 0) return 0;
  return m <= 2 ? CheckInOutline(scan, region, m) : KeepPairs(scan, m);
}

// --- The run -------------------------------------------------------------------------------------

inline void WriteBack(std::uint8_t* target, const Image& image, Planes& planes, const Box& eye) {
  for (int y = eye.top + 1; y <= eye.bottom - 1; ++y) {
    for (int x = eye.left + 1; x <= eye.right - 1; ++x) {
      StoreAt(target, image, x, y, planes.get(x, y));
    }
  }
}

inline int AutoRedEye(const std::uint8_t* source, std::uint8_t* target, const Image& image) {
  const std::uint32_t s = std::max(std::max(image.width, image.height) >> 8, 1U);
  CopyAll(source, target, image);
  const auto step = static_cast<int>(s);
  Planes planes(image.width / s, image.height / s);
  for (int y = 0; y < planes.height; ++y) {
    for (int x = 0; x < planes.width; ++x) {
      planes.set(x, y, ColorAt(source, image, x * step, y * step));
    }
  }
  RedEyeScan scan{};
  const int regions = FindRegions(scan, planes, step);
  if (s > 1) planes = Planes(image.width, image.height);
  int total = 0;
  for (int region = 0; region < regions; ++region) {
    const Box r = scan.regionRects[region];
    for (int y = r.top; s > 1 && y <= r.bottom; ++y) {
      for (int x = r.left; x <= r.right; ++x) planes.set(x, y, ColorAt(source, image, x, y));
    }
    const int kept = Decide(scan, region, EyeSearch(scan, planes, region).run());
    for (int i = 0; i < kept; ++i) WriteBack(target, image, planes, scan.eyeRects[i]);
    total += kept;
  }
  return total == 0 ? 1 : 0;
}

}  // namespace plain

#endif  // TESTS_IMAGING_REDEYE_PLAIN_AUTO_H
