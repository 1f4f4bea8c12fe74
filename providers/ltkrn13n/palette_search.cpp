#include "ltkrn13n/palette_search.h"

#include <limits>

namespace provider {

PaletteSearch::PaletteSearch(std::span<const Color> entries)
    : entries_(entries.begin(), entries.end()) {
  const Color black{};
  known_.assign(std::size_t{1} << kPlaceBits, {black, search(black)});
}

std::uint8_t PaletteSearch::search(Color color) const {
  std::size_t best = 0;
  int least = std::numeric_limits<int>::max();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const int blue = entries_[i].blue - color.blue;
    const int green = entries_[i].green - color.green;
    const int red = entries_[i].red - color.red;
    const int distance = blue * blue + green * green + red * red;
    if (distance < least) {
      least = distance;
      best = i;
    }
  }
  return static_cast<std::uint8_t>(best);
}

}  // namespace provider
