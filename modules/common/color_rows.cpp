#include "common/color_rows.h"

#include "common/pixel_formats.h"

namespace modules {

std::vector<Color> PaletteColors(const Pixels& image) {
  std::vector<Color> colors;
  for (int i = 0; i < image.paletteSize(); ++i) colors.push_back(ColorOf(image.palette[i]));
  return colors;
}

void ReadColors(const Pixels& image, int y, Color* colors) {
  const std::uint8_t* const row = image.row(y);
  const auto width = static_cast<std::size_t>(image.width);
  if (image.palette != nullptr) {
    return WithIndexFormat(image.depth, [&](auto format) {
      for (std::size_t x = 0; x < width; ++x)
        colors[x] = ColorOf(image.palette[format.read(row, x)]);
    });
  }
  WithColorFormat(image.depth, [&](auto format) {
    for (std::size_t x = 0; x < width; ++x) colors[x] = ColorOf(format.read(row, x));
  });
}

void WriteColors(const Pixels& image, int y, const Color* colors) {
  std::uint8_t* const row = image.row(y);
  WithColorFormat(image.depth, [&](auto format) {
    using Value = typename decltype(format)::Value;
    for (std::size_t x = 0; x < static_cast<std::size_t>(image.width); ++x) {
      format.write(row, x, Recolored(Value{}, colors[x]));
    }
  });
}

void ReadIndexes(const Pixels& image, int y, std::uint8_t* indexes) {
  const std::uint8_t* const row = image.row(y);
  WithIndexFormat(image.depth, [&](auto format) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(image.width); ++x) {
      indexes[x] = format.read(row, x);
    }
  });
}

void WriteIndexes(const Pixels& image, int y, const std::uint8_t* indexes) {
  std::uint8_t* const row = image.row(y);
  WithIndexFormat(image.depth, [&](auto format) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(image.width); ++x) {
      format.write(row, x, indexes[x]);
    }
  });
}

}  // namespace modules
