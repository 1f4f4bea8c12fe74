// Pictures of faces with red eyes, drawn from a seed without any function that platforms round
// differently. Rows lie as stored, so eyes are in the larger ones of a face.
#ifndef TESTS_IMAGING_REDEYE_FACES_H
#define TESTS_IMAGING_REDEYE_FACES_H

#include <cmath>
#include <random>

#include "imaging/plain_image.h"

namespace faces {

struct Rgb {
  int red;
  int green;
  int blue;
};

constexpr Rgb kSkin = {220, 170, 140};
constexpr Rgb kDarkSkin = {180, 120, 100};
constexpr Rgb kRed = {200, 30, 30};
constexpr Rgb kWhite = {235, 235, 235};
constexpr Rgb kGray = {90, 90, 90};

class Picture {
 public:
  Picture(int width, int height, unsigned seed)
      : image{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), 24},
        bytes(image.stride() * image.height),
        random_(seed) {
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random_());
  }

  int pick(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }
  bool chance(int percent) { return pick(1, 100) <= percent; }

  void dot(int x, int y, const Rgb& color, int noise = 0) {
    if (x < 0 || y < 0 || x >= w() || y >= h()) return;
    std::uint8_t* const p =
        &bytes[image.at(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y))];
    const int shift = noise == 0 ? 0 : pick(-noise, noise);
    p[0] = plain::Limited(color.blue + shift);
    p[1] = plain::Limited(color.green + shift);
    p[2] = plain::Limited(color.red + shift);
  }
  void rectangle(int left, int top, int right, int bottom, const Rgb& color, int noise = 0) {
    for (int y = top; y <= bottom; ++y) {
      for (int x = left; x <= right; ++x) dot(x, y, color, noise);
    }
  }
  // lean: columns by which it leans for each row.
  void ellipse(double cx, double cy, double rx, double ry, const Rgb& color, int noise = 0,
               double lean = 0) {
    const double reach = std::max(rx, ry) + std::abs(lean) * ry;
    for (int y = static_cast<int>(cy - reach); y <= static_cast<int>(cy + reach); ++y) {
      for (int x = static_cast<int>(cx - reach); x <= static_cast<int>(cx + reach); ++x) {
        const double u = x - cx - lean * (y - cy);
        const double v = y - cy;
        if (u * u / (rx * rx) + v * v / (ry * ry) <= 1) dot(x, y, color, noise);
      }
    }
  }
  void fill(const Rgb& color, int noise = 0) { rectangle(0, 0, w() - 1, h() - 1, color, noise); }
  void face(double cx, double cy, double rx, double ry);
  void oddEye(double cx, double cy, double r);

  [[nodiscard]] int w() const { return static_cast<int>(image.width); }
  [[nodiscard]] int h() const { return static_cast<int>(image.height); }

  plain::Image image;
  plain::Bytes bytes;

 private:
  std::mt19937 random_;
};

// A pupil with something amiss now and then.
inline void Picture::oddEye(double cx, double cy, double r) {
  const double white = r * pick(2, 4);
  if (chance(85)) ellipse(cx, cy, white, r * 1.6, kWhite, pick(0, 8));
  const int red = pick(110, 200);  // may look like skin
  const Rgb pupil = chance(70) ? kRed : Rgb{red, pick(10, 60), pick(10, 90)};
  const int kind = pick(0, 11);
  if (kind == 0) return ellipse(cx, cy, r * 2, r * 0.7, pupil, 5, pick(-8, 8) / 10.0);
  if (kind == 1) return ellipse(cx, cy, r * 0.8, r * 1.6, pupil, 3);
  ellipse(cx, cy, kind == 2 ? 1.7 * r : r, kind == 2 ? 1.7 * r : r, pupil, pick(0, 12));
  if (kind == 2) return ellipse(cx, cy, r * 1.2, r * 1.2, kWhite);  // a ring
  if (chance(30)) ellipse(cx, cy, r / 4, r / 4, kWhite);
}

inline void Picture::face(double cx, double cy, double rx, double ry) {
  const Rgb& skin = chance(80) ? kSkin : kDarkSkin;
  const int noise = pick(0, 12);
  ellipse(cx, cy, rx, ry, skin, noise, chance(50) ? 0 : pick(-6, 6) / 10.0);
  const double level = cy + ry * pick(-2, 5) / 10.0;
  const int eyes = chance(60) ? 2 : pick(0, 6);
  const double r = std::max(1.5, rx / 8 * pick(4, 11) / 10.0);
  for (int i = 0; i < eyes; ++i) {
    const double x = cx + rx * (eyes == 2 ? (2 * i - 1) * pick(3, 5) : pick(-8, 8)) / 10.0;
    const double y = level + (chance(70) ? 0.0 : ry * pick(-4, 4) / 10.0);
    oddEye(x, y, chance(70) ? r : r * pick(3, 20) / 10.0);
  }
  for (int i = pick(0, 3); i > 0; --i) {  // moles and shadows
    const double x = cx + rx * pick(-7, 7) / 10.0;
    ellipse(x, cy + ry * pick(-7, 7) / 10.0, rx * i / 16.0, ry * i / 16.0, kGray);
  }
}

// Faces at random places, some across the border, before noise or a wall.
inline Picture Crowd(int width, int height, unsigned seed) {
  Picture picture(width, height, seed);
  const int tone = picture.pick(0, 255);
  if (picture.chance(80)) picture.fill({tone, tone, tone}, 20);
  const int people = picture.chance(70) ? 1 : picture.pick(2, 12);
  for (int i = 0; i < people; ++i) {
    const double rx = std::min(width, height) * picture.pick(20, 48) / 100.0 /
                      (people == 1 ? 1 : std::sqrt(people));
    const double x = width * picture.pick(20, 80) / 100.0;
    const double y = height * picture.pick(20, 80) / 100.0;
    picture.face(x, y, rx, rx * picture.pick(7, 20) / 10.0);
  }
  return picture;
}

}  // namespace faces

#endif  // TESTS_IMAGING_REDEYE_FACES_H
