// Single pixels given another colour; what holds no colour stays. 16 bits and above.
#ifndef MODULES_LTIMG13N_RECOLORED_H
#define MODULES_LTIMG13N_RECOLORED_H

#include "common/pixel_formats.h"

namespace modules {

constexpr Color ColorOf(std::uint16_t pixel) {
  return ColorOf555(pixel);
}
constexpr Color ColorOf(Color pixel) {
  return pixel;
}
constexpr Color ColorOf(WideColor pixel) {
  return pixel.color;
}

constexpr std::uint16_t Recolored(std::uint16_t pixel, Color color) {
  return With555(pixel, color);
}
constexpr Color Recolored(Color /*pixel*/, Color color) {
  return color;
}
constexpr WideColor Recolored(WideColor pixel, Color color) {
  return {color, pixel.rest};
}

}  // namespace modules

#endif  // MODULES_LTIMG13N_RECOLORED_H
