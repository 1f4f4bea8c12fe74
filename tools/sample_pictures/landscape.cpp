#include <cmath>

#include "noise.h"
#include "scenes.h"

namespace samples {
namespace {

Color Sky(double x, double y) {
  const Color high{0.33, 0.55, 0.86};
  const Color low{0.80, 0.88, 0.94};
  const double cloud = Ramp(Layers(x * 3, y * 7, 6), 0.48, 0.72);
  return Mix(Mix(high, low, y / 0.45), {0.97, 0.97, 0.98}, cloud * 0.8);
}

// The height at which a range of hills ends.
double Ridge(double x, double base, double height, double scale, double seed) {
  return base - height * Layers(x * scale + seed, seed, 5);
}

Color Meadow(double x, double y) {
  const double depth = (y - 0.6) / 0.4;
  const double size = 60 / (0.25 + depth);
  const double blades = Layers(x * size * 2, y * size * 0.7, 5);
  const Color grass = Mix({0.20, 0.34, 0.10}, {0.52, 0.62, 0.22}, Ramp(blades, 0.3, 0.65));
  const double flower = Hash(std::llround(x * 190), std::llround(y * 190));
  const double dx = x * 190 - std::round(x * 190);
  const double dy = y * 190 - std::round(y * 190);
  if (flower > 0.988 && dx * dx + dy * dy < 0.08 && y > 0.66) {
    return flower > 0.994 ? Color{0.95, 0.85, 0.25} : Color{0.86, 0.25, 0.30};
  }
  return grass * (0.75 + 0.3 * Noise(x * 5, y * 9));
}

bool InHouse(double x, double y) {
  return x > 0.79 && x < 0.96 && y > 0.55 && y < 0.655;
}

Color House(double x, double y) {
  const bool window = std::fabs(std::fmod(x * 26, 1.0) - 0.5) < 0.22 && y > 0.575 && y < 0.605;
  if (window) return {0.20, 0.24, 0.30};
  const double side = x < 0.885 ? 1.0 : 0.72;
  return Color{0.86, 0.80, 0.70} * (0.92 + 0.1 * Noise(x * 220, y * 40)) * side;
}

bool InRoof(double x, double y) {
  const double half = (y - 0.485) * 1.7;
  return y > 0.485 && y < 0.555 && std::fabs(x - 0.875) < half;
}

struct Tree {
  double x;
  double y;  // the middle of the crown
  double radius;

  [[nodiscard]] bool crownHolds(double u, double v) const {
    const double dx = u - x;
    const double dy = (v - y) * 0.85;
    return std::sqrt(dx * dx + dy * dy) < radius * (0.72 + 0.5 * Layers(u * 40, v * 40, 3));
  }
  [[nodiscard]] bool trunkHolds(double u, double v) const {
    return std::fabs(u - x) < 0.008 && v > y && v < y + radius * 1.25;
  }
};

Color Leaves(double x, double y, double light) {
  const double tone = Layers(x * 75, y * 75, 5);
  return Mix({0.06, 0.16, 0.05}, {0.34, 0.48, 0.16}, Ramp(tone, 0.3, 0.7) * light);
}

Color Hills(double x, double y) {
  if (y > Ridge(x, 0.68, 0.08, 2, 3)) return Meadow(x, y);
  if (y > Ridge(x, 0.60, 0.16, 2.3, 9)) {
    return Mix({0.22, 0.36, 0.20}, {0.36, 0.48, 0.30}, Layers(x * 45, y * 60, 4));
  }
  if (y > Ridge(x, 0.52, 0.30, 1.7, 21)) {
    return Mix({0.44, 0.54, 0.64}, {0.58, 0.66, 0.72}, Layers(x * 20, y * 30, 4));
  }
  return Sky(x, y);
}

Color Scene(double x, double y) {
  constexpr Tree kTrees[] = {
      {0.17, 0.50, 0.13}, {0.33, 0.57, 0.08}, {1.08, 0.55, 0.09}, {1.22, 0.52, 0.12}};
  for (const Tree& tree : kTrees) {
    if (tree.crownHolds(x, y)) return Leaves(x, y, 0.55 + 2.2 * (tree.y - y + tree.x - x));
    if (tree.trunkHolds(x, y)) {
      return Color{0.25, 0.18, 0.12} * (0.6 + 0.8 * Noise(x * 300, y * 60));
    }
  }
  if (InRoof(x, y)) return Color{0.55, 0.20, 0.14} * (0.8 + 0.3 * Noise(x * 90, y * 260));
  return InHouse(x, y) ? House(x, y) : Hills(x, y);
}

}  // namespace

// Haze takes the picture's contrast and lifts its shadows.
Color Landscape(double x, double y) {
  return Mix(Scene(x, y), {0.70, 0.73, 0.76}, 0.34 - 0.10 * y);
}

}  // namespace samples
