#include "pictures/picture_rows.h"

#include <algorithm>
#include <cstring>

#include "common/pixel_formats.h"

namespace modules {
namespace {

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

}  // namespace

OwnedBlock BitmapFor(const Picture& picture, int width, int height) {
  BITMAPINFOHEADER model{};
  model.biXPelsPerMeter = picture.xPixelsPerMetre;
  model.biYPelsPerMeter = picture.yPixelsPerMetre;
  const auto layout = orvo::DibLayoutFor(width, height, picture.depth());
  Require(layout, kModuleNoMemory);
  RequireMemory(layout->totalBytes);
  OwnedBlock block = NewDibLike(model, width, height, picture.depth());
  const LockedDib image(block.get());
  Require(image, kModuleNoMemory);
  FillPalette(picture, *image);
  return block;
}

OwnedBlock UprightBlock(OwnedBlock block, int orientation) {
  if (orientation == kUpright) return block;
  block = TurnedUpright(std::move(block), orientation);
  Require(block, kModuleNoMemory);
  return block;
}

PictureRows::PictureRows(PictureReader& reader) : reader_(reader), picture_(reader.picture()) {
  const bool direct =
      picture_.bits <= 8 && !picture_.hasInks && (picture_.samples > 1 || !picture_.hasAlpha);
  if (!direct) other_.resize(picture_.rowBytes() + 3);
}

void PictureRows::read(std::uint8_t* row) {
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

}  // namespace modules
