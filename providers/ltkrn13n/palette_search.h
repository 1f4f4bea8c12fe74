// Finds the palette entry that shows a colour best.
#ifndef PROVIDERS_LTKRN13N_PALETTE_SEARCH_H
#define PROVIDERS_LTKRN13N_PALETTE_SEARCH_H

#include <cstdint>
#include <span>
#include <vector>

#include "common/color.h"

namespace provider {

class PaletteSearch {
 public:
  // 1 to 256 entries.
  explicit PaletteSearch(std::span<const Color> entries);

  [[nodiscard]] Color color(std::uint8_t index) const { return entries_[index]; }
  // The first entry of the least squared distance.
  std::uint8_t nearest(Color color) {
    Known& known = known_[PlaceOf(color)];
    if (known.color != color) known = {color, search(color)};
    return known.index;
  }

 private:
  // Colours met before, each in the one place that its bits select: neighbouring pixels repeat
  // them.
  struct Known {
    Color color;
    std::uint8_t index;
  };
  static constexpr unsigned kPlaceBits = 16;

  static std::size_t PlaceOf(Color color) {
    constexpr std::uint32_t kMixer = 2654435761U;  // 2^32 by the golden ratio: spreads near colours
    const std::uint32_t bits =
        color.blue | std::uint32_t{color.green} << 8 | std::uint32_t{color.red} << 16;
    return bits * kMixer >> (32 - kPlaceBits);
  }
  [[nodiscard]] std::uint8_t search(Color color) const;

  std::vector<Color> entries_;
  std::vector<Known> known_;
};

}  // namespace provider

#endif  // PROVIDERS_LTKRN13N_PALETTE_SEARCH_H
