#include "ltimg13n/palette_match.h"

#include <limits>

namespace provider {
namespace {

constexpr std::size_t kPlaces = std::size_t{1} << 14;

std::size_t PlaceOf(Color color) {
  constexpr std::uint32_t kMixer = 2654435761U;  // 2^32 by the golden ratio: spreads near colours
  const std::uint32_t bits =
      color.blue | std::uint32_t{color.green} << 8 | std::uint32_t{color.red} << 16;
  return (bits * kMixer >> 18) % kPlaces;
}

}  // namespace

PaletteMatch::PaletteMatch(const Pixels& image) {
  if (image.palette == nullptr) return;
  for (int i = 0; i < image.paletteSize(); ++i) {
    entries_.push_back(ColorOf(image.palette[i]));
  }
  const Color black = GrayOf(0);
  known_.assign(kPlaces, {black, search(black)});
}

std::uint8_t PaletteMatch::nearest(Color color, std::uint8_t own) {
  Known& known = known_[PlaceOf(color)];
  if (known.color != color) known = {color, search(color)};
  return distance(color, own) == distance(color, known.index) ? own : known.index;
}

int PaletteMatch::distance(Color color, std::size_t index) const {
  const Color& entry = entries_[index];
  const int blue = entry.blue - color.blue;
  const int green = entry.green - color.green;
  const int red = entry.red - color.red;
  return blue * blue + green * green + red * red;
}

std::uint8_t PaletteMatch::search(Color color) const {
  std::size_t best = 0;
  int least = std::numeric_limits<int>::max();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const int here = distance(color, i);
    if (here < least) {
      least = here;
      best = i;
    }
  }
  return static_cast<std::uint8_t>(best);
}

}  // namespace provider
