#include "color_library.h"

#include <array>
#include <optional>

namespace client {
namespace {

const std::optional<ColorLibrary>& Loaded() {
  static const std::optional<ColorLibrary> library = []() -> std::optional<ColorLibrary> {
    try {
      return ColorLibrary{};
    } catch (const modules::ModuleError&) {
      return std::nullopt;
    }
  }();
  return library;
}

}  // namespace

bool HasColorLibrary() {
  return Loaded().has_value();
}

const ColorLibrary& TheColorLibrary() {
  return *Loaded();
}

CurveHandle SrgbCurve() {
  // (a x + b)^g from d on, c x below.
  constexpr int kPowerAndLine = 4;
  constexpr std::array<double, 5> kParameters{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  return CurveHandle(
      TheColorLibrary().cmsBuildParametricToneCurve(nullptr, kPowerAndLine, kParameters.data()));
}

}  // namespace client
