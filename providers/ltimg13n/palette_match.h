// Finds the palette entry that shows a colour best.
#ifndef PROVIDERS_LTIMG13N_PALETTE_MATCH_H
#define PROVIDERS_LTIMG13N_PALETTE_MATCH_H

#include <vector>

#include "common/color.h"
#include "common/dib_image.h"

namespace provider {

class PaletteMatch {
 public:
  // The image's palette stays as it is while this object is used; no palette, no matching.
  explicit PaletteMatch(const Pixels& image);

  [[nodiscard]] Color color(std::uint8_t index) const { return entries_[index]; }
  // The entry of the least squared distance. `own`, the pixel's index so far, wins among equals, so
  // that a pixel whose colour stays keeps its index in a palette that repeats colours.
  std::uint8_t nearest(Color color, std::uint8_t own);

 private:
  // Colours met before, each in the one place that its bits select: neighbouring pixels repeat
  // them.
  struct Known {
    Color color;
    std::uint8_t index;
  };

  [[nodiscard]] int distance(Color color, std::size_t index) const;
  [[nodiscard]] std::uint8_t search(Color color) const;

  std::vector<Color> entries_;
  std::vector<Known> known_;
};

}  // namespace provider

#endif  // PROVIDERS_LTIMG13N_PALETTE_MATCH_H
