#include "canvas.h"

#include "noise.h"

namespace samples {
namespace {

Color Sum(Color a, Color b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}

// One pass of a box mean along rows (stepX 1) or columns (stepY 1).
Canvas Averaged(const Canvas& canvas, int radius, int stepX, int stepY) {
  Canvas result(canvas.width(), canvas.height());
  for (int y = 0; y < canvas.height(); ++y) {
    for (int x = 0; x < canvas.width(); ++x) {
      Color sum;
      for (int i = -radius; i <= radius; ++i) {
        sum = Sum(sum, canvas.at(std::clamp(x + i * stepX, 0, canvas.width() - 1),
                                 std::clamp(y + i * stepY, 0, canvas.height() - 1)));
      }
      result.at(x, y) = Scaled(sum, 1.0 / (2 * radius + 1));
    }
  }
  return result;
}

}  // namespace

Canvas::Canvas(int width, int height, Color ground)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), ground) {}

Color Canvas::sample(Point place) const {
  const double x = std::clamp(place.x - 0.5, 0.0, width_ - 1.0);
  const double y = std::clamp(place.y - 0.5, 0.0, height_ - 1.0);
  const int left = static_cast<int>(x);
  const int top = static_cast<int>(y);
  const int right = std::min(left + 1, width_ - 1);
  const int bottom = std::min(top + 1, height_ - 1);
  return Mix(Mix(at(left, top), at(right, top), x - left),
             Mix(at(left, bottom), at(right, bottom), x - left), y - top);
}

void LayEllipse(Canvas& canvas, Point centre, double radiusX, double radiusY, Color color,
                Brush brush) {
  const Box box{centre.x - radiusX, centre.y - radiusY, centre.x + radiusX, centre.y + radiusY};
  Lay(
      canvas, box, [&](Point at) { return DistanceToEllipse(at, centre, radiusX, radiusY); },
      [&](Point) { return color; }, brush);
}

void LayPolygon(Canvas& canvas, const Path& corners, Color color, Brush brush) {
  Lay(
      canvas, BoundsOf(corners), [&](Point at) { return DistanceToPolygon(at, corners); },
      [&](Point) { return color; }, brush);
}

void LayPath(Canvas& canvas, const Path& path, double width, Color color, Brush brush) {
  const auto distance = [&](Point at) {
    double nearest = DistanceToLine(at, path.front(), path.front());
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
      nearest = std::min(nearest, DistanceToLine(at, path[i], path[i + 1]));
    }
    return nearest - width / 2;
  };
  Lay(
      canvas, BoundsOf(path).grown(width / 2), distance, [&](Point) { return color; }, brush);
}

void Soften(Canvas& canvas, int radius) {
  for (int round = 0; round < 2; ++round) {
    canvas = Averaged(Averaged(canvas, radius, 1, 0), radius, 0, 1);
  }
}

void AddGrain(Canvas& canvas, double tones, std::uint32_t seed) {
  for (int y = 0; y < canvas.height(); ++y) {
    for (int x = 0; x < canvas.width(); ++x) {
      const double grain = RandomAt(x, y, seed) + RandomAt(x, y, seed + 1) - 1;
      canvas.at(x, y) = Raised(canvas.at(x, y), tones * grain);
    }
  }
}

Canvas Shrunk(const Canvas& canvas, int width, int height) {
  Canvas result(width, height);
  for (int y = 0; y < height; ++y) {
    const int top = y * canvas.height() / height;
    const int bottom = std::max(top + 1, (y + 1) * canvas.height() / height);
    for (int x = 0; x < width; ++x) {
      const int left = x * canvas.width() / width;
      const int right = std::max(left + 1, (x + 1) * canvas.width() / width);
      Color sum;
      for (int row = top; row < bottom; ++row) {
        for (int column = left; column < right; ++column) sum = Sum(sum, canvas.at(column, row));
      }
      result.at(x, y) = Scaled(sum, 1.0 / ((bottom - top) * (right - left)));
    }
  }
  return result;
}

}  // namespace samples
