// Colours of drawn pictures: red, green and blue from 0 to 1.
#ifndef TOOLS_SAMPLE_PICTURES_COLOR_H
#define TOOLS_SAMPLE_PICTURES_COLOR_H

#include <algorithm>

namespace samples {

struct Color {
  double red;
  double green;
  double blue;
};

inline Color operator+(Color a, Color b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}
inline Color operator*(Color a, double factor) {
  return {a.red * factor, a.green * factor, a.blue * factor};
}

// From a to b as share goes from 0 to 1.
inline Color Mix(Color a, Color b, double share) {
  const double s = std::clamp(share, 0.0, 1.0);
  return a * (1 - s) + b * s;
}

// 0 at `from`, 1 at `to`, soft between.
inline double Ramp(double value, double from, double to) {
  const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

inline double Luminance(Color c) {
  return 0.299 * c.red + 0.587 * c.green + 0.114 * c.blue;
}

}  // namespace samples

#endif  // TOOLS_SAMPLE_PICTURES_COLOR_H
