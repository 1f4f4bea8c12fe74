// Adjustments of hue and saturation: a pixel's new channels depend on all three old ones. Grays
// stay as they are.
#ifndef MODULES_LTIMG13N_HUE_SATURATION_H
#define MODULES_LTIMG13N_HUE_SATURATION_H

#include <algorithm>

#include "common/color.h"

namespace modules {

// Turns the hue round the colour circle: 120 degrees make red green, green blue and blue red. The
// strongest and the weakest channel's values stay, only which channels have them changes.
class HueTurn {
 public:
  // Any number of hundredths of a degree.
  explicit HueTurn(int hundredths) : shift_((hundredths % kTurn + kTurn) % kTurn) {}

  Color operator()(Color color) const {
    const int red = color.red;
    const int green = color.green;
    const int blue = color.blue;
    const int most = std::max({red, green, blue});
    const int least = std::min({red, green, blue});
    const int range = most - least;
    if (range == 0) return color;

    // The hue as a place on a circle of six sides, each `side` long: all in exact integers.
    const int side = range * kSide;
    int place = kSide * (most == red     ? green - blue
                         : most == green ? blue - red + 2 * range
                                         : red - green + 4 * range);
    place += range * shift_;
    if (place < 0) place += 6 * side;
    if (place >= 6 * side) place -= 6 * side;

    const int sideIndex = place / side;
    const int step = (place - sideIndex * side + kSide / 2) / kSide;
    return ColorOn(sideIndex, static_cast<std::uint8_t>(most), static_cast<std::uint8_t>(least),
                   static_cast<std::uint8_t>(sideIndex % 2 == 0 ? least + step : most - step));
  }

 private:
  static constexpr int kTurn = 36000;
  static constexpr int kSide = kTurn / 6;

  static Color ColorOn(int side, std::uint8_t most, std::uint8_t least, std::uint8_t between) {
    switch (side) {
      case 0:  // red to yellow
        return {.blue = least, .green = between, .red = most};
      case 1:  // yellow to green
        return {.blue = least, .green = most, .red = between};
      case 2:  // green to cyan
        return {.blue = between, .green = most, .red = least};
      case 3:  // cyan to blue
        return {.blue = most, .green = between, .red = least};
      case 4:  // blue to magenta
        return {.blue = most, .green = least, .red = between};
      default:  // magenta to red
        return {.blue = between, .green = least, .red = most};
    }
  }

  int shift_;
};

// Moves each channel away from the pixel's luma (299 R + 587 G + 114 B) / 1000, or towards it: the
// distance grows by change thousandths, so -1000 gives gray and 1000 doubles it.
class SaturationScale {
 public:
  // change: -1000..1000.
  explicit SaturationScale(int change) : factor_(kScale + change) {}

  Color operator()(Color color) const {
    const int luma = 299 * color.red + 587 * color.green + 114 * color.blue;
    return {scaled(color.blue, luma), scaled(color.green, luma), scaled(color.red, luma)};
  }

 private:
  static constexpr int kScale = 1000;
  static constexpr int kUnit = kScale * kScale;

  // luma in thousandths. Exact in 32 bits: below 2^31 at the widest.
  [[nodiscard]] std::uint8_t scaled(int tone, int luma) const {
    const int millionths = luma * kScale + (tone * kScale - luma) * factor_;
    return millionths <= 0 ? ClampedTone(0) : ClampedTone((millionths + kUnit / 2) / kUnit);
  }

  int factor_;
};

}  // namespace modules

#endif  // MODULES_LTIMG13N_HUE_SATURATION_H
