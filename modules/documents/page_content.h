// The drawing instructions of one page, and the measures of what is drawn.
#ifndef MODULES_DOCUMENTS_PAGE_CONTENT_H
#define MODULES_DOCUMENTS_PAGE_CONTENT_H

#include <string>

#include "pictures/picture.h"

namespace modules {

// A picture as shown, in pixels and dots per inch; the resolution is zeros when the file does not
// tell. A negative pair tells only how wide a pixel is beside its height: -1 and -2 are pixels
// twice as high as wide.
struct Shown {
  int width = 0;
  int height = 0;
  float xResolution = 0;
  float yResolution = 0;
};
Shown ShownOf(const Picture& picture);

// A number as content holds it.
std::string NumberText(double number);
// From now on everything is scaled.
std::string ScaleContent(double x, double y);
// Draws the image object `name`, turned upright, with its lower left corner at x, y; its pixels are
// `scale` units wide and high.
std::string PlaceContent(const std::string& name, const Picture& picture, double x, double y,
                         double scale);

}  // namespace modules

#endif  // MODULES_DOCUMENTS_PAGE_CONTENT_H
