#include "pdflib/page_content.h"

#include <array>
#include <qpdf/QUtil.hh>

namespace modules {
namespace {

using Matrix = std::array<double, 6>;

std::string Transform(const Matrix& matrix) {
  std::string text;
  for (const double number : matrix) text += NumberText(number) + " ";
  return text + "cm\n";
}

// Objects are drawn into the square from 0, 0 to 1, 1 with their first row on top. One row for each
// orientation, from 1: how the square is laid over itself so that the picture stands upright.
constexpr Matrix kUprightMatrices[] = {
    {1, 0, 0, 1, 0, 0},    // upright
    {-1, 0, 0, 1, 1, 0},   // mirrored left to right
    {-1, 0, 0, -1, 1, 1},  // turned by 180 degrees
    {1, 0, 0, -1, 0, 1},   // mirrored top to bottom
    {0, -1, -1, 0, 1, 1},  // mirrored along the diagonal from the top left
    {0, -1, 1, 0, 0, 1},   // needs a quarter turn clockwise
    {0, 1, 1, 0, 0, 0},    // mirrored along the other diagonal
    {0, 1, -1, 0, 1, 0},   // needs a quarter turn counter-clockwise
};

}  // namespace

std::string NumberText(double number) {
  constexpr int kDecimals = 6;
  return QUtil::double_to_string(number, kDecimals);
}

std::string ScaleContent(double x, double y) {
  return Transform({x, 0, 0, y, 0, 0});
}

std::string PlaceContent(const std::string& name, const Picture& picture, double x, double y,
                         double scale) {
  const ShownSize size = ShownSizeOf(picture);
  const Matrix place = {size.width * scale, 0, 0, size.height * scale, x, y};
  return "q\n" + Transform(place) + Transform(kUprightMatrices[picture.orientation - 1]) + name +
         " Do\nQ\n";
}

}  // namespace modules
