// Noise that is the same every time: what grass, hair, paper and sensors are drawn with.
#ifndef TOOLS_SAMPLE_PICTURES_NOISE_H
#define TOOLS_SAMPLE_PICTURES_NOISE_H

#include <cmath>
#include <cstdint>

#include "color.h"

namespace samples {

// A number from 0 to 1 for a point of the grid.
inline double Hash(std::int64_t x, std::int64_t y) {
  auto h = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15U +
           static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FU;
  h = (h ^ (h >> 31)) * 0xBF58476D1CE4E5B9U;
  h ^= h >> 29;
  return static_cast<double>(h >> 11) * 0x1.0p-53;
}

// Smooth noise from 0 to 1, about one bump a unit.
inline double Noise(double x, double y) {
  const double left = std::floor(x);
  const double top = std::floor(y);
  const auto i = static_cast<std::int64_t>(left);
  const auto j = static_cast<std::int64_t>(top);
  const double u = Ramp(x - left, 0, 1);
  const double v = Ramp(y - top, 0, 1);
  const double above = Hash(i, j) * (1 - u) + Hash(i + 1, j) * u;
  const double below = Hash(i, j + 1) * (1 - u) + Hash(i + 1, j + 1) * u;
  return above * (1 - v) + below * v;
}

// Layers of it, each twice as fine and half as strong.
inline double Layers(double x, double y, int count) {
  double sum = 0;
  double weight = 0.5;
  for (int layer = 0; layer < count; ++layer) {
    sum += weight * Noise(x, y);
    x = x * 2.03 + 17.1;
    y = y * 2.01 + 5.3;
    weight /= 2;
  }
  return sum;
}

}  // namespace samples

#endif  // TOOLS_SAMPLE_PICTURES_NOISE_H
