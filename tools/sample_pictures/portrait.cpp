#include <cmath>

#include "noise.h"
#include "scenes.h"

namespace samples {
namespace {

constexpr double kCentre = 0.4;
constexpr double kEyeLine = 0.43;
constexpr double kEyeDistance = 0.078;  // of each eye from the middle

// How deep a point lies inside an ellipse: 1 in the middle, 0 at the edge, below outside.
double Inside(double x, double y, double centreX, double centreY, double radiusX, double radiusY) {
  const double dx = (x - centreX) / radiusX;
  const double dy = (y - centreY) / radiusY;
  return 1 - std::sqrt(dx * dx + dy * dy);
}

Color Background(double x, double y) {
  const double soft = Layers(x * 4, y * 4, 3);
  return Mix({0.28, 0.34, 0.36}, {0.46, 0.50, 0.47}, soft * 1.1);
}

// Skin in the light of a flash from the front, a little from the left.
Color Skin(double x, double y) {
  const double dx = (x - kCentre) / 0.19;
  const double dy = (y - 0.46) / 0.27;
  const double light = 1.03 - 0.26 * (dx * dx + dy * dy) - 0.10 * dx;
  const double pores = 0.985 + 0.03 * Noise(x * 330, y * 330);
  const Color base = Mix({0.86, 0.66, 0.54}, {0.80, 0.55, 0.46}, Layers(x * 16, y * 16, 3));
  return base * (light * pores);
}

Color Eye(double x, double y, double centreX) {
  const double lid = Inside(x, y, centreX, kEyeLine, 0.043, 0.021);
  if (lid < 0) return Skin(x, y) * (1 - 0.45 * Ramp(lid, -0.35, 0));
  const double dx = x - centreX;
  const double dy = y - kEyeLine;
  const double r = std::sqrt(dx * dx + dy * dy);
  const double gx = dx + 0.0035;
  const double gy = dy + 0.0035;
  if (gx * gx + gy * gy < 0.0021 * 0.0021) return {1.0, 0.97, 0.95};
  const Color pupil = Mix({0.86, 0.16, 0.13}, {0.62, 0.05, 0.07}, r / 0.0096);
  const double streaks = Noise(std::atan2(dy, dx) * 14, r * 300);
  const Color iris = Mix({0.25, 0.17, 0.12}, {0.42, 0.31, 0.22}, streaks);
  const Color white = Color{0.90, 0.87, 0.85} * (0.82 + 0.18 * Ramp(lid, 0, 0.5));
  const Color inner = Mix(pupil, iris, Ramp(r, 0.0089, 0.0099));
  return Mix(inner, white, Ramp(r, 0.0172, 0.0186));
}

Color Face(double x, double y) {
  for (const double side : {-1.0, 1.0}) {
    const double eye = kCentre + side * kEyeDistance;
    if (Inside(x, y, eye, kEyeLine, 0.060, 0.032) > 0) return Eye(x, y, eye);
    const double bend = (x - eye) * (x - eye) * 3.2;
    const double brow = std::fabs(y - (kEyeLine - 0.048 + bend)) - 0.008;
    if (brow < 0 && std::fabs(x - eye) < 0.055) {
      return Color{0.22, 0.14, 0.09} * (0.8 + 0.6 * Noise(x * 420, y * 120));
    }
  }
  const double lips = Inside(x, y, kCentre, 0.595, 0.062, 0.021);
  if (lips > 0) {
    const bool gap = std::fabs(y - 0.594) < 0.0022;
    return gap ? Color{0.36, 0.14, 0.13} : Mix({0.72, 0.42, 0.38}, {0.66, 0.34, 0.33}, lips);
  }
  Color skin = Skin(x, y);
  const double nose = Inside(x, y, kCentre + 0.004, 0.525, 0.034, 0.018);
  if (nose > 0) skin = skin * (1 - 0.16 * Ramp(nose, 0, 0.5) * Ramp(y, 0.515, 0.535));
  const double bridge = std::fabs(x - kCentre - 0.017);
  if (y > 0.43 && y < 0.53) skin = skin * (1 - 0.07 * Ramp(bridge, 0.012, 0));
  const double cheek = Inside(std::fabs(x - kCentre), y, 0.095, 0.54, 0.05, 0.04);
  return Mix(skin, {0.86, 0.50, 0.44}, 0.22 * Ramp(cheek, 0, 1));
}

Color Hair(double x, double y) {
  const double strand = Layers((x + 0.12 * std::sin(y * 9)) * 130, y * 7, 4);
  return Mix({0.12, 0.07, 0.04}, {0.40, 0.26, 0.15}, Ramp(strand, 0.25, 0.75));
}

}  // namespace

Color Portrait(double x, double y) {
  const double fringe = 0.315 - 0.06 * std::fabs(x - kCentre - 0.04) + 0.012 * Noise(x * 60, 2);
  const bool face = Inside(x, y, kCentre, 0.46, 0.188, 0.265) > 0;
  if (face && y > fringe) return Face(x, y);
  const bool hair = Inside(x, y, kCentre, 0.40, 0.245, 0.30) > 0 ||
                    (std::fabs(x - kCentre) < 0.235 && std::fabs(x - kCentre) > 0.10 && y > 0.40 &&
                     y < 0.74 + 0.02 * Noise(x * 40, 1));
  const bool neck = std::fabs(x - kCentre) < 0.085 && y > 0.62 && y < 0.83;
  if (neck) return Skin(x, 0.56) * (0.86 - 0.25 * Ramp(y, 0.80, 0.66));
  if (Inside(x, y, kCentre, 1.06, 0.40, 0.29) > 0) {
    return Color{0.20, 0.29, 0.47} * (0.75 + 0.5 * Layers(x * 60, y * 60, 4));
  }
  if (hair) return Hair(x, y);
  return Background(x, y);
}

}  // namespace samples
