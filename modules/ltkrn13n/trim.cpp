// Cutting a bitmap to a rectangle.
#include "common/guard.h"
#include "common/pixel_formats.h"
#include "ltkrn13n/redrawing.h"

namespace {

using modules::Pixels;
using modules::Redrawing;

bool Holds(const Pixels& image, int left, int top, int width, int height) {
  return left >= 0 && top >= 0 && width > 0 && height > 0 && left <= image.width - width &&
         top <= image.height - height;
}

int Trim(struct_LEAD_Bitmap* bitmap, int left, int top, int width, int height) {
  Redrawing drawing(bitmap);
  if (!drawing.hasSource()) return kModuleNoBitmap;
  const Pixels& source = drawing.source();
  if (!Holds(source, left, top, width, height)) return kModuleBadParameter;
  if (const int code = drawing.begin(width, height, source.depth); code != kModuleSuccess) {
    return code;
  }
  const Pixels& target = drawing.target();
  const auto pixels = static_cast<std::size_t>(width);
  const auto skipped = static_cast<std::size_t>(left);
  const int code = modules::WithFormat(source.depth, [&](auto format) {
    return modules::ForEachRow(height, [&](int y) {
      const std::uint8_t* const from = source.row(top + y);
      std::uint8_t* const to = target.row(y);
      for (std::size_t x = 0; x < pixels; ++x) format.write(to, x, format.read(from, skipped + x));
    });
  });
  return code == kModuleSuccess ? drawing.finish(*bitmap) : code;
}

}  // namespace

int L_TrimBitmap(struct_LEAD_Bitmap* bitmap, int left, int top, int width, int height) {
  return modules::Guarded([=] { return Trim(bitmap, left, top, width, height); });
}
