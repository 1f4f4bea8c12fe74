// What a loaded picture says of itself.
#ifndef APPS_ORVO_PICTURE_H
#define APPS_ORVO_PICTURE_H

#include <optional>
#include <span>
#include <string_view>

#include <orvo/dib.h>
#include <orvo/dib_block.h>

#include "report.h"

namespace client {

struct Shape {
  int width;                // pixels
  int height;               // pixels
  int bits;                 // per pixel
  int xDotsPerInch;         // 0 when the picture does not say
  int yDotsPerInch;         // 0 when the picture does not say
  std::string_view colors;  // "gray", "palette" or "true color"
};

// The colours of a picture with this palette; an empty one is of grays.
std::string_view ColorsOf(int bits, std::span<const RGBQUAD> palette);

// Nothing for a null or malformed picture.
std::optional<Shape> ShapeOf(DibHandle picture);

Report Described(const Shape& shape);

// Empty when out of memory, or for a null or malformed picture.
orvo::OwnedDib Copied(DibHandle picture);

// Whether two pictures are the same in every measure, colour, pixel and resolution.
bool AreTheSame(DibHandle one, DibHandle other);

}  // namespace client

#endif  // APPS_ORVO_PICTURE_H
