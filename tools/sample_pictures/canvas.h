// A picture in memory, drawn from a function of the place, and its way into a block.
#ifndef TOOLS_SAMPLE_PICTURES_CANVAS_H
#define TOOLS_SAMPLE_PICTURES_CANVAS_H

#include <cstdint>
#include <vector>

#include <orvo/raii.h>

#include "noise.h"

namespace samples {

// Rows from the top, three bytes a pixel: red, green, blue.
class Canvas {
 public:
  Canvas(int width, int height)
      : width_(width),
        height_(height),
        bytes_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3) {}

  // Each pixel is the mean of four points of the function, given in pixels. Grain is the unevenness
  // of a sensor, in tones.
  template <class Function>
  void draw(const Function& colorAt, double grain) {
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) {
        const Color sum = colorAt(x + 0.25, y + 0.25) + colorAt(x + 0.75, y + 0.25) +
                          colorAt(x + 0.25, y + 0.75) + colorAt(x + 0.75, y + 0.75);
        const double change = (Hash(x, y) + Hash(y, x + 7919) - 1) * grain / 255;
        set(x, y, sum * 0.25 + Color{change, change, change});
      }
    }
  }

  // As a packed DIB of 24 bits, or of 8 bits of gray.
  [[nodiscard]] orvo::OwnedDib toDib(int dotsPerInch, bool gray) const;

 private:
  [[nodiscard]] std::size_t at(int x, int y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
            static_cast<std::size_t>(x)) *
           3;
  }
  void set(int x, int y, Color color);

  int width_;
  int height_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace samples

#endif  // TOOLS_SAMPLE_PICTURES_CANVAS_H
