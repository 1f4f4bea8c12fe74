// Palette indexes of a row, one byte each.
#ifndef MODULES_PICTURES_INDEX_ROWS_H
#define MODULES_PICTURES_INDEX_ROWS_H

#include "common/dib_image.h"
#include "common/pixel_formats.h"

namespace modules {

// The indexes of a stored row, width of them; 8 bits and below.
inline void ReadIndexes(const Pixels& image, int y, std::uint8_t* indexes) {
  const std::uint8_t* const row = image.row(y);
  const auto read = [&](auto format) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(image.width); ++x) {
      indexes[x] = format.read(row, x);
    }
  };
  if (image.depth == 1) return read(Format1{});
  if (image.depth == 4) return read(Format4{});
  read(Format8{});
}

}  // namespace modules

#endif  // MODULES_PICTURES_INDEX_ROWS_H
