#include "pictures/tiff_bands.h"

#include <algorithm>
#include <array>

#include "pictures/file_handle.h"

namespace modules {

TiffBands::TiffBands(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes)
    : tiff_(tiff),
      page_(page),
      rows_(page),
      width_(static_cast<std::uint32_t>(page.picture.width)),
      height_(static_cast<std::uint32_t>(page.picture.height)),
      byLibrary_(page.kind == TiffPage::Kind::kByLibrary),
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
  Require(bytes > 0 && rowBytes > 0 && partWidth_ > 0 && partHeight_ > 0, kFileFormatDamaged);
  if (byLibrary_) {
    tiled_ = false;
    partWidth_ = width_;
    partRowBytes_ = std::size_t{width_} * sizeof(std::uint32_t);
    partBytes_ = partRowBytes_ * partHeight_;
    parts_ = 1;
    return;
  }
  partBytes_ = static_cast<std::size_t>(bytes);
  partRowBytes_ = static_cast<std::size_t>(rowBytes);
  parts_ = (width_ - 1) / partWidth_ + 1;
}

void TiffBands::checkSize(std::uint64_t fileBytes) const {
  const std::uint64_t bandBytes = std::uint64_t{partBytes_} * planes_ * parts_;
  Require(IsPlausible(bandBytes, fileBytes, page_.mostRatio), kFileFormatDamaged);
  RequireMemory(bandBytes);
  // Rows must be as long as their samples: the library has its own idea for subsampled colours.
  const std::uint64_t samples =
      std::uint64_t{partWidth_} * static_cast<std::uint64_t>(page_.planar ? 1 : page_.samples);
  // Tiles of several pixels to a byte are joined byte by byte.
  constexpr std::uint32_t kTileUnit = 16;
  const bool joins = !tiled_ || page_.kind != TiffPage::Kind::kAsStored;
  Require(partRowBytes_ == (samples * static_cast<std::uint64_t>(page_.bits) + 7) / 8 &&
              (joins || partWidth_ % kTileUnit == 0),
          kFileFormatDamaged);
}

void TiffBands::readRow(std::uint8_t* row) {
  if (next_ >= bandTop_ + bandRows_) {
    bandTop_ += bandRows_;
    bandRows_ = std::min(partHeight_, height_ - bandTop_);
    byLibrary_ ? readBandByLibrary() : readBand();
  }
  storeRow(next_++ - bandTop_, row);
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
    Require(got >= static_cast<tmsize_t>(partRowBytes_ * bandRows_), kModuleReadFailed);
  }
}

void TiffBands::storeRow(std::uint32_t y, std::uint8_t* row) {
  const std::uint8_t* from = band_.data() + y * partRowBytes_;
  for (std::uint32_t left = 0; left < width_; left += std::min(partWidth_, width_ - left)) {
    for (const std::uint8_t*& plane : planeRows_) {
      plane = from;
      from += partBytes_;
    }
    const std::uint32_t count = std::min(partWidth_, width_ - left);
    rows_.store(planeRows_.data(), static_cast<int>(left), static_cast<int>(count), row);
  }
}

// The library's own conversion, for colours that are told apart nowhere else.
void TiffBands::readBandByLibrary() {
  band_.resize(partBytes_);
  std::array<char, 1024> message{};
  TIFFRGBAImage conversion{};
  constexpr int kStopAtErrors = 1;
  Require(TIFFRGBAImageBegin(&conversion, tiff_, kStopAtErrors, message.data()) != 0,
          kFileFormatNotRead);
  // Rows as stored, top first: the picture is turned upright later, as all are.
  conversion.orientation = conversion.req_orientation = ORIENTATION_TOPLEFT;
  conversion.row_offset = static_cast<int>(bandTop_);
  const int read = TIFFRGBAImageGet(&conversion, reinterpret_cast<std::uint32_t*>(band_.data()),
                                    width_, bandRows_);
  TIFFRGBAImageEnd(&conversion);
  Require(read != 0, kModuleReadFailed);
}

}  // namespace modules
