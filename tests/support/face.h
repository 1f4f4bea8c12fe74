// A face that has red eyes.
#ifndef TESTS_SUPPORT_FACE_H
#define TESTS_SUPPORT_FACE_H

#include "support/pictures.h"

namespace pictures {

// A face with red eyes before noise, 300 by 200 dots per inch; rows of every depth are padded.
constexpr int kWidth = 131;
constexpr int kHeight = 129;
constexpr std::uint32_t kEyeX = 42, kEyeY = 85, kEyeRadius = 4;

inline orvo::OwnedDib Ground() {
  orvo::OwnedDib ground = Noise(kWidth, kHeight, 24, 1);
  Locked(ground.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(200);
  return ground;
}

inline orvo::OwnedDib DrawnFace() {
  orvo::OwnedDib face = Ground();
  const Locked image(face.get());
  const auto ellipse = [&](int cx, int cy, double rx, double ry, std::uint32_t color, int shades) {
    for (int i = 0; i < kWidth * kHeight; ++i) {
      const double u = (i % kWidth - cx) / rx;
      const double v = (i / kWidth - cy) / ry;
      std::uint8_t* const pixel = image.row(i / kWidth) + i % kWidth * 3;
      for (int c = 0; u * u + v * v <= 1 && c < 3; ++c) {
        pixel[c] = static_cast<std::uint8_t>((color >> 8 * c & 255U) + i * 7 % shades);
      }
    }
  };
  ellipse(60, 70, 45, 50, 0xD8A688, 9);
  for (const int x : {42, 79}) {
    ellipse(x, kEyeY, 14, 7.2, 0xEBEBEB, 1);
    ellipse(x, kEyeY, kEyeRadius, kEyeRadius, 0xC81E1E, 1);
  }
  return face;
}

}  // namespace pictures

#endif  // TESTS_SUPPORT_FACE_H
