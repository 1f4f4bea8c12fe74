#include "noise.h"

#include <cmath>

#include "color.h"

namespace samples {
namespace {

// A finaliser in which each bit of the input reaches each bit of the result.
std::uint32_t Scramble(std::uint32_t bits) {
  bits ^= bits >> 16;
  bits *= 0x7FEB352DU;
  bits ^= bits >> 15;
  bits *= 0x846CA68BU;
  return bits ^ (bits >> 16);
}

}  // namespace

double RandomAt(int x, int y, std::uint32_t seed) {
  const std::uint32_t row = Scramble(static_cast<std::uint32_t>(y) + seed * 0x9E3779B9U);
  constexpr double kRange = 4294967296.0;  // numbers of 32 bits
  return Scramble(static_cast<std::uint32_t>(x) ^ row) / kRange;
}

double Noise(double x, double y, std::uint32_t seed) {
  const int left = static_cast<int>(std::floor(x));
  const int top = static_cast<int>(std::floor(y));
  const double across = Step(0, 1, x - left);
  const double down = Step(0, 1, y - top);
  const auto row = [&](int at) {
    const double a = RandomAt(left, at, seed);
    return a + (RandomAt(left + 1, at, seed) - a) * across;
  };
  const double upper = row(top);
  return upper + (row(top + 1) - upper) * down;
}

double LayeredNoise(double x, double y, std::uint32_t seed, int layers) {
  double sum = 0;
  double height = 1;
  double whole = 0;
  for (int layer = 0; layer < layers; ++layer) {
    sum += height * Noise(x, y, seed + static_cast<std::uint32_t>(layer));
    whole += height;
    height /= 2;
    x *= 2;
    y *= 2;
  }
  return sum / whole;
}

double Dice::between(double low, double high) {
  return low + (high - low) * RandomAt(count_++, 0, seed_);
}

}  // namespace samples
