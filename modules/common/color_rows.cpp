#include "common/color_rows.h"

#include "common/pixel_formats.h"

namespace modules {
namespace {

Color ColorOfPixel(const Pixels& image, std::uint8_t index) {
  return ColorOf(image.palette[index]);
}
Color ColorOfPixel(const Pixels& /*image*/, std::uint16_t pixel) {
  return ColorOf555(pixel);
}
Color ColorOfPixel(const Pixels& /*image*/, Color pixel) {
  return pixel;
}
Color ColorOfPixel(const Pixels& /*image*/, WideColor pixel) {
  return pixel.color;
}

template <class Format, class ValueAt>
void WriteRow(Format format, const Pixels& image, int y, const ValueAt& valueAt) {
  std::uint8_t* const row = image.row(y);
  const auto width = static_cast<std::size_t>(image.width);
  for (std::size_t x = 0; x < width; ++x) format.write(row, x, valueAt(x));
}

}  // namespace

void ReadColors(const Pixels& image, int y, Color* colors) {
  const std::uint8_t* const row = image.row(y);
  const auto width = static_cast<std::size_t>(image.width);
  WithFormat(image.depth, [&](auto format) {
    for (std::size_t x = 0; x < width; ++x) colors[x] = ColorOfPixel(image, format.read(row, x));
  });
}

void WriteColors(const Pixels& image, int y, const Color* colors) {
  switch (image.depth) {
    case 16:
      return WriteRow(Format16{}, image, y, [=](std::size_t x) { return With555(0, colors[x]); });
    case 24:
      return WriteRow(Format24{}, image, y, [=](std::size_t x) { return colors[x]; });
    default:
      return WriteRow(Format32{}, image, y, [=](std::size_t x) { return WideColor{colors[x], 0}; });
  }
}

void WriteIndexes(const Pixels& image, int y, const std::uint8_t* indexes) {
  const auto indexAt = [=](std::size_t x) { return indexes[x]; };
  switch (image.depth) {
    case 1:
      return WriteRow(Format1{}, image, y, indexAt);
    case 4:
      return WriteRow(Format4{}, image, y, indexAt);
    default:
      return WriteRow(Format8{}, image, y, indexAt);
  }
}

}  // namespace modules
