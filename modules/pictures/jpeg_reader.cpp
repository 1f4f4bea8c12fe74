#include <algorithm>
#include <bit>
#include <memory>

#include "pictures/exif.h"
#include "pictures/file_handle.h"
#include "pictures/jpeg_codec.h"
#include "pictures/jpeg_session.h"
#include "pictures/library_calls.h"

namespace modules {
namespace {

// No coding of the library needs less than a few bits for a block of 64 samples.
constexpr std::uint64_t kMostRatio = 2048;
constexpr unsigned kDotsPerInchUnit = 1;
constexpr unsigned kDotsPerCentimetreUnit = 2;
constexpr int kExifMarker = JPEG_APP0 + 1;

class JpegReader {
 public:
  JpegReader() { PrepareJpeg(session_, common()); }
  ~JpegReader() { jpeg_destroy_decompress(&codec_); }
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;

  // Reads what stands before the pixels. Module code.
  int open(const char* path, int page) {
    if (page != 1) return kModuleBadParameter;
    file_ = OpenFile(path, "rb");
    if (!file_) return kModuleFileNotOpened;
    fileBytes_ = FileSize(path);
    return attempt([this] {
      constexpr unsigned kWholeMarker = 0xFFFF;
      jpeg_create_decompress(&codec_);
      WatchJpeg(session_, common());
      jpeg_stdio_src(&codec_, file_.get());
      jpeg_save_markers(&codec_, kExifMarker, kWholeMarker);
      (void)jpeg_read_header(&codec_, TRUE);
      chooseColors();
      jpeg_calc_output_dimensions(&codec_);
    });
  }

  // Lets the library shrink the image by 2, 4 or 8 while it stays at least this large as stored.
  int shrinkTo(int width, int height) {
    constexpr unsigned kMostShrinking = 8;
    const unsigned room = std::min(codec_.image_width / static_cast<unsigned>(width),
                                   codec_.image_height / static_cast<unsigned>(height));
    codec_.scale_denom = std::bit_floor(std::clamp(room, 1U, kMostShrinking));
    return attempt([this] { jpeg_calc_output_dimensions(&codec_); });
  }

  [[nodiscard]] FileImage image() const {
    const Exif exif = exifTags();
    FileImage image{.width = static_cast<int>(codec_.output_width),
                    .height = static_cast<int>(codec_.output_height),
                    .depth = codec_.out_color_space == JCS_GRAYSCALE ? 8 : 24,
                    .xPixelsPerMetre = exif.xPixelsPerMetre,
                    .yPixelsPerMetre = exif.yPixelsPerMetre,
                    .orientation = exif.orientation};
    const bool inches = codec_.density_unit == kDotsPerInchUnit;
    if (codec_.saw_JFIF_marker != 0 && (inches || codec_.density_unit == kDotsPerCentimetreUnit)) {
      const double metres = inches ? orvo::kMetresPerInch : 0.01;
      image.xPixelsPerMetre = PixelsPerMetreOf(codec_.X_density, metres);
      image.yPixelsPerMetre = PixelsPerMetreOf(codec_.Y_density, metres);
    }
    return image;
  }

  [[nodiscard]] bool isPlausible() const {
    const std::uint64_t bytes = std::uint64_t{codec_.image_width} * codec_.image_height *
                                static_cast<std::uint64_t>(codec_.num_components);
    return IsPlausible(bytes, fileBytes_, kMostRatio);
  }

  int read(const Pixels& image) {
    if (image.palette != nullptr) FillGrayPalette(image);
    std::unique_ptr<std::uint8_t[]> inks;
    if (codec_.out_color_space == JCS_CMYK) {
      inks = std::make_unique_for_overwrite<std::uint8_t[]>(std::size_t{codec_.output_width} * 4);
    }
    std::uint8_t* const inkRow = inks.get();
    return attempt([&, this] {
      (void)jpeg_start_decompress(&codec_);
      while (codec_.output_scanline < codec_.output_height) {
        std::uint8_t* const line = LineFromTop(image, static_cast<int>(codec_.output_scanline));
        JSAMPROW row = inkRow != nullptr ? inkRow : line;
        (void)jpeg_read_scanlines(&codec_, &row, 1);
        if (inkRow != nullptr) mixInks(inkRow, line);
      }
      // The end mark is not asked for: all pixels are there.
      if (!session_.progress.report(100)) LeaveJpeg(common(), kModuleAborted);
    });
  }

 private:
  j_common_ptr common() { return reinterpret_cast<j_common_ptr>(&codec_); }

  template <class Calls>
  int attempt(const Calls& calls) {
    return Attempt(session_.jump, calls) ? kModuleSuccess : session_.code;
  }

  void chooseColors() {
    switch (codec_.jpeg_color_space) {
      case JCS_GRAYSCALE:
        codec_.out_color_space = JCS_GRAYSCALE;
        break;
      case JCS_CMYK:
      case JCS_YCCK:
        codec_.out_color_space = JCS_CMYK;
        break;
      default:
        codec_.out_color_space = JCS_EXT_BGR;
        break;
    }
  }

  [[nodiscard]] Exif exifTags() const {
    constexpr std::uint8_t kName[] = {'E', 'x', 'i', 'f', 0, 0};
    for (auto marker = codec_.marker_list; marker != nullptr; marker = marker->next) {
      const std::span<const std::uint8_t> data(marker->data, marker->data_length);
      if (data.size() > sizeof kName && std::equal(kName, kName + sizeof kName, data.begin())) {
        return ReadExif(data.subspan(sizeof kName));
      }
    }
    return {};
  }

  // Files with the Adobe mark hold the paper left white, plain ones the ink.
  void mixInks(const std::uint8_t* inks, std::uint8_t* line) const {
    const int flip = codec_.saw_Adobe_marker != 0 ? 0 : 255;
    for (JDIMENSION x = 0; x < codec_.output_width; ++x, inks += 4) {
      const int black = inks[3] ^ flip;
      for (int ink = 2; ink >= 0; --ink) {
        *line++ = static_cast<std::uint8_t>(((inks[ink] ^ flip) * black + 127) / 255);
      }
    }
  }

  FileHandle file_;
  std::uint64_t fileBytes_ = 0;
  jpeg_decompress_struct codec_{};
  JpegSession session_;
};

int Load(JpegReader& reader, struct_LEAD_Bitmap& bitmap) {
  if (!reader.isPlausible()) return kModuleReadFailed;
  return LoadImage(reader.image(), bitmap,
                   [&](const Pixels& pixels) { return reader.read(pixels); });
}

}  // namespace

int DescribeJpeg(const char* path, int page, LTFILEINFO& info) {
  JpegReader reader;
  const int code = reader.open(path, page);
  if (code == kModuleSuccess) DescribeImage(reader.image(), kFormatJpeg, "JPEG", info);
  return code;
}

int LoadJpeg(const char* path, int page, struct_LEAD_Bitmap& bitmap) {
  JpegReader reader;
  const int code = reader.open(path, page);
  return code == kModuleSuccess ? Load(reader, bitmap) : code;
}

int LoadJpegAtLeast(const char* path, int page, int width, int height, struct_LEAD_Bitmap& bitmap) {
  JpegReader reader;
  if (const int code = reader.open(path, page); code != kModuleSuccess) return code;
  if (SwapsSides(reader.image().orientation)) std::swap(width, height);
  const int code = reader.shrinkTo(width, height);
  return code == kModuleSuccess ? Load(reader, bitmap) : code;
}

}  // namespace modules
