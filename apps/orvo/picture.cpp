#include "picture.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace client {

std::string_view ColorsOf(int bits, std::span<const RGBQUAD> palette) {
  if (bits > 8) return "true color";
  const bool gray = std::ranges::all_of(palette, [](const RGBQUAD& color) {
    return color.rgbRed == color.rgbGreen && color.rgbGreen == color.rgbBlue;
  });
  return gray ? "gray" : "palette";
}

std::optional<Shape> ShapeOf(DibHandle picture) {
  const orvo::LockedImage image(picture);
  if (!image) return std::nullopt;
  const BITMAPINFOHEADER header = image.header();
  const auto* const palette =
      reinterpret_cast<const RGBQUAD*>(image.bytes() + orvo::kDibHeaderBytes);
  const std::size_t count = orvo::DibPaletteBytes(image.layout().depth) / sizeof(RGBQUAD);
  return Shape{.width = image.layout().width,
               .height = image.layout().height,
               .bits = image.layout().depth,
               .xDotsPerInch = orvo::DotsPerInch(header.biXPelsPerMeter),
               .yDotsPerInch = orvo::DotsPerInch(header.biYPelsPerMeter),
               .colors = ColorsOf(image.layout().depth, {palette, count})};
}

Report Described(const Shape& shape) {
  return Report::Fields{{"width", shape.width},        {"height", shape.height},
                        {"bits", shape.bits},          {"colors", shape.colors},
                        {"x_dpi", shape.xDotsPerInch}, {"y_dpi", shape.yDotsPerInch}};
}

orvo::OwnedDib Copied(DibHandle picture) {
  const orvo::LockedImage source(picture);
  if (!source) return {};
  orvo::OwnedDib copy(GlobalAlloc(orvo::kDibBlockFlags, source.layout().totalBytes));
  const orvo::BlockLock target(copy.get());
  if (!target) return {};
  std::memcpy(target.bytes(), source.bytes(), source.layout().totalBytes);
  return copy;
}

bool AreTheSame(DibHandle one, DibHandle other) {
  const orvo::LockedImage a(one);
  const orvo::LockedImage b(other);
  if (!a || !b) return false;
  const orvo::DibLayout& layout = a.layout();
  const auto facts = [](const orvo::LockedImage& image) {
    const BITMAPINFOHEADER header = image.header();
    return std::tuple(image.layout().width, image.layout().height, image.layout().depth,
                      header.biXPelsPerMeter, header.biYPelsPerMeter);
  };
  if (facts(a) != facts(b)) return false;
  if (std::memcmp(a.bytes() + orvo::kDibHeaderBytes, b.bytes() + orvo::kDibHeaderBytes,
                  layout.pixelOffset - orvo::kDibHeaderBytes) != 0) {
    return false;
  }
  // Rows are filled up with bits that nobody sees.
  const std::size_t bits =
      static_cast<std::size_t>(layout.width) * static_cast<unsigned>(layout.depth);
  for (int y = 0; y < layout.height; ++y) {
    const std::uint8_t* const left = a.row(y);
    const std::uint8_t* const right = b.row(y);
    if (std::memcmp(left, right, bits / 8) != 0) return false;
    if (bits % 8 != 0 && (left[bits / 8] ^ right[bits / 8]) >> (8 - bits % 8) != 0) return false;
  }
  return true;
}

}  // namespace client
