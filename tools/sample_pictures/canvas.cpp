#include "canvas.h"

#include <cmath>
#include <cstring>

namespace samples {
namespace {

std::uint8_t Tone(double value) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

}  // namespace

void Canvas::set(int x, int y, Color color) {
  std::uint8_t* const target = &bytes_[at(x, y)];
  target[0] = Tone(color.red);
  target[1] = Tone(color.green);
  target[2] = Tone(color.blue);
}

orvo::OwnedDib Canvas::toDib(int dotsPerInch, bool gray) const {
  const std::int32_t resolution = orvo::PixelsPerMetre(dotsPerInch);
  orvo::OwnedDib dib =
      orvo::NewDib(orvo::DibHeaderFor(width_, height_, gray ? 8 : 24, resolution, resolution));
  const orvo::LockedImage image(dib.get());
  if (!image) return {};
  for (int tone = 0; gray && tone < 256; ++tone) {
    std::memset(image.bytes() + orvo::kDibHeaderBytes + 4 * tone, tone, 3);
  }
  for (int y = 0; y < height_; ++y) {
    std::uint8_t* target = image.row(height_ - 1 - y);  // stored rows begin with the last line
    for (int x = 0; x < width_; ++x) {
      const std::uint8_t* const from = &bytes_[at(x, y)];
      if (gray) {
        *target++ =
            static_cast<std::uint8_t>((299 * from[0] + 587 * from[1] + 114 * from[2]) / 1000);
      } else {
        *target++ = from[2];
        *target++ = from[1];
        *target++ = from[0];
      }
    }
  }
  return dib;
}

}  // namespace samples
