#include "scans.h"

#include <cmath>
#include <numbers>

#include "noise.h"
#include "scenes.h"

namespace samples {
namespace {

// Beyond white, as scanners are set: grain does not show in it.
constexpr Color kLid{1.03, 1.03, 1.03};
constexpr Color kInk{0.10, 0.10, 0.12};

// A rectangle that lies turned on the lid.
class Placed {
 public:
  Placed(double centreX, double centreY, double width, double height, double tiltDegrees)
      : centreX_(centreX),
        centreY_(centreY),
        width_(width),
        height_(height),
        sine_(std::sin(tiltDegrees * std::numbers::pi / 180)),
        cosine_(std::cos(tiltDegrees * std::numbers::pi / 180)) {}

  // The place on the item, from its top left, of a point on the lid.
  void find(double x, double y, double& u, double& v) const {
    const double dx = x - centreX_;
    const double dy = y - centreY_;
    u = dx * cosine_ + dy * sine_ + width_ / 2;
    v = dy * cosine_ - dx * sine_ + height_ / 2;
  }
  [[nodiscard]] bool holds(double u, double v) const {
    return u >= 0 && v >= 0 && u < width_ && v < height_;
  }
  // How far a place lies outside, in pixels.
  [[nodiscard]] double distance(double u, double v) const {
    const double dx = std::max({-u, u - width_, 0.0});
    const double dy = std::max({-v, v - height_, 0.0});
    return std::sqrt(dx * dx + dy * dy);
  }
  [[nodiscard]] double width() const { return width_; }
  [[nodiscard]] double height() const { return height_; }

 private:
  double centreX_;
  double centreY_;
  double width_;
  double height_;
  double sine_;
  double cosine_;
};

}  // namespace

Canvas ScanOf(const Sheet& sheet, int width, int height, double tiltDegrees) {
  Canvas canvas(width, height);
  const Placed placed(width / 2.0, height / 2.0, sheet.width(), sheet.height(), tiltDegrees);
  canvas.draw(
      [&](double x, double y) {
        double u = 0;
        double v = 0;
        placed.find(x, y, u, v);
        if (!placed.holds(u, v)) return kLid;
        const Color paper = Color{0.955, 0.95, 0.935} * (0.985 + 0.02 * Noise(u / 6, v / 6));
        return Mix(paper, kInk, sheet.inkAt(u, v));
      },
      5);
  return canvas;
}

Canvas ScannerBed(int width, int height) {
  Canvas canvas(width, height);
  const double unit = width;
  const Placed photo(unit * 0.36, unit * 0.27, unit * 0.56, unit * 0.42, 0);
  const Placed portrait(unit * 0.30, unit * 0.86, unit * 0.40, unit * 0.50, 5);
  const Placed card(unit * 0.76, unit * 0.82, unit * 0.36, unit * 0.22, -2);
  Sheet print(static_cast<int>(card.width()), static_cast<int>(card.height()));
  const int line = print.height() / 8;
  print.write(line, line, 5, "Bed and Items");
  print.write(line, line * 3, 3, "three things on a lid");
  print.write(line, line * 5, 3, "each to its own file");
  canvas.draw(
      [&](double x, double y) {
        double u = 0;
        double v = 0;
        photo.find(x, y, u, v);
        if (photo.holds(u, v)) return Landscape(u / photo.height(), v / photo.height());
        portrait.find(x, y, u, v);
        if (portrait.holds(u, v)) return Portrait(u / portrait.height(), v / portrait.height());
        card.find(x, y, u, v);
        if (card.holds(u, v)) return Mix({0.93, 0.89, 0.78}, kInk, print.inkAt(u, v));
        return kLid;
      },
      4);
  return canvas;
}

Canvas ScreenedPrint(int width, int height, double pitch) {
  Canvas canvas(width, height);
  const double turn = std::numbers::pi * std::numbers::sqrt2 / pitch;
  canvas.draw(
      [&](double x, double y) {
        const double tone = Luminance(Landscape(x / height, y / height));
        const double dots = 0.5 + 0.25 * (std::cos((x + y) * turn) + std::cos((x - y) * turn));
        // The edge of a dot of ink is a little soft.
        return Mix({0.93, 0.92, 0.90}, {0.12, 0.12, 0.13}, Ramp(dots - tone, -0.06, 0.06));
      },
      6);
  return canvas;
}

}  // namespace samples
