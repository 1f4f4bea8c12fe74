#include "pictures/magick_pixels.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "common/color_rows.h"
#include "pictures/index_rows.h"

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

// One row of an image, as indexes or as colours.
class RowToDib {
 public:
  RowToDib(const Image& image, const Pixels& target)
      : target_(target), colors_(image.columns), indexes_(image.columns), matte_(image.matte != 0) {
    for (unsigned i = 0; target.palette != nullptr && i < image.colors; ++i) {
      target.palette[i] = EntryOf(PlainColor(image.colormap[i]));
    }
  }

  void copy(const PixelPacket* pixels, const IndexPacket* indexes, int y) {
    if (target_.palette != nullptr) {
      const auto last = static_cast<IndexPacket>(target_.paletteSize() - 1);
      std::transform(indexes, indexes + indexes_.size(), indexes_.begin(), [=](IndexPacket index) {
        return static_cast<std::uint8_t>(std::min(index, last));
      });
      return WriteIndexes(target_, y, indexes_.data());
    }
    const bool keepsAlpha = target_.depth == 32;
    const auto color = matte_ && !keepsAlpha ? ColorOverWhite : PlainColor;
    std::transform(pixels, pixels + colors_.size(), colors_.begin(), color);
    WriteColors(target_, y, colors_.data());
    if (!keepsAlpha || !matte_) return;
    std::uint8_t* const row = target_.row(y);
    for (std::size_t x = 0; x < colors_.size(); ++x) {
      row[4 * x + 3] = ToneOf(kMost - pixels[x].opacity);
    }
  }

 private:
  const Pixels& target_;
  std::vector<Color> colors_;
  std::vector<std::uint8_t> indexes_;
  bool matte_;
};

void CopyIndexes(const Pixels& source, int y, std::vector<std::uint8_t>& indexes,
                 const Image& image, PixelPacket* pixels, IndexPacket* packets) {
  ReadIndexes(source, y, indexes.data());
  std::copy(indexes.begin(), indexes.end(), packets);
  std::transform(indexes.begin(), indexes.end(), pixels,
                 [&](std::uint8_t index) { return image.colormap[index]; });
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

bool MakePalette(const Pixels& source, Image& image) {
  if (source.palette == nullptr) {
    image.storage_class = DirectClass;
    return true;
  }
  const int count = source.paletteSize();
  if (AllocateImageColormap(&image, static_cast<unsigned long>(count)) != MagickPass) return false;
  for (int i = 0; i < count; ++i) {
    image.colormap[i] = PixelOf(ColorOf(source.palette[i]));
  }
  return true;
}

}  // namespace

bool FitsPalette(const Image& image, int depth) {
  return depth <= 8 && image.storage_class == PseudoClass && image.colors <= 1U << depth;
}

int CopyFromMagick(const Image& image, const Pixels& target, MagickProgress& progress) {
  MagickReport report;
  RowToDib row(image, target);
  for (int line = 0; line < target.height; ++line) {
    const PixelPacket* const pixels =
        AcquireImagePixels(&image, 0, line, image.columns, 1, report.get());
    const IndexPacket* const indexes = AccessImmutableIndexes(&image);
    if (pixels == nullptr || (target.palette != nullptr && indexes == nullptr)) {
      return kModuleNoMemory;
    }
    row.copy(pixels, indexes, target.height - 1 - line);
    if (!progress.reportRows(line + 1, target.height)) return kModuleAborted;
  }
  return kModuleSuccess;
}

int CopyToMagick(const Pixels& source, bool withAlpha, Image& image, MagickProgress& progress) {
  image.columns = static_cast<unsigned long>(source.width);
  image.rows = static_cast<unsigned long>(source.height);
  image.depth = 8;
  image.matte = withAlpha ? MagickTrue : MagickFalse;
  if (!MakePalette(source, image)) return kModuleNoMemory;

  std::vector<Color> colors(image.columns);
  std::vector<std::uint8_t> indexes(image.columns);
  for (int line = 0; line < source.height; ++line) {
    const int y = source.height - 1 - line;
    PixelPacket* const pixels = SetImagePixels(&image, 0, line, image.columns, 1);
    if (pixels == nullptr) return kModuleNoMemory;
    if (source.palette == nullptr) {
      CopyColors(source, y, withAlpha, colors, pixels);
    } else {
      CopyIndexes(source, y, indexes, image, pixels, AccessMutableIndexes(&image));
    }
    if (SyncImagePixels(&image) != MagickPass) return kModuleNoMemory;
    if (!progress.reportRows(line + 1, source.height)) return kModuleAborted;
  }
  return kModuleSuccess;
}

}  // namespace modules
