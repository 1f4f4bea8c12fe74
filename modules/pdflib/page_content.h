// The drawing instructions of one page.
#ifndef MODULES_PDFLIB_PAGE_CONTENT_H
#define MODULES_PDFLIB_PAGE_CONTENT_H

#include <string>

#include "pdflib/picture.h"

namespace modules {

// Width and height of the picture as shown, in pixels.
struct ShownSize {
  int width;
  int height;
};
inline ShownSize ShownSizeOf(const Picture& picture) {
  return SwapsSides(picture.orientation) ? ShownSize{picture.height, picture.width}
                                         : ShownSize{picture.width, picture.height};
}
// Of the picture as shown.
inline Resolution ShownResolutionOf(const Picture& picture) {
  const Resolution& stored = picture.resolution;
  return SwapsSides(picture.orientation) ? Resolution{stored.y, stored.x} : stored;
}

// A number as content holds it.
std::string NumberText(double number);
// From now on everything is scaled.
std::string ScaleContent(double x, double y);
// Draws the image object `name`, turned upright, with its lower left corner at x, y; its pixels are
// `scale` units wide and high.
std::string PlaceContent(const std::string& name, const Picture& picture, double x, double y,
                         double scale);

}  // namespace modules

#endif  // MODULES_PDFLIB_PAGE_CONTENT_H
