// Cutting a bitmap to a rectangle.
#include <cstring>

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
  const Pixels& source = drawing.source();
  modules::Require(Holds(source, left, top, width, height), kModuleBadParameter);
  drawing.begin(width, height, source.depth);
  const Pixels& target = drawing.target();
  const auto pixels = static_cast<std::size_t>(width);
  const auto skipped = static_cast<std::size_t>(left);
  if (source.depth >= 8) {
    const std::size_t start = skipped * static_cast<std::size_t>(source.depth) / 8;
    modules::ForEachRow(height, [&](int y) {
      std::memcpy(target.row(y), source.row(top + y) + start, target.rowBytes());
    });
    return drawing.finish(*bitmap);
  }
  modules::WithIndexFormat(source.depth, [&](auto format) {
    modules::ForEachRow(height, [&](int y) {
      const std::uint8_t* const from = source.row(top + y);
      std::uint8_t* const to = target.row(y);
      for (std::size_t x = 0; x < pixels; ++x) format.write(to, x, format.read(from, skipped + x));
    });
  });
  return drawing.finish(*bitmap);
}

}  // namespace

int L_TrimBitmap(struct_LEAD_Bitmap* bitmap, int left, int top, int width, int height) {
  return modules::Guarded([=] { return Trim(bitmap, left, top, width, height); });
}
