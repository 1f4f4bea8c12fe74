#include "pictures/magick_pixels.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "common/color_rows.h"

namespace modules {
namespace {

constexpr std::uint64_t kMost = MaxRGB;

// Rounded to nearest, so that a tone of 5 or 8 bits comes back as it was.
std::uint8_t ToneOf(std::uint64_t quantum) {
  return static_cast<std::uint8_t>((quantum * 255 + kMost / 2) / kMost);
}
Quantum QuantumOf(std::uint8_t tone) {
  return static_cast<Quantum>(tone * (kMost / 255));
}

Color PlainColor(const PixelPacket& pixel) {
  return {ToneOf(pixel.blue), ToneOf(pixel.green), ToneOf(pixel.red)};
}
// Laid over white.
Color ColorOverWhite(const PixelPacket& pixel) {
  const std::uint64_t cover = kMost - pixel.opacity;
  const auto mixed = [&](std::uint64_t tone) {
    return ToneOf((tone * cover + kMost * pixel.opacity + kMost / 2) / kMost);
  };
  return {mixed(pixel.blue), mixed(pixel.green), mixed(pixel.red)};
}
PixelPacket PixelOf(Color color) {
  PixelPacket pixel{};
  pixel.red = QuantumOf(color.red);
  pixel.green = QuantumOf(color.green);
  pixel.blue = QuantumOf(color.blue);
  pixel.opacity = OpaqueOpacity;
  return pixel;
}

// The library writes the pixels of a two-toned PCX with 0 for black, whatever its palette, and the
// palette as it is: a picture in white and black has to be turned into one in black and white.
bool TurnsTones(const Pixels& source, const Image& image) {
  return source.depth == 1 && HasGrayRamp(source, true) && std::string_view(image.magick) == "PCX";
}

void CopyIndexes(const Pixels& source, int y, std::vector<std::uint8_t>& indexes,
                 const Image& image, PixelPacket* pixels, IndexPacket* packets) {
  ReadIndexes(source, y, indexes.data());
  const int flip = TurnsTones(source, image) ? 1 : 0;
  std::transform(indexes.begin(), indexes.end(), packets,
                 [=](std::uint8_t index) { return static_cast<IndexPacket>(index ^ flip); });
  std::transform(packets, packets + indexes.size(), pixels,
                 [&](IndexPacket index) { return image.colormap[index]; });
}

void CopyColors(const Pixels& source, int y, bool withAlpha, std::vector<Color>& colors,
                PixelPacket* pixels) {
  ReadColors(source, y, colors.data());
  std::transform(colors.begin(), colors.end(), pixels, PixelOf);
  if (!withAlpha) return;
  const std::uint8_t* const row = source.row(y);
  for (std::size_t x = 0; x < colors.size(); ++x) {
    pixels[x].opacity = static_cast<Quantum>(kMost - QuantumOf(row[4 * x + 3]));
  }
}

void MakePalette(const Pixels& source, Image& image) {
  if (source.palette == nullptr) {
    image.storage_class = DirectClass;
    return;
  }
  const int count = source.paletteSize();
  Require(Magick().AllocateImageColormap(&image, static_cast<unsigned long>(count)) == MagickPass,
          kModuleNoMemory);
  for (int i = 0; i < count; ++i) {
    image.colormap[i] = PixelOf(ColorOf(source.palette[i]));
  }
  if (TurnsTones(source, image)) std::swap(image.colormap[0], image.colormap[1]);
}

}  // namespace

bool FitsPalette(const Image& image, int depth) {
  return depth <= 8 && image.storage_class == PseudoClass && image.colors <= 1U << depth;
}

std::vector<RGBQUAD> PaletteOf(const Image& image) {
  std::vector<RGBQUAD> palette(image.colors);
  std::transform(image.colormap, image.colormap + image.colors, palette.begin(),
                 [](const PixelPacket& entry) { return EntryOf(PlainColor(entry)); });
  return palette;
}

void CopyLine(const Image& image, long line, int depth, std::uint8_t* row) {
  MagickReport report;
  const std::size_t width = image.columns;
  const PixelPacket* const pixels =
      Magick().AcquireImagePixels(&image, 0, line, width, 1, report.get());
  const IndexPacket* const packets = Magick().AccessImmutableIndexes(&image);
  Require(pixels != nullptr && (depth > 8 || packets != nullptr), kModuleNoMemory);
  Pixels target{.width = static_cast<int>(width), .height = 1, .depth = depth};
  target.bits = row;
  if (depth <= 8) {
    std::vector<std::uint8_t> indexes(width);
    const auto last = static_cast<IndexPacket>((1 << depth) - 1);
    std::transform(packets, packets + width, indexes.begin(), [=](IndexPacket index) {
      return static_cast<std::uint8_t>(std::min(index, last));
    });
    return WriteIndexes(target, 0, indexes.data());
  }
  std::vector<Color> colors(width);
  std::transform(pixels, pixels + width, colors.begin(),
                 image.matte != 0 ? ColorOverWhite : PlainColor);
  WriteColors(target, 0, colors.data());
}

void CopyToMagick(const Pixels& source, bool withAlpha, Image& image, MagickProgress& progress) {
  image.columns = static_cast<unsigned long>(source.width);
  image.rows = static_cast<unsigned long>(source.height);
  image.depth = 8;
  image.matte = withAlpha ? MagickTrue : MagickFalse;
  MakePalette(source, image);

  std::vector<Color> colors(image.columns);
  std::vector<std::uint8_t> indexes(image.columns);
  for (int line = 0; line < source.height; ++line) {
    const int y = source.height - 1 - line;
    PixelPacket* const pixels = Magick().SetImagePixels(&image, 0, line, image.columns, 1);
    Require(pixels, kModuleNoMemory);
    if (source.palette == nullptr) {
      CopyColors(source, y, withAlpha, colors, pixels);
    } else {
      CopyIndexes(source, y, indexes, image, pixels, Magick().AccessMutableIndexes(&image));
    }
    Require(Magick().SyncImagePixels(&image) == MagickPass, kModuleNoMemory);
    Require(progress.reportRows(line + 1, source.height), kModuleAborted);
  }
}

}  // namespace modules
