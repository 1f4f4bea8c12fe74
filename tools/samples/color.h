// Colours while a picture is painted: display values 0..255, in fractions.
#ifndef TOOLS_SAMPLES_COLOR_H
#define TOOLS_SAMPLES_COLOR_H

#include <algorithm>

namespace samples {

struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
};

inline Color Gray(double tone) {
  return {tone, tone, tone};
}

// a at share 0, b at share 1.
inline Color Mix(Color a, Color b, double share) {
  return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share,
          a.blue + (b.blue - a.blue) * share};
}

inline Color Scaled(Color color, double factor) {
  return {color.red * factor, color.green * factor, color.blue * factor};
}

inline Color Raised(Color color, double tones) {
  return {color.red + tones, color.green + tones, color.blue + tones};
}

inline double Luma(Color color) {
  return (299 * color.red + 587 * color.green + 114 * color.blue) / 1000;
}

// 0 up to `low`, 1 from `high`, a soft S between; with high below low it falls instead.
inline double Step(double low, double high, double value) {
  const double t = std::clamp((value - low) / (high - low), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

}  // namespace samples

#endif  // TOOLS_SAMPLES_COLOR_H
