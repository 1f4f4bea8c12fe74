#include "pictures/loading.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstring>

#include "common/pixel_formats.h"

namespace modules {
namespace {

OwnedBlock BlockFor(const Picture& picture) {
  BITMAPINFOHEADER model{};
  model.biXPelsPerMeter = picture.xPixelsPerMetre;
  model.biYPelsPerMeter = picture.yPixelsPerMetre;
  const auto layout = orvo::DibLayoutFor(picture.width, picture.height, picture.depth());
  Require(layout, kModuleNoMemory);
  RequireMemory(layout->totalBytes);
  return NewDibLike(model, picture.width, picture.height, picture.depth());
}

void FillPalette(const Picture& picture, const Pixels& image) {
  if (image.palette == nullptr) return;
  if (picture.palette.empty()) {
    FillGrayPalette(image);
    if (picture.reversed) std::reverse(image.palette, image.palette + image.paletteSize());
    return;
  }
  const std::size_t count =
      std::min(picture.palette.size(), static_cast<std::size_t>(image.paletteSize()));
  std::copy_n(picture.palette.begin(), count, image.palette);
}

// Spreads 2-bit values over 4-bit ones, in place: an even number of bytes for every four values
// begun. Tones become every fifth of the 16 grays.
void WidenTwoBits(std::uint8_t* row, int count, bool areTones) {
  const unsigned factor = areTones ? 5 : 1;
  // From the last to the first: what is written never lies before what is still to be read.
  for (std::size_t x = static_cast<std::size_t>(count + 3) / 4 * 4; x-- > 0;) {
    Format4::write(row, x, static_cast<std::uint8_t>(Format2::read(row, x) * factor));
  }
}

// Indexes as the colours and the alpha of their palette.
void SpreadIndexes(const Picture& picture, const std::uint8_t* indexes, std::uint8_t* row) {
  constexpr RGBQUAD kBeyondPalette{0, 0, 0, 255};
  WithIndexFormat(picture.bits, [&](auto format) {
    for (std::size_t x = 0; x < static_cast<std::size_t>(picture.width); ++x) {
      const std::size_t index = format.read(indexes, x);
      const bool isKnown = index < picture.palette.size();
      const RGBQUAD& entry = isKnown ? picture.palette[index] : kBeyondPalette;
      std::memcpy(row + 4 * x, &entry, sizeof entry);
    }
  });
}

void MixInks(const Picture& picture, const std::uint8_t* inks, std::uint8_t* row) {
  const int flip = picture.reversed ? 0 : 255;
  for (int x = 0; x < picture.width; ++x, inks += picture.samples) {
    const int black = inks[3] ^ flip;
    for (int ink = 2; ink >= 0; --ink) {
      *row++ = static_cast<std::uint8_t>(((inks[ink] ^ flip) * black + 127) / 255);
    }
    if (picture.hasAlpha) *row++ = inks[4];
  }
}

// Rows go straight into the image where they are as it has them; else by way of another row.
class Rows {
 public:
  explicit Rows(PictureReader& reader) : reader_(reader), picture_(reader.picture()) {
    const bool direct =
        picture_.bits <= 8 && !picture_.hasInks && (picture_.samples > 1 || !picture_.hasAlpha);
    if (!direct) other_.resize(picture_.rowBytes() + 3);
  }

  void read(std::uint8_t* row) {
    reader_.readRow(other_.empty() ? row : other_.data());
    if (picture_.hasInks) {
      MixInks(picture_, other_.data(), row);
    } else if (picture_.bits == 16) {
      for (std::size_t x = 0; x < static_cast<std::size_t>(picture_.width); ++x) {
        row[x] = Narrowed16(static_cast<std::uint32_t>(other_[2 * x] << 8 | other_[2 * x + 1]));
      }
    } else if (!other_.empty()) {
      SpreadIndexes(picture_, other_.data(), row);
    } else if (picture_.bits == 2) {
      WidenTwoBits(row, picture_.width, picture_.palette.empty());
    }
  }

 private:
  PictureReader& reader_;
  const Picture& picture_;
  std::vector<std::uint8_t> other_;
};

}  // namespace

void DescribePicture(const Picture& picture, LTFILEINFO& info) {
  constexpr int kBlueFirst = 1;
  const bool turned = SwapsSides(picture.orientation);
  info.format = picture.format;
  info.width = turned ? picture.height : picture.width;
  info.height = turned ? picture.width : picture.height;
  info.bitsPerPixel = picture.depth();
  info.order = kBlueFirst;
  info.xResolution = orvo::DotsPerInch(turned ? picture.yPixelsPerMetre : picture.xPixelsPerMetre);
  info.yResolution = orvo::DotsPerInch(turned ? picture.xPixelsPerMetre : picture.yPixelsPerMetre);
  const auto layout = orvo::DibLayoutFor(info.width, info.height, info.bitsPerPixel);
  info.sizeInMemory =
      layout ? static_cast<int>(std::min<std::size_t>(layout->totalBytes, INT_MAX)) : INT_MAX;
  (void)std::snprintf(info.compression, sizeof info.compression, "%s", picture.compression);
}

OwnedBlock LoadPicture(PictureReader& reader) {
  reader.start();
  const Picture& picture = reader.picture();
  OwnedBlock block = BlockFor(picture);
  {
    const LockedDib image(block.get());
    Require(image, kModuleNoMemory);
    FillPalette(picture, *image);
    Rows rows(reader);
    for (int y = 0; y < image->height; ++y) {
      rows.read(image->row(picture.bottomUp ? y : image->height - 1 - y));
    }
  }
  if (picture.orientation == kUpright) return block;
  block = TurnedUpright(std::move(block), picture.orientation);
  Require(block, kModuleNoMemory);
  return block;
}

}  // namespace modules
