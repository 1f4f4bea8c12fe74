#include <algorithm>
#include <array>
#include <bit>

#include <orvo/file_limits.h>

#include "pictures/codecs.h"
#include "pictures/exif.h"
#include "pictures/file_handle.h"
#include "pictures/jpeg_session.h"

namespace modules {
namespace {

constexpr std::uint8_t kMarkerPrefix = 0xFF;
constexpr std::uint8_t kScanMarker = 0xDA;
constexpr int kExifMarker = JPEG_APP0 + 1;

// Marks of scans, those of a preview included. No other data of scans has their bytes.
std::uint64_t ScanCount(const char* path) {
  const FileHandle file = OpenToRead(path);
  std::array<std::uint8_t, 65536> part;
  std::uint64_t count = 0;
  bool afterMark = false;
  while (const std::size_t bytes = std::fread(part.data(), 1, part.size(), file.get())) {
    for (const std::uint8_t byte : std::span(part).first(bytes)) {
      if (afterMark && byte == kScanMarker) ++count;
      afterMark = byte == kMarkerPrefix;
    }
  }
  return count;
}

class JpegReader : public PictureReader {
 public:
  JpegReader(const char* path, Report report) : PictureReader(path, report), session_(report) {
    PrepareJpeg(session_, common());
  }
  ~JpegReader() override { jpeg_destroy_decompress(&codec_); }

  bool readHeader(int page) override {
    if (page != 1) return false;
    file_ = OpenToRead(path_);
    session_.run([this] {
      constexpr unsigned kWholeMarker = 0xFFFF;
      jpeg_create_decompress(&codec_);
      WatchJpeg(session_, common());
      jpeg_stdio_src(&codec_, file_.get());
      jpeg_save_markers(&codec_, kExifMarker, kWholeMarker);
      (void)jpeg_read_header(&codec_, TRUE);
      chooseColors();
      jpeg_calc_output_dimensions(&codec_);
    });
    describe();
    return true;
  }

  // By 2, 4 or 8, as the library can.
  void shrinkTo(int width, int height) override {
    constexpr unsigned kMostShrinking = 8;
    const unsigned room = std::min(codec_.image_width / static_cast<unsigned>(width),
                                   codec_.image_height / static_cast<unsigned>(height));
    codec_.scale_denom = std::bit_floor(std::clamp(room, 1U, kMostShrinking));
    session_.run([this] { jpeg_calc_output_dimensions(&codec_); });
    takeMeasures();
  }

  void start() override {
    // Whole blocks of one tone can take less than a bit.
    constexpr std::uint64_t kMostRatio = 4096;
    const std::uint64_t bytes = std::uint64_t{codec_.image_width} * codec_.image_height *
                                static_cast<std::uint64_t>(codec_.num_components);
    Require(IsPlausible(bytes, FileSize(path_), kMostRatio), kModuleReadFailed);
    if (jpeg_has_multiple_scans(&codec_) != 0) {
      // The coefficients of all blocks are kept until the last scan has come.
      RequireMemory(bytes * sizeof(JCOEF));
      Require(ScanCount(path_) <= OrvoLimitFiles(nullptr)->scans, kFileFormatDamaged);
    }
    session_.run([this] { (void)jpeg_start_decompress(&codec_); });
  }

  // The end mark is not asked for: all pixels are there without it.
  void readRow(std::uint8_t* row) override {
    session_.run([this, &row] { (void)jpeg_read_scanlines(&codec_, &row, 1); });
    if (codec_.output_scanline == codec_.output_height) session_.finish();
  }

  // Arithmetic coding is outside of what documents may hold.
  [[nodiscard]] std::optional<CodedStretch> codedStretch() const override {
    if (codec_.arith_code != 0) return std::nullopt;
    return CodedStretch{
        .coding = codec_.jpeg_color_space == JCS_RGB ? Coding::kJpegOfRgb : Coding::kJpeg,
        .bytes = FileSize(path_)};
  }

 private:
  j_common_ptr common() { return reinterpret_cast<j_common_ptr>(&codec_); }

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

  void takeMeasures() {
    picture_.width = static_cast<int>(codec_.output_width);
    picture_.height = static_cast<int>(codec_.output_height);
  }

  void describe() {
    takeMeasures();
    picture_.format = kFormatJpeg;
    picture_.compression = "JPEG";
    picture_.hasInks = codec_.out_color_space == JCS_CMYK;
    picture_.samples = picture_.hasInks ? 4 : codec_.out_color_space == JCS_GRAYSCALE ? 1 : 3;
    // Files with the Adobe mark hold the paper left white, plain ones the ink.
    picture_.reversed = picture_.hasInks && codec_.saw_Adobe_marker != 0;
    takeExif();
    if (codec_.saw_JFIF_marker == 0) return;
    // The units of tags, but counted from 0.
    picture_.setResolution(codec_.X_density, codec_.Y_density, codec_.density_unit + 1U);
  }

  void takeExif() {
    constexpr std::uint8_t kName[] = {'E', 'x', 'i', 'f', 0, 0};
    for (auto marker = codec_.marker_list; marker != nullptr; marker = marker->next) {
      const std::span<const std::uint8_t> data(marker->data, marker->data_length);
      if (data.size() > sizeof kName && std::equal(kName, kName + sizeof kName, data.begin())) {
        return ReadExif(data.subspan(sizeof kName), picture_);
      }
    }
  }

  FileHandle file_;
  jpeg_decompress_struct codec_{};
  JpegSession session_;
};

}  // namespace

// What stands between the first mark and the next is passed over.
bool IsJpeg(Head head) {
  return head.size() > 3 && head[0] == 0xFF && head[1] == 0xD8;
}

ReaderHandle OpenJpeg(const char* path, Report report) {
  return std::make_unique<JpegReader>(path, report);
}

}  // namespace modules
