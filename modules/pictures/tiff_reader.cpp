#include <algorithm>
#include <array>
#include <memory>
#include <vector>

#include "common/status.h"
#include "pictures/file_handle.h"
#include "pictures/tiff_codec.h"
#include "pictures/tiff_rows.h"

namespace modules {
namespace {

constexpr std::uint32_t kTileUnit = 16;  // tiles begin at a multiple of this many pixels

// The parts in which a page is coded: tiles, or strips, which are tiles as wide as the page.
struct Parts {
  bool tiled = false;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  tmsize_t bytes = 0;     // of a decoded part, of one plane when the page is planar
  tmsize_t rowBytes = 0;  // of a row of a part
};

// Nothing to read when bytes or rowBytes is not above 0.
Parts PartsOf(TIFF* tiff, const FileImage& image) {
  Parts parts;
  parts.tiled = TIFFIsTiled(tiff) != 0;
  if (parts.tiled) {
    (void)TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &parts.width);
    (void)TIFFGetField(tiff, TIFFTAG_TILELENGTH, &parts.height);
    parts.bytes = TIFFTileSize(tiff);
    parts.rowBytes = TIFFTileRowSize(tiff);
  } else {
    (void)TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &parts.height);
    parts.width = static_cast<std::uint32_t>(image.width);
    parts.height = std::min(parts.height, static_cast<std::uint32_t>(image.height));
    parts.bytes = TIFFStripSize(tiff);
    parts.rowBytes = TIFFScanlineSize(tiff);
  }
  return parts;
}

class PartReader {
 public:
  PartReader(TIFF* tiff, const TiffPage& page, const Parts& parts, const Pixels& image)
      : tiff_(tiff),
        parts_(parts),
        image_(image),
        rows_(page),
        planes_(page.planar ? static_cast<std::size_t>(page.samples) : 1),
        bytes_(static_cast<std::size_t>(parts.bytes)),
        buffer_(std::make_unique_for_overwrite<std::uint8_t[]>(bytes_ * planes_.size())) {}

  int read() {
    const auto width = static_cast<std::uint32_t>(image_.width);
    const auto height = static_cast<std::uint32_t>(image_.height);
    Progress progress(height);
    for (std::uint32_t top = 0; top < height; top += std::min(parts_.height, height - top)) {
      const std::uint32_t rows = std::min(parts_.height, height - top);
      for (std::uint32_t left = 0; left < width; left += std::min(parts_.width, width - left)) {
        if (!decode(left, top, rows)) return kModuleReadFailed;
        storeRows(left, top, std::min(parts_.width, width - left), rows);
      }
      if (!progress.report(top + rows)) return kModuleAborted;
    }
    return kModuleSuccess;
  }

 private:
  // All planes of one part.
  bool decode(std::uint32_t left, std::uint32_t top, std::uint32_t rows) {
    const tmsize_t needed = parts_.rowBytes * static_cast<tmsize_t>(rows);
    for (std::size_t plane = 0; plane < planes_.size(); ++plane) {
      const auto sample = static_cast<std::uint16_t>(plane);
      std::uint8_t* const target = buffer_.get() + plane * bytes_;
      const tmsize_t got =
          parts_.tiled ? TIFFReadEncodedTile(tiff_, TIFFComputeTile(tiff_, left, top, 0, sample),
                                             target, parts_.bytes)
                       : TIFFReadEncodedStrip(tiff_, TIFFComputeStrip(tiff_, top, sample), target,
                                              parts_.bytes);
      if (got < needed) return false;
    }
    return true;
  }

  void storeRows(std::uint32_t left, std::uint32_t top, std::uint32_t width, std::uint32_t rows) {
    for (std::uint32_t y = 0; y < rows; ++y) {
      for (std::size_t plane = 0; plane < planes_.size(); ++plane) {
        planes_[plane] =
            buffer_.get() + plane * bytes_ + y * static_cast<std::size_t>(parts_.rowBytes);
      }
      rows_.store(planes_.data(), static_cast<int>(left), static_cast<int>(width),
                  LineFromTop(image_, static_cast<int>(top + y)));
    }
  }

  TIFF* tiff_;
  const Parts& parts_;
  const Pixels& image_;
  TiffRows rows_;
  std::vector<const std::uint8_t*> planes_;  // where the current row of each plane begins
  std::size_t bytes_;
  std::unique_ptr<std::uint8_t[]> buffer_;
};

