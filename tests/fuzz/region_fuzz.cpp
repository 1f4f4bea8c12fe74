// Regions beside plain sets of pixels. The input is a list of steps of three bytes.
#include <set>

#include "fuzz.h"
#include "imaging/regions/pixel_region.h"

namespace {

using Pixel = std::pair<int, int>;  // y and x
using Pixels = std::set<Pixel>;

struct Both {
  orvo::PixelRegion region{};
  Pixels pixels{};

  void check() const {
    Pixels found;
    int extents = 0;
    for (const orvo::PixelRow& row : region.rows()) {
      for (const orvo::PixelRun& run : row.runs) {
        for (int x = run.left; x < run.right; ++x) {
          fuzz::Require(found.insert({row.y, x}).second, "runs overlap");
        }
      }
      extents += row.right() - row.left();
    }
    fuzz::Require(found == pixels && region.IsEmpty() == pixels.empty(), "other pixels");
    fuzz::Require(region.RowExtentSum() == extents, "another extent");
    if (!pixels.empty()) checkBox();
  }
  void checkBox() const {
    const RECT box = region.BoundingRect();
    const auto [left, right] = std::ranges::minmax(pixels, {}, &Pixel::second);
    fuzz::Require(box.left == left.second && box.right == right.second + 1 &&
                      box.top == pixels.begin()->first && box.bottom == pixels.rbegin()->first + 1,
                  "another box");
    const POINT centre = region.Centre();
    fuzz::Require(centre.x == (box.left + box.right) / 2 && centre.y == (box.top + box.bottom) / 2,
                  "another centre");
  }
};

Pixels Shared(const Pixels& a, const Pixels& b) {
  Pixels shared;
  std::ranges::set_intersection(a, b, std::inserter(shared, shared.end()));
  return shared;
}

Both Moved(const Both& from, int dx, int dy) {
  Both moved{from.region.Translated(dx, dy)};
  for (const auto& [y, x] : from.pixels) moved.pixels.emplace(y + dy, x + dx);
  return moved;
}

// Two that have pixels in common are never joined.
void Join(Both& to, Both& from) {
  const Pixels shared = Shared(to.pixels, from.pixels);
  const orvo::PixelRegion met = to.region.Intersection(from.region);
  fuzz::Require(met.IsEmpty() == shared.empty(), "another answer whether they meet");
  for (const orvo::PixelRow& row : met.rows()) {
    const Pixel first{row.y, row.left()};
    fuzz::Require(shared.contains(first), "they meet elsewhere");
  }
  if (!shared.empty()) return;
  Both united{to.region.Union(from.region), to.pixels};
  united.pixels.insert(from.pixels.begin(), from.pixels.end());
  united.check();
  to.region.Absorb(std::move(from.region));
  to.pixels = std::move(united.pixels);
  from = {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Both both[2];
  for (; size >= 3; data += 3, size -= 3) {
    Both& one = both[data[0] % 2];
    Both& other = both[1 - data[0] % 2];
    const int x = data[1] % 32 - 16;
    const int y = data[2] % 16 - 8;
    if (data[0] < 224) {
      fuzz::Require(one.region.Contains(x, y) == one.pixels.contains({y, x}), "another answer");
      fuzz::Require(one.region.AddPixel(x, y), "no pixel");
      one.pixels.emplace(y, x);
    } else if (data[0] < 240) {
      one = Moved(one, x, y);
    } else {
      Join(one, other);
    }
    one.check();
    other.check();
  }
  return 0;
}
