#include "pdflib/picture.h"

#include <cmath>

#include <orvo/dib.h>

namespace modules {
namespace {

float DotsPerInchOf(std::int32_t pixelsPerMetre) {
  // A whole number of pixels per metre is off by less than one: some writers cut, others round.
  constexpr double kMostOff = orvo::kMetresPerInch;
  const double dots = pixelsPerMetre * orvo::kMetresPerInch;
  const double whole = std::round(dots);
  return static_cast<float>(std::abs(dots - whole) < kMostOff ? whole : dots);
}

}  // namespace

Resolution ResolutionOf(std::int32_t xPixelsPerMetre, std::int32_t yPixelsPerMetre) {
  return {DotsPerInchOf(xPixelsPerMetre), DotsPerInchOf(yPixelsPerMetre)};
}

Resolution AspectOf(double xDensity, double yDensity) {
  if (!(xDensity > 0) || !(yDensity > 0)) return {};
  // The denser pixels lie, the smaller they are.
  return {static_cast<float>(-yDensity), static_cast<float>(-xDensity)};
}

}  // namespace modules