int ReadParts(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes, const Pixels& image) {
  const Parts parts = PartsOf(tiff, page.image);
  const std::uint64_t planes = page.planar ? static_cast<std::uint64_t>(page.samples) : 1;
  if (parts.bytes <= 0 || parts.rowBytes <= 0 || parts.width == 0 || parts.height == 0 ||
      !IsPlausible(static_cast<std::uint64_t>(parts.bytes) * planes, fileBytes, page.mostRatio)) {
    return kFileFormatDamaged;
  }
  // Rows must be as long as their samples: the library has its own idea for subsampled colours.
  const std::uint64_t samples =
      std::uint64_t{parts.width} * static_cast<std::uint64_t>(page.planar ? 1 : page.samples);
  const bool packed = page.kind == TiffPage::Kind::kIndexes && parts.tiled;
  if (static_cast<std::uint64_t>(parts.rowBytes) !=
          (samples * static_cast<std::uint64_t>(page.bits) + 7) / 8 ||
      (packed && parts.width % kTileUnit != 0)) {
    return kFileFormatDamaged;
  }
  return PartReader(tiff, page, parts, image).read();
}

// The library's own conversion to red, green, blue and alpha bytes; the alpha is left out.
int ReadByLibrary(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes, const Pixels& image) {
  const auto width = static_cast<std::uint32_t>(image.width);
  const auto height = static_cast<std::uint32_t>(image.height);
  const std::uint32_t rows = std::clamp(PartsOf(tiff, page.image).height, 1U, height);
  const std::size_t pixels = std::size_t{width} * rows;
  if (!IsPlausible(pixels * sizeof(std::uint32_t), fileBytes, page.mostRatio)) {
    return kFileFormatDamaged;
  }
  const auto raster = std::make_unique<std::uint32_t[]>(pixels);
  std::array<char, 1024> message{};
  TIFFRGBAImage conversion{};
  constexpr int kStopAtErrors = 1;
  if (TIFFRGBAImageBegin(&conversion, tiff, kStopAtErrors, message.data()) == 0) {
    return kFileFormatNotRead;
  }
  // Rows come as stored, top first; the orientation is applied later, as to all images.
  conversion.orientation = conversion.req_orientation = ORIENTATION_TOPLEFT;
  int code = kModuleSuccess;
  Progress progress(height);
  for (std::uint32_t top = 0; top < height && code == kModuleSuccess; top += rows) {
    const std::uint32_t count = std::min(rows, height - top);
    conversion.row_offset = static_cast<int>(top);
    if (TIFFRGBAImageGet(&conversion, raster.get(), width, count) == 0) {
      code = kModuleReadFailed;
      break;
    }
    for (std::uint32_t y = 0; y < count; ++y) {
      std::uint8_t* out = LineFromTop(image, static_cast<int>(top + y));
      for (std::uint32_t x = 0; x < width; ++x) {
        const std::uint32_t pixel = raster[std::size_t{y} * width + x];
        *out++ = static_cast<std::uint8_t>(TIFFGetB(pixel));
        *out++ = static_cast<std::uint8_t>(TIFFGetG(pixel));
        *out++ = static_cast<std::uint8_t>(TIFFGetR(pixel));
      }
    }
    if (!progress.report(top + count)) code = kModuleAborted;
  }
  TIFFRGBAImageEnd(&conversion);
  return code;
}

// Entries have 16 bits a colour; some writers store bytes there.
void FillPalette(TIFF* tiff, const Pixels& image) {
  constexpr int kMostBits = 8;
  std::uint16_t* red = nullptr;
  std::uint16_t* green = nullptr;
  std::uint16_t* blue = nullptr;
  if (TIFFGetField(tiff, TIFFTAG_COLORMAP, &red, &green, &blue) == 0) return;
  std::uint16_t bits = 0;
  (void)TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
  const int count = std::min(1 << std::min<int>(bits, kMostBits), image.paletteSize());
  const auto isByte = [](std::uint16_t tone) { return tone < 256; };
  const bool areBytes = std::all_of(red, red + count, isByte) &&
                        std::all_of(green, green + count, isByte) &&
                        std::all_of(blue, blue + count, isByte);
  const auto toneOf = [=](std::uint16_t tone) {
    return static_cast<std::uint8_t>(areBytes ? tone : (tone * 255U + 32767U) / 65535U);
  };
  for (int i = 0; i < count; ++i) {
    image.palette[i] = RGBQUAD{toneOf(blue[i]), toneOf(green[i]), toneOf(red[i]), 0};
  }
}

}  // namespace

int ReadTiffPixels(TIFF* tiff, const TiffPage& page, std::uint64_t fileBytes, const Pixels& image) {
  if (page.hasPalette) {
    FillPalette(tiff, image);
  } else if (image.palette != nullptr) {
    FillGrayPalette(image);
    // Index 0 shows white; samples of their own were turned round already.
    if (page.whiteIsZero && page.kind == TiffPage::Kind::kIndexes) {
      std::reverse(image.palette, image.palette + image.paletteSize());
    }
  }
  return page.kind == TiffPage::Kind::kByLibrary ? ReadByLibrary(tiff, page, fileBytes, image)
                                                 : ReadParts(tiff, page, fileBytes, image);
}

}  // namespace modules
