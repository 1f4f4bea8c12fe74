// Random pages of the kinds that make the finder's rules matter.
#ifndef TESTS_IMAGING_REGIONS_PAGES_H
#define TESTS_IMAGING_REGIONS_PAGES_H

#include <algorithm>
#include <random>

#include <orvo/platform.h>

#include "imaging/regions/mask.h"

using namespace orvo;

namespace pages {

class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}
  int upTo(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most + 1)); }

 private:
  std::mt19937 random_;
};

inline void Fill(Mask& page, const RECT& box, std::uint8_t value) {
  for (int y = std::max(box.top, 0); y < std::min(box.bottom, page.height); ++y) {
    for (int x = std::max(box.left, 0); x < std::min(box.right, page.width); ++x) {
      page.bytes[page.index(x, y)] = value;
    }
  }
}

// Blocks, frames with a patch inside, staircases that touch at corners only, combs, and specks.
inline Mask Random(int width, int height, unsigned seed) {
  Dice dice(seed);
  Mask page{width, height, {}};
  page.bytes.resize(page.index(0, height));
  for (int items = dice.upTo(24); items >= 0; --items) {
    const int x = dice.upTo(width);
    const int y = dice.upTo(height);
    const int w = 1 + dice.upTo(width / 4);
    const int h = 1 + dice.upTo(height / 4);
    switch (dice.upTo(4)) {
      case 0:
        Fill(page, {x, y, x + w, y + h}, 1);
        break;
      case 1:
        Fill(page, {x, y, x + w, y + h}, 1);
        Fill(page, {x + 1, y + 1, x + w - 1, y + h - 1}, 0);
        Fill(page, {x + w / 4, y + h / 4, x + w / 2, y + h / 2}, 1);
        break;
      case 2:
        for (int k = 0; k < w; ++k) Fill(page, {x + k, y + k, x + k + 1, y + k + 1}, 1);
        break;
      case 3:
        for (int k = 0; k < w; k += 2) Fill(page, {x + k, y, x + k + 1, y + h}, 1);
        break;
      default:
        for (int k = 0; k < w; ++k) {
          const int speckX = x + dice.upTo(w);
          const int speckY = y + dice.upTo(h);
          Fill(page, {speckX, speckY, speckX + 1, speckY + 1}, 1);
        }
    }
  }
  return page;
}

}  // namespace pages

#endif  // TESTS_IMAGING_REGIONS_PAGES_H
