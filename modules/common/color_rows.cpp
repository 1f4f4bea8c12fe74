#include "common/color_rows.h"

#include <cstring>

#include "common/color_vectors.h"
#include "common/pixel_formats.h"

namespace modules {
namespace {

const std::uint8_t* BytesOf(const Color* colors) {
  return &colors->blue;
}
std::uint8_t* BytesOf(Color* colors) {
  return &colors->blue;
}

}  // namespace

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
  if (image.depth == 24) {
    std::memcpy(colors, row, image.rowBytes());
  } else if (image.depth == 32) {
    ORVO_BEST(ColorsFrom32)(row, width, BytesOf(colors));
  } else {
    for (std::size_t x = 0; x < width; ++x) colors[x] = ColorOf(Format16::read(row, x));
  }
}

const Color* RowOfColors(const Pixels& image, int y, Color* colors) {
  if (image.depth == 24) return reinterpret_cast<const Color*>(image.row(y));
  ReadColors(image, y, colors);
  return colors;
}

void WriteColors(const Pixels& image, int y, const Color* colors) {
  std::uint8_t* const row = image.row(y);
  const auto width = static_cast<std::size_t>(image.width);
  if (image.depth == 24) {
    std::memcpy(row, colors, image.rowBytes());
  } else if (image.depth == 32) {
    ORVO_BEST(ColorsTo32)(BytesOf(colors), width, row);
  } else {
    ORVO_BEST(ColorsTo16)(BytesOf(colors), width, reinterpret_cast<std::uint16_t*>(row));
  }
}

void WriteTones(const Color* colors, std::size_t count, std::uint8_t* tones) {
  ORVO_BEST(ColorsToTones)(BytesOf(colors), count, tones);
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
