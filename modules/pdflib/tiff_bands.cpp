#include "pdflib/tiff_bands.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "pdflib/picture.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

using Kind = TiffPage::Kind;

int DepthOf(const TiffPage& page) {
  return page.kind == Kind::kIndexes ? page.bits : page.image.depth;
}

void Check(bool sound) {
  if (!sound) throw UnreadablePicture("TIFF");
}

}  // namespace

TiffBands::TiffBands(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes)
    : tiff_(tiff),
      page_(page),
      rows_(page),
      width_(static_cast<std::uint32_t>(page.image.width)),
      height_(static_cast<std::uint32_t>(page.image.height)),
      row_((static_cast<std::size_t>(width_) * static_cast<std::size_t>(DepthOf(page)) + 7) / 8),
      planes_(page.planar ? static_cast<std::size_t>(page.samples) : 1),
      planeRows_(planes_) {
  measure();
  checkSize(fileBytes);
}

// Strips are parts as wide as the page.
void TiffBands::measure() {
  tiled_ = TIFFIsTiled(tiff_) != 0;
  if (tiled_) {
    (void)TIFFGetField(tiff_, TIFFTAG_TILEWIDTH, &partWidth_);
    (void)TIFFGetField(tiff_, TIFFTAG_TILELENGTH, &partHeight_);
  } else {
    (void)TIFFGetFieldDefaulted(tiff_, TIFFTAG_ROWSPERSTRIP, &partHeight_);
    partWidth_ = width_;
    partHeight_ = std::min(partHeight_, height_);
  }
  const tmsize_t bytes = tiled_ ? TIFFTileSize(tiff_) : TIFFStripSize(tiff_);
  const tmsize_t rowBytes = tiled_ ? TIFFTileRowSize(tiff_) : TIFFScanlineSize(tiff_);
  Check(bytes > 0 && rowBytes > 0 && partWidth_ > 0 && partHeight_ > 0);
  partBytes_ = static_cast<std::size_t>(bytes);
  partRowBytes_ = static_cast<std::size_t>(rowBytes);
  parts_ = (width_ - 1) / partWidth_ + 1;
}

void TiffBands::checkSize(std::uint64_t fileBytes) const {
  const bool byLibrary = page_.kind == Kind::kByLibrary;
  const std::uint64_t bandBytes = byLibrary
                                      ? std::uint64_t{width_} * partHeight_ * sizeof(std::uint32_t)
                                      : std::uint64_t{partBytes_} * planes_ * parts_;
  Check(IsPlausible(bandBytes, fileBytes, page_.mostRatio));
  if (byLibrary) return;
  // Rows must be as long as their samples: the library has its own idea for subsampled colours.
  const std::uint64_t samples =
      std::uint64_t{partWidth_} * static_cast<std::uint64_t>(page_.planar ? 1 : page_.samples);
  Check(partRowBytes_ == (samples * static_cast<std::uint64_t>(page_.bits) + 7) / 8);
  // Indexes of several tiles are joined byte by byte.
  constexpr std::uint32_t kTileUnit = 16;
  Check(!tiled_ || partWidth_ % kTileUnit == 0);
}

const std::uint8_t* TiffBands::nextRow() {
  const bool byLibrary = page_.kind == Kind::kByLibrary;
  if (next_ >= bandTop_ + bandRows_) {
    bandTop_ += bandRows_;
    bandRows_ = std::min(partHeight_, height_ - bandTop_);
    if (byLibrary) {
      readBandByLibrary();
    } else {
      readBand();
    }
  }
  const std::uint32_t inBand = next_++ - bandTop_;
  if (byLibrary) {
    convertRasterRow(inBand);
  } else {
    convertRow(inBand);
  }
  return row_.data();
}

void TiffBands::readBand() {
  band_.resize(partBytes_ * planes_ * parts_);
  for (std::size_t part = 0; part < parts_; ++part) {
    decode(static_cast<std::uint32_t>(part) * partWidth_,
           band_.data() + part * planes_ * partBytes_);
  }
}

void TiffBands::decode(std::uint32_t left, std::uint8_t* target) {
  const auto wanted = static_cast<tmsize_t>(partBytes_);
  for (std::size_t plane = 0; plane < planes_; ++plane, target += partBytes_) {
    const auto sample = static_cast<std::uint16_t>(plane);
    const tmsize_t got =
        tiled_ ? TIFFReadEncodedTile(tiff_, TIFFComputeTile(tiff_, left, bandTop_, 0, sample),
                                     target, wanted)
               : TIFFReadEncodedStrip(tiff_, TIFFComputeStrip(tiff_, bandTop_, sample), target,
                                      wanted);
    Check(got >= static_cast<tmsize_t>(partRowBytes_ * bandRows_));
  }
}

void TiffBands::convertRow(std::uint32_t y) {
  const auto bits = static_cast<std::size_t>(page_.bits);
  const std::uint8_t* from = band_.data() + y * partRowBytes_;
  for (std::uint32_t left = 0; left < width_; left += std::min(partWidth_, width_ - left)) {
    const std::uint32_t count = std::min(partWidth_, width_ - left);
    for (const std::uint8_t*& plane : planeRows_) {
      plane = from;
      from += partBytes_;
    }
    if (page_.kind == Kind::kIndexes) {
      std::memcpy(row_.data() + left * bits / 8, planeRows_[0], (count * bits + 7) / 8);
    } else {
      rows_.store(planeRows_.data(), static_cast<int>(left), static_cast<int>(count), row_.data());
    }
  }
}

// The library's own conversion, for colours that are told apart nowhere else.
void TiffBands::readBandByLibrary() {
  raster_.resize(std::size_t{width_} * bandRows_);
  std::array<char, 1024> message{};
  TIFFRGBAImage conversion{};
  constexpr int kStopAtErrors = 1;
  Check(TIFFRGBAImageBegin(&conversion, tiff_, kStopAtErrors, message.data()) != 0);
  // Rows as stored, top first: the page is turned upright where it is drawn.
  conversion.orientation = conversion.req_orientation = ORIENTATION_TOPLEFT;
  conversion.row_offset = static_cast<int>(bandTop_);
  const int read = TIFFRGBAImageGet(&conversion, raster_.data(), width_, bandRows_);
  TIFFRGBAImageEnd(&conversion);
  Check(read != 0);
}

void TiffBands::convertRasterRow(std::uint32_t y) {
  const std::uint32_t* from = raster_.data() + std::size_t{y} * width_;
  for (std::size_t i = 0; i + 3 <= row_.size(); i += 3, ++from) {
    row_[i] = static_cast<std::uint8_t>(TIFFGetB(*from));
    row_[i + 1] = static_cast<std::uint8_t>(TIFFGetG(*from));
    row_[i + 2] = static_cast<std::uint8_t>(TIFFGetR(*from));
  }
}

}  // namespace modules
