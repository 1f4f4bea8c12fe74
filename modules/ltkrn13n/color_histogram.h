// How often an image shows each colour: every colour by itself while there are not too many, else
// near colours together.
#ifndef MODULES_LTKRN13N_COLOR_HISTOGRAM_H
#define MODULES_LTKRN13N_COLOR_HISTOGRAM_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/color.h"

namespace modules {

// Pixels of one colour, or of near colours.
struct ColorBin {
  std::uint32_t key;
  std::uint64_t pixels;
  std::array<std::uint64_t, 3> sums;  // of blue, green, red

  [[nodiscard]] double mean(std::size_t channel) const {
    return static_cast<double>(sums[channel]) / static_cast<double>(pixels);
  }
};

class ColorHistogram {
 public:
  ColorHistogram();

  void add(const Color* colors, std::size_t count);
  // In the order in which they were met.
  [[nodiscard]] const std::vector<ColorBin>& bins() const { return bins_; }
  // Whether each bin holds one colour.
  [[nodiscard]] bool isExact() const { return channelMask_ == 0xFF; }

 private:
  ColorBin& binOf(std::uint32_t bits);
  [[nodiscard]] std::uint32_t keyOf(std::uint32_t bits) const {
    return bits & channelMask_ * 0x010101U;
  }
  void coarsen();

  std::uint32_t channelMask_ = 0xFF;  // the bits of a channel that tell bins apart
  std::vector<ColorBin> bins_;
  std::vector<std::uint32_t> places_;  // hash table: number of a bin plus 1, 0 where empty
};

}  // namespace modules

#endif  // MODULES_LTKRN13N_COLOR_HISTOGRAM_H
