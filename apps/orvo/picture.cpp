#include "picture.h"

#include <algorithm>
#include <span>

#include <orvo/dib_block.h>

namespace client {
namespace {

std::string_view ColorsOf(const void* block, const orvo::DibLayout& layout) {
  const std::size_t count = orvo::DibPaletteBytes(layout.depth) / sizeof(RGBQUAD);
  if (count == 0) return "true color";
  const auto* const palette = reinterpret_cast<const RGBQUAD*>(
      static_cast<const std::byte*>(block) + orvo::kDibHeaderBytes);
  const auto entries = std::span(palette, count);
  const bool gray = std::all_of(entries.begin(), entries.end(), [](const RGBQUAD& color) {
    return color.rgbRed == color.rgbGreen && color.rgbGreen == color.rgbBlue;
  });
  return gray ? "gray" : "palette";
}

}  // namespace

std::optional<Shape> ShapeOf(DibHandle picture) {
  const orvo::LockedImage image(picture);
  if (!image) return std::nullopt;
  const BITMAPINFOHEADER header = image.header();
  return Shape{.width = image.layout().width,
               .height = image.layout().height,
               .bits = image.layout().depth,
               .xDotsPerInch = orvo::DotsPerInch(header.biXPelsPerMeter),
               .yDotsPerInch = orvo::DotsPerInch(header.biYPelsPerMeter),
               .colors = ColorsOf(image.bytes(), image.layout())};
}

Report Described(const Shape& shape) {
  return Report::Fields{{"width", shape.width},        {"height", shape.height},
                        {"bits", shape.bits},          {"colors", shape.colors},
                        {"x_dpi", shape.xDotsPerInch}, {"y_dpi", shape.yDotsPerInch}};
}

}  // namespace client
