#include "opacity.h"

#include <algorithm>

namespace client {
namespace {

// A new picture with the measures and the resolution of another.
orvo::OwnedDib NewLike(const orvo::LockedImage& model, int depth) {
  BITMAPINFOHEADER header = orvo::DibHeaderFor(model.layout().width, model.layout().height, depth);
  header.biXPelsPerMeter = model.header().biXPelsPerMeter;
  header.biYPelsPerMeter = model.header().biYPelsPerMeter;
  return orvo::NewDib(header);
}

std::uint8_t Mixed(int color, int ground, int opacity) {
  constexpr int kHalf = 127;
  return static_cast<std::uint8_t>((color * opacity + ground * (255 - opacity) + kHalf) / 255);
}

}  // namespace

bool HoldsOpacity(std::string_view kind) {
  constexpr std::string_view kKinds[] = {"png", "tiff", "tga", "webp"};
  return std::ranges::find(kKinds, kind) != std::end(kKinds);
}

bool HasOpacity(DibHandle picture) {
  const orvo::LockedImage image(picture);
  if (!image || image.layout().depth != 32) return false;
  unsigned any = 0;
  unsigned all = 255;
  for (int y = 0; y < image.layout().height; ++y) {
    const std::uint8_t* const row = image.row(y);
    for (int x = 0; x < image.layout().width; ++x) {
      any |= row[4 * x + 3];
      all &= row[4 * x + 3];
    }
  }
  return any != 0 && all != 255;
}

orvo::OwnedDib WithOpacityOf(DibHandle opacity, DibHandle colors) {
  const orvo::LockedImage from(opacity);
  const orvo::LockedImage shown(colors);
  if (!from || !shown || from.layout().depth != 32 || shown.layout().depth < 24 ||
      from.layout().width != shown.layout().width ||
      from.layout().height != shown.layout().height) {
    return {};
  }
  orvo::OwnedDib result = NewLike(shown, 32);
  const orvo::LockedImage both(result.get());
  if (!both) return {};
  const int step = shown.layout().depth / 8;
  for (int y = 0; y < both.layout().height; ++y) {
    const std::uint8_t* color = shown.row(y);
    const std::uint8_t* source = from.row(y);
    std::uint8_t* target = both.row(y);
    for (int x = 0; x < both.layout().width; ++x, color += step, source += 4, target += 4) {
      std::copy_n(color, 3, target);
      target[3] = source[3];
    }
  }
  return result;
}

orvo::OwnedDib LaidOn(const RGBQUAD& ground, DibHandle picture) {
  const orvo::LockedImage from(picture);
  if (!from) return {};
  orvo::OwnedDib result = NewLike(from, 24);
  const orvo::LockedImage flat(result.get());
  if (!flat) return {};
  for (int y = 0; y < flat.layout().height; ++y) {
    const std::uint8_t* source = from.row(y);
    std::uint8_t* target = flat.row(y);
    for (int x = 0; x < flat.layout().width; ++x, source += 4, target += 3) {
      target[0] = Mixed(source[0], ground.rgbBlue, source[3]);
      target[1] = Mixed(source[1], ground.rgbGreen, source[3]);
      target[2] = Mixed(source[2], ground.rgbRed, source[3]);
    }
  }
  return result;
}

}  // namespace client
