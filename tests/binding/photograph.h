// A face with red eyes, and what the operations on it write.
#ifndef TESTS_BINDING_PHOTOGRAPH_H
#define TESTS_BINDING_PHOTOGRAPH_H

#include "binding_fixture.h"
#include "imaging/redeye/faces.h"

using namespace orvo;

namespace binding {

// Of 24, 16 and 8 bits this width has padded rows.
constexpr int kWidth = 102;
constexpr int kHeight = 120;
constexpr std::uint32_t kEyeX = 32;
constexpr std::uint32_t kEyeY = 75;
constexpr std::uint32_t kEyeRadius = 4;

// A face, or the noise of its ground alone; of 8 bits gray noise. Header fields that nobody reads
// are marked.
inline orvo::OwnedDib Photograph(CLeadTools& tools, int depth, bool withFace = true) {
  faces::Picture picture(kWidth, kHeight, 1);
  if (withFace) picture.ellipse(50, 60, 45, 50, faces::kSkin, 8);
  for (const double x : {32.0, 69.0}) {
    if (withFace) picture.eye(x, kEyeY, kEyeRadius, faces::kRed, 0);
  }
  orvo::OwnedDib photo = pictures::Blank(kWidth, kHeight, 24);
  std::copy(picture.bytes.begin(), picture.bytes.end(), pictures::Locked(photo.get()).row(0));
  if (depth == 8) {
    photo = pictures::Noise(kWidth, kHeight, 8, 1);
  } else if (depth != 24) {
    tools.LTConvertToColorRes(*photo.address(), nullptr, depth);
  }
  BITMAPINFOHEADER& header = *pictures::Locked(photo.get()).header();
  header.biYPelsPerMeter = 5678;
  header.biClrImportant = 9;
  return photo;
}

// Starts with numbers that no operation writes.
struct Numbers {
  std::uint32_t x = 70, y = 71, radius = 72;
  int found = 73;
  bool operator==(const Numbers&) const = default;
};

}  // namespace binding

#endif  // TESTS_BINDING_PHOTOGRAPH_H
