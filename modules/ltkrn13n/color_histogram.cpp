#include "ltkrn13n/color_histogram.h"

#include <utility>

namespace modules {
namespace {

// With five bits of each channel left, no image has more bins than this.
constexpr std::size_t kMostBins = std::size_t{1} << 15;
constexpr unsigned kPlaceBits = 16;
constexpr std::size_t kPlaces = std::size_t{1} << kPlaceBits;

std::uint32_t BitsOf(Color color) {
  return color.blue | std::uint32_t{color.green} << 8 | std::uint32_t{color.red} << 16;
}

std::size_t FirstPlaceOf(std::uint32_t key) {
  constexpr std::uint32_t kMixer = 2654435761U;  // 2^32 by the golden ratio: spreads near colours
  return key * kMixer >> (32 - kPlaceBits);
}

}  // namespace

ColorHistogram::ColorHistogram() : places_(kPlaces) {}

void ColorHistogram::add(const Color* colors, std::size_t count) {
  std::size_t i = 0;
  while (i < count) {
    const Color color = colors[i];
    std::size_t end = i + 1;
    while (end < count && colors[end] == color) ++end;
    const std::uint64_t pixels = end - i;
    ColorBin& bin = binOf(BitsOf(color));
    bin.pixels += pixels;
    bin.sums[0] += pixels * color.blue;
    bin.sums[1] += pixels * color.green;
    bin.sums[2] += pixels * color.red;
    i = end;
  }
}

ColorBin& ColorHistogram::binOf(std::uint32_t bits) {
  std::uint32_t key = keyOf(bits);
  std::size_t place = FirstPlaceOf(key);
  while (places_[place] != 0) {
    ColorBin& bin = bins_[places_[place] - 1];
    if (bin.key == key) return bin;
    place = (place + 1) % kPlaces;
  }
  if (bins_.size() == kMostBins) {
    coarsen();
    return binOf(bits);
  }
  bins_.push_back({.key = key, .pixels = 0, .sums = {}});
  places_[place] = static_cast<std::uint32_t>(bins_.size());
  return bins_.back();
}

// Drops the lowest bit of each channel that still tells bins apart.
void ColorHistogram::coarsen() {
  channelMask_ = channelMask_ << 1 & 0xFF;
  places_.assign(kPlaces, 0);
  const std::vector<ColorBin> finer = std::exchange(bins_, {});
  for (const ColorBin& part : finer) {
    ColorBin& bin = binOf(part.key);
    bin.pixels += part.pixels;
    for (std::size_t channel = 0; channel < 3; ++channel) bin.sums[channel] += part.sums[channel];
  }
}

}  // namespace modules
