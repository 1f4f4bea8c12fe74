// A picture being painted, and the brushes: everything is blended by coverage, so edges are smooth.
#ifndef TOOLS_SAMPLES_CANVAS_H
#define TOOLS_SAMPLES_CANVAS_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "color.h"
#include "shapes.h"

namespace samples {

class Canvas {
 public:
  Canvas(int width, int height, Color ground = {});

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] Color& at(int x, int y) { return pixels_[index(x, y)]; }
  [[nodiscard]] const Color& at(int x, int y) const { return pixels_[index(x, y)]; }
  // The colour at any place, mixed from the four nearest pixels; beyond the edge, the edge's.
  [[nodiscard]] Color sample(Point place) const;

 private:
  [[nodiscard]] std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
  }

  int width_;
  int height_;
  std::vector<Color> pixels_;
};

// Every pixel of the box becomes shade(its centre, the colour that it has).
template <class Shade>
void Fill(Canvas& canvas, const Box& box, const Shade& shade) {
  const int left = std::max(0, static_cast<int>(std::floor(box.left)));
  const int top = std::max(0, static_cast<int>(std::floor(box.top)));
  const int right = std::min(canvas.width(), static_cast<int>(std::ceil(box.right)));
  const int bottom = std::min(canvas.height(), static_cast<int>(std::ceil(box.bottom)));
  for (int y = top; y < bottom; ++y) {
    for (int x = left; x < right; ++x) {
      Color& pixel = canvas.at(x, y);
      pixel = shade(Point{x + 0.5, y + 0.5}, pixel);
    }
  }
}

inline Box WholeOf(const Canvas& canvas) {
  return {0, 0, static_cast<double>(canvas.width()), static_cast<double>(canvas.height())};
}

// How a shape is laid on: opacity at its inside, and the width in pixels over which its edge fades.
struct Brush {
  double opacity = 1;
  double softness = 1;
};

// Lays a shape on: distance(point) is the shape, shade(point) its colour. The box need not include
// the fading edge.
template <class Distance, class Shade>
void Lay(Canvas& canvas, const Box& box, const Distance& distance, const Shade& shade,
         Brush brush = {}) {
  const double half = brush.softness / 2;
  Fill(canvas, box.grown(half + 1), [&](Point at, Color under) {
    const double d = distance(at);
    if (d >= half) return under;
    const double coverage = brush.softness > 1 ? Step(half, -half, d) : std::min(half - d, 1.0);
    return Mix(under, shade(at), coverage * brush.opacity);
  });
}

void LayEllipse(Canvas& canvas, Point centre, double radiusX, double radiusY, Color color,
                Brush brush = {});
void LayPolygon(Canvas& canvas, const Path& corners, Color color, Brush brush = {});
// The path drawn with a round pen of this width.
void LayPath(Canvas& canvas, const Path& path, double width, Color color, Brush brush = {});

// The look of a lens: every pixel becomes the mean of its surroundings, nearly bell-shaped.
void Soften(Canvas& canvas, int radius);
// Random brightness of each pixel, up to `tones` up or down.
void AddGrain(Canvas& canvas, double tones, std::uint32_t seed);
// A smaller copy; each pixel is the mean of those that it stands for.
Canvas Shrunk(const Canvas& canvas, int width, int height);

}  // namespace samples

#endif  // TOOLS_SAMPLES_CANVAS_H
