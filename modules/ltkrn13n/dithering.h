// Turns rows of colours into indexes of a palette, so that the eye makes up for colours that the
// palette lacks.
#ifndef MODULES_LTKRN13N_DITHERING_H
#define MODULES_LTKRN13N_DITHERING_H

#include <memory>
#include <span>

#include "common/color.h"

namespace modules {

// By number, as callers give them; any other number means none.
enum class DitheringMode : unsigned {
  kNone = 0,
  kFloydSteinberg = 1,
  kStucki = 2,
  kBurkes = 3,
  kSierra = 4,
  kStevensonArce = 5,
  kJarvisJudiceNinke = 6,
  kOrdered = 7,    // by a dispersed matrix of 8 x 8
  kClustered = 8,  // by a matrix of 4 x 4 whose dots grow from their middle
};

class Ditherer {
 public:
  Ditherer() = default;
  virtual ~Ditherer() = default;
  Ditherer(const Ditherer&) = delete;
  Ditherer& operator=(const Ditherer&) = delete;

  // Indexes of the next row; rows come in order.
  virtual void nextRow(std::span<const Color> colors, std::uint8_t* indexes) = 0;
};

// A ditherer for rows of `width` pixels; the palette has 1 to 256 colours.
std::unique_ptr<Ditherer> MakeDitherer(DitheringMode mode, std::span<const Color> palette,
                                       std::size_t width);

}  // namespace modules

#endif  // MODULES_LTKRN13N_DITHERING_H
