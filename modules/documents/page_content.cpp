#include "documents/page_content.h"

#include <cmath>
#include <qpdf/QUtil.hh>
#include <utility>

#include "documents/upright_matrices.h"

namespace modules {
namespace {

std::string Transform(const Matrix& matrix) {
  std::string text;
  for (const double number : matrix) text += NumberText(number) + " ";
  return text + "cm\n";
}

// Whole dots per inch that were rounded on their way into a header come out whole again.
float DotsPerInchOf(std::int32_t pixelsPerMetre) {
  // A whole number of pixels per metre is off by less than one: some writers cut, others round.
  constexpr double kMostOff = orvo::kMetresPerInch;
  const double dots = pixelsPerMetre * orvo::kMetresPerInch;
  const double whole = std::round(dots);
  return static_cast<float>(std::abs(dots - whole) < kMostOff ? whole : dots);
}

}  // namespace

Shown ShownOf(const Picture& picture) {
  Shown shown{picture.width, picture.height, DotsPerInchOf(picture.xPixelsPerMetre),
              DotsPerInchOf(picture.yPixelsPerMetre)};
  if (picture.xPixelsPerMetre == 0 && picture.xDensity > 0 && picture.yDensity > 0) {
    // The denser pixels lie, the smaller they are.
    shown.xResolution = static_cast<float>(-picture.yDensity);
    shown.yResolution = static_cast<float>(-picture.xDensity);
  }
  if (SwapsSides(picture.orientation)) {
    std::swap(shown.width, shown.height);
    std::swap(shown.xResolution, shown.yResolution);
  }
  return shown;
}

std::string NumberText(double number) {
  constexpr int kDecimals = 6;
  return QUtil::double_to_string(number, kDecimals);
}

std::string ScaleContent(double x, double y) {
  return Transform({x, 0, 0, y, 0, 0});
}

std::string PlaceContent(const std::string& name, const Picture& picture, double x, double y,
                         double scale) {
  const Shown size = ShownOf(picture);
  const Matrix place = {size.width * scale, 0, 0, size.height * scale, x, y};
  return "q\n" + Transform(place) + Transform(kUprightMatrices[picture.orientation - 1]) + name +
         " Do\nQ\n";
}

}  // namespace modules
