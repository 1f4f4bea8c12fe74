#include "canvas.h"

#include <cmath>
#include <cstring>

namespace samples {
namespace {

std::uint8_t Tone(double value) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

orvo::OwnedDib NewDib(int width, int height, int depth, int dotsPerInch) {
  const auto layout = orvo::DibLayoutFor(width, height, depth);
  orvo::OwnedDib dib(GlobalAlloc(orvo::kDibBlockFlags, layout->totalBytes));
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = static_cast<std::uint16_t>(depth);
  header.biXPelsPerMeter = header.biYPelsPerMeter = orvo::PixelsPerMetre(dotsPerInch);
  std::memcpy(GlobalLock(dib.get()), &header, sizeof header);
  GlobalUnlock(dib.get());
  return dib;
}

}  // namespace

void Canvas::set(int x, int y, Color color) {
  std::uint8_t* const target = &bytes_[at(x, y)];
  target[0] = Tone(color.red);
  target[1] = Tone(color.green);
  target[2] = Tone(color.blue);
}

orvo::OwnedDib Canvas::toDib(int dotsPerInch, bool gray) const {
  orvo::OwnedDib dib = NewDib(width_, height_, gray ? 8 : 24, dotsPerInch);
  auto* const block = static_cast<std::uint8_t*>(GlobalLock(dib.get()));
  if (block == nullptr) return {};
  const auto layout = orvo::DibLayoutOf(block, GlobalSize(dib.get()));
  for (int tone = 0; gray && tone < 256; ++tone) {
    std::memset(block + orvo::kDibHeaderBytes + 4 * tone, tone, 3);
  }
  for (int y = 0; y < height_; ++y) {
    // Stored rows begin with the picture's last line.
    std::uint8_t* target =
        block + layout->pixelOffset + layout->stride * static_cast<std::size_t>(height_ - 1 - y);
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
  GlobalUnlock(dib.get());
  return dib;
}

}  // namespace samples
