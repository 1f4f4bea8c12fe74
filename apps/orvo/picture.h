// What a loaded picture says of itself.
#ifndef APPS_ORVO_PICTURE_H
#define APPS_ORVO_PICTURE_H

#include <optional>
#include <string_view>

#include <orvo/dib.h>

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

// Nothing for a null or malformed picture.
std::optional<Shape> ShapeOf(DibHandle picture);

Report Described(const Shape& shape);

}  // namespace client

#endif  // APPS_ORVO_PICTURE_H
