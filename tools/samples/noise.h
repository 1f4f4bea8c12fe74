// Repeatable randomness: the same numbers on every machine, from integers and plain arithmetic.
#ifndef TOOLS_SAMPLES_NOISE_H
#define TOOLS_SAMPLES_NOISE_H

#include <cstdint>

namespace samples {

// A number 0 to below 1 that belongs to a place.
double RandomAt(int x, int y, std::uint32_t seed);

// Smooth hills and hollows, 0 to 1, about one unit apart.
double Noise(double x, double y, std::uint32_t seed);

// Noise with finer noise on top, each layer half as high and twice as dense; 0 to 1.
double LayeredNoise(double x, double y, std::uint32_t seed, int layers);

// A sequence of random numbers.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : seed_(seed) {}
  // From low to below high.
  double between(double low, double high);

 private:
  std::uint32_t seed_;
  int count_ = 0;
};

}  // namespace samples

#endif  // TOOLS_SAMPLES_NOISE_H
