// Pictures of faces with red eyes, drawn from a seed. Rows lie as stored, so eyes are in the larger
// ones of a face.
#ifndef TESTS_IMAGING_REDEYE_FACES_H
#define TESTS_IMAGING_REDEYE_FACES_H

#include <cmath>
#include <random>

#include "imaging/adjust/plain_image.h"

namespace orvo {}
using namespace orvo;

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
  void ellipse(double cx, double cy, double rx, double ry, const Rgb& color, int noise = 0,
               double turn = 0) {
    const double reach = std::max(rx, ry);
    for (int y = static_cast<int>(cy - reach); y <= static_cast<int>(cy + reach); ++y) {
      for (int x = static_cast<int>(cx - reach); x <= static_cast<int>(cx + reach); ++x) {
        const double u = (x - cx) * std::cos(turn) + (y - cy) * std::sin(turn);
        const double v = (y - cy) * std::cos(turn) - (x - cx) * std::sin(turn);
        if (u * u / (rx * rx) + v * v / (ry * ry) <= 1) dot(x, y, color, noise);
      }
    }
  }
  // An eye with all that a pupil is known by.
  void eye(double cx, double cy, double r, const Rgb& pupil = kRed, int noise = 8) {
    ellipse(cx, cy, 3.5 * r, 1.8 * r, kWhite);
    ellipse(cx, cy, r, r, pupil, noise);
  }
  void fill(const Rgb& color, int noise = 0) { rectangle(0, 0, w() - 1, h() - 1, color, noise); }
  void ground() {
    const int tone = pick(0, 255);
    const int kind = pick(0, 4);  // 0 leaves the noise
    if (kind > 0) fill({tone, tone, tone}, kind * 10);
  }
  void face(double cx, double cy, double rx, double ry);
  void oddEye(double cx, double cy, double r);

  [[nodiscard]] int w() const { return static_cast<int>(image.width); }
  [[nodiscard]] int h() const { return static_cast<int>(image.height); }

  plain::Image image;
  std::vector<std::uint8_t> bytes;

 private:
  std::mt19937 random_;
};

// A pupil with something amiss now and then.
inline void Picture::oddEye(double cx, double cy, double r) {
  if (chance(85)) ellipse(cx, cy, r * pick(2, 4), r * 1.6, kWhite, pick(0, 8));
  const Rgb dark = {pick(110, 200), pick(10, 60), pick(10, 90)};  // may look like skin
  const Rgb pupil = chance(70) ? kRed : dark;
  switch (pick(0, 11)) {
    case 0:
      return ellipse(cx, cy, r * 2, r * 0.7, pupil, 5, pick(0, 30) / 10.0);
    case 1:  // a ring
      ellipse(cx, cy, r * 1.7, r * 1.7, pupil);
      return ellipse(cx, cy, r * 1.2, r * 1.2, kWhite);
    case 2:
      return rectangle(static_cast<int>(cx - r), static_cast<int>(cy - 2 * r),
                       static_cast<int>(cx + r), static_cast<int>(cy + 2 * r), pupil, 3);
    default:
      ellipse(cx, cy, r, r, pupil, pick(0, 12));
  }
  if (chance(30)) ellipse(cx, cy, r / 4, r / 4, kWhite);
}

inline void Picture::face(double cx, double cy, double rx, double ry) {
  ellipse(cx, cy, rx, ry, chance(80) ? kSkin : kDarkSkin, pick(0, 12),
          chance(50) ? 0 : pick(0, 31) / 10.0);
  const double level = cy + ry * pick(-2, 5) / 10.0;
  const int eyes = chance(60) ? 2 : pick(0, 6);
  const double r = std::max(1.5, rx / 8 * pick(4, 11) / 10.0);
  for (int i = 0; i < eyes; ++i) {
    const double x =
        eyes == 2 ? cx + (i == 0 ? -1 : 1) * rx * pick(3, 5) / 10.0 : cx + rx * pick(-8, 8) / 10.0;
    const double y = level + (chance(70) ? 0.0 : ry * pick(-4, 4) / 10.0);
    oddEye(x, y, chance(70) ? r : r * pick(3, 20) / 10.0);
  }
  for (int i = pick(0, 3); i > 0; --i) {  // moles and shadows
    const int tone = pick(20, 90);
    ellipse(cx + rx * pick(-7, 7) / 10.0, cy + ry * pick(-7, 7) / 10.0, rx * pick(1, 3) / 16.0,
            ry * pick(1, 3) / 16.0, {tone, tone, tone});
  }
}

// Faces at random places, some across the border.
inline Picture Crowd(int width, int height, unsigned seed) {
  Picture picture(width, height, seed);
  picture.ground();
  const int people = picture.chance(70) ? 1 : picture.pick(2, 12);
  for (int i = 0; i < people; ++i) {
    const double rx = std::min(picture.w(), picture.h()) * picture.pick(20, 48) / 100.0 /
                      (people == 1 ? 1 : std::sqrt(people));
    picture.face(picture.w() * picture.pick(20, 80) / 100.0,
                 picture.h() * picture.pick(20, 80) / 100.0, rx, rx * picture.pick(7, 20) / 10.0);
  }
  return picture;
}

}  // namespace faces

#endif  // TESTS_IMAGING_REDEYE_FACES_H
