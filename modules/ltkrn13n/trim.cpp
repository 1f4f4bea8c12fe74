// Cutting a bitmap to a rectangle.
#include "common/guard.h"
#include "common/pixel_formats.h"
#include "ltkrn13n/redrawing.h"

namespace {

using provider::Pixels;
using provider::Redrawing;

bool Holds(const Pixels& image, int left, int top, int width, int height) {
  return left >= 0 && top >= 0 && width > 0 && height > 0 && left <= image.width - width &&
         top <= image.height - height;
}

int Trim(struct_LEAD_Bitmap* bitmap, int left, int top, int width, int height) {
  Redrawing drawing(bitmap);
  if (!drawing.hasSource()) return kVendorNoBitmap;
  const Pixels& source = drawing.source();
  if (!Holds(source, left, top, width, height)) return kVendorBadParameter;
  if (const int code = drawing.begin(width, height, source.depth); code != kVendorSuccess) {
    return code;
  }
  const Pixels& target = drawing.target();
  const auto pixels = static_cast<std::size_t>(width);
  const auto skipped = static_cast<std::size_t>(left);
  const int code = provider::WithFormat(source.depth, [&](auto format) {
    return provider::ForEachRow(height, [&](int y) {
      const std::uint8_t* const from = source.row(top + y);
      std::uint8_t* const to = target.row(y);
      for (std::size_t x = 0; x < pixels; ++x) format.write(to, x, format.read(from, skipped + x));
    });
  });
  return code == kVendorSuccess ? drawing.finish(*bitmap) : code;
}

}  // namespace

int L_TrimBitmap(struct_LEAD_Bitmap* bitmap, int left, int top, int width, int height) {
  return provider::Guarded([=] { return Trim(bitmap, left, top, width, height); });
}
