// JPEG. A file that readers of documents can take goes into the document byte for byte; it is
// decoded all the same, so that a damaged one is refused here and not met in the document.
#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <span>
#include <vector>

// The codes of arithmetic coding are only there behind the library's own header.
// clang-format off
#include <jpeglib.h>
#include <jerror.h>
// clang-format on

#include "pdflib/picture_files.h"
#include "pictures/exif.h"
#include "pictures/file_handle.h"
#include "pictures/picture.h"
#include "pictures/library_calls.h"

namespace modules {
namespace {

constexpr double kMetresPerCentimetre = 0.01;
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr unsigned kLongestMarker = 0xFFFF;
// Whole blocks of one tone can take less than a bit.
constexpr std::uint64_t kMostRatio = 4096;

struct ErrorExit {
  jpeg_error_mgr errors{};
  std::jmp_buf jump{};
};

[[noreturn]] void Leave(j_common_ptr codec) {
  std::longjmp(static_cast<ErrorExit*>(codec->client_data)->jump, 1);
}

// Warnings that mean lost pixels end the work: half a picture is not taken for a whole one.
void OnMessage(j_common_ptr codec, int level) {
  if (level >= 0) return;
  switch (codec->err->msg_code) {
    case JWRN_JPEG_EOF:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_MUST_RESYNC:
      Leave(codec);
    default:
      break;
  }
}

void StaySilent(j_common_ptr /*codec*/) {}

// A progressive file of some kilobytes can ask for thousands of passes over a huge picture.
void LimitScans(j_common_ptr codec) {
  constexpr int kMostScans = 500;
  if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > kMostScans) Leave(codec);
}

class JpegReader : public PictureReader {
 public:
  explicit JpegReader(const std::string& path) : file_(OpenFile(path.c_str(), "rb")) {
    if (!file_) throw UnreadablePicture("JPEG");
    codec_.err = jpeg_std_error(&exit_.errors);
    exit_.errors.error_exit = Leave;
    exit_.errors.emit_message = OnMessage;
    exit_.errors.output_message = StaySilent;
    codec_.client_data = &exit_;
    monitor_.progress_monitor = LimitScans;
    try {
      open(FileSize(path.c_str()));
    } catch (...) {
      jpeg_destroy_decompress(&codec_);
      throw;
    }
  }
  ~JpegReader() override { jpeg_destroy_decompress(&codec_); }

  void readRow(std::uint8_t* row) override {
    attempt([this, &row] { (void)jpeg_read_scanlines(&codec_, &row, 1); });
  }

  // Arithmetic coding is outside of what documents may hold.
  [[nodiscard]] bool suitsDocuments() const { return codec_.arith_code == 0; }
  [[nodiscard]] bool isRgb() const { return codec_.jpeg_color_space == JCS_RGB; }

 private:
  template <class Calls>
  void attempt(const Calls& calls) {
    if (!Attempt(exit_.jump, calls)) throw UnreadablePicture("JPEG");
  }

  void open(std::uint64_t fileBytes) {
    attempt([this] {
      jpeg_create_decompress(&codec_);
      codec_.progress = &monitor_;
      jpeg_stdio_src(&codec_, file_.get());
      jpeg_save_markers(&codec_, kExifMarker, kLongestMarker);
      (void)jpeg_read_header(&codec_, TRUE);
    });
    picture_.width = static_cast<int>(codec_.image_width);
    picture_.height = static_cast<int>(codec_.image_height);
    chooseColors();
    takeResolution();
    if (!IsPlausible(picture_.rowBytes() * static_cast<std::uint64_t>(picture_.height), fileBytes,
                     kMostRatio)) {
      throw UnreadablePicture("JPEG");
    }
    attempt([this] { (void)jpeg_start_decompress(&codec_); });
  }

  void chooseColors() {
    picture_.components = codec_.num_components;
    switch (codec_.num_components) {
      case 1:
        codec_.out_color_space = JCS_GRAYSCALE;
        break;
      case 3:
        codec_.out_color_space = JCS_RGB;
        break;
      case 4:
        codec_.out_color_space = JCS_CMYK;
        // Files with this mark hold the paper left white, plain ones the ink.
        picture_.reversed = codec_.saw_Adobe_marker != 0;
        break;
      default:
        throw UnreadablePicture("JPEG");
    }
  }

  void takeResolution() {
    const Exif exif = exifTags();
    picture_.orientation = exif.orientation;
    picture_.resolution = ResolutionOf(exif.xPixelsPerMetre, exif.yPixelsPerMetre);
    if (codec_.saw_JFIF_marker == 0) return;
    enum : UINT8 { kNoUnit = 0, kInch = 1, kCentimetre = 2 };
    const double x = codec_.X_density;
    const double y = codec_.Y_density;
    if (codec_.density_unit == kInch || codec_.density_unit == kCentimetre) {
      const double metres =
          codec_.density_unit == kInch ? orvo::kMetresPerInch : kMetresPerCentimetre;
      picture_.resolution = ResolutionOf(PixelsPerMetreOf(x, metres), PixelsPerMetreOf(y, metres));
    } else if (codec_.density_unit == kNoUnit && !(picture_.resolution.x > 0)) {
      picture_.resolution = AspectOf(x, y);
    }
  }

  [[nodiscard]] Exif exifTags() const {
    constexpr std::array<std::uint8_t, 6> kName = {'E', 'x', 'i', 'f', 0, 0};
    for (auto marker = codec_.marker_list; marker != nullptr; marker = marker->next) {
      const std::span<const std::uint8_t> data(marker->data, marker->data_length);
      if (data.size() > kName.size() && std::equal(kName.begin(), kName.end(), data.begin())) {
        return ReadExif(data.subspan(kName.size()));
      }
    }
    return {};
  }

  FileHandle file_;
  jpeg_decompress_struct codec_{};
  jpeg_progress_mgr monitor_{};
  ErrorExit exit_;
};

Spool::Range CopyFile(const std::string& path, Spool& spool) {
  const std::uint64_t start = spool.size();
  const FileHandle file = OpenFile(path.c_str(), "rb");
  if (!file) throw UnreadablePicture("JPEG");
  std::vector<std::uint8_t> piece(std::size_t{1} << 16);
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), file.get())) {
    spool.append(piece.data(), count);
  }
  if (std::ferror(file.get()) != 0) throw UnreadablePicture("JPEG");
  return spool.rangeSince(start);
}

}  // namespace

CodedPicture TakeJpeg(const std::string& path, Spool& spool) {
  JpegReader reader(path);
  if (!reader.suitsDocuments()) return CodeRows(reader, spool);
  const Picture& picture = reader.picture();
  std::vector<std::uint8_t> row(picture.rowBytes());
  for (int y = 0; y < picture.height; ++y) reader.readRow(row.data());
  return {.picture = picture,
          .coding = Coding::kJpeg,
          .data = CopyFile(path, spool),
          .jpegIsRgb = reader.isRgb()};
}

}  // namespace modules
