#include <algorithm>

#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/library_calls.h"
#include "pictures/png_session.h"
#include "pictures/png_tags.h"

namespace modules {
namespace {

class PngReader : public PictureReader {
 public:
  PngReader(const char* path, Report report)
      : PictureReader(path, report),
        png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &jump_, OnPngError, OnPngWarning)),
        info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {}
  ~PngReader() override { png_destroy_read_struct(&png_, &info_, nullptr); }

  bool readHeader(int page) override {
    if (page != 1) return false;
    Require(info_, kModuleNoMemory);
    file_ = OpenToRead(path_);
    run([this] {
      LimitPng(png_);
      SkipPngPieces(png_);
      png_init_io(png_, file_.get());
      png_read_info(png_, info_);
    });
    describe();
    return true;
  }

  void start() override {
    constexpr std::uint64_t kMostDeflateRatio = 1032;
    const auto height = static_cast<std::uint64_t>(picture_.height);
    Require(IsPlausible(std::uint64_t{png_get_rowbytes(png_, info_)} * height, FileSize(path_),
                        kMostDeflateRatio),
            kModuleReadFailed);
    int passes = 1;
    run([&, this] {
      transform();
      passes = png_set_interlace_handling(png_);
      png_read_update_info(png_, info_);
    });
    expectSteps(height * static_cast<std::uint64_t>(passes));
    if (passes > 1) RequireMemory(std::uint64_t{png_get_rowbytes(png_, info_)} * height);
    if (passes > 1) readAllBut(passes - 1);
  }

  // Of an interlaced picture the last pass fills in the row that earlier ones began.
  void readRow(std::uint8_t* row) override {
    if (!interlaced_.empty()) {
      std::copy_n(interlaced_.data() + rowBytes_ * nextRow_++, rowBytes_, row);
    }
    run([this, row] { png_read_row(png_, row, nullptr); });
    endStep();
  }

  // One row after the other, without opacity beside the pixels.
  [[nodiscard]] std::optional<CodedParts> codedParts() override {
    const bool hasRows = png_get_interlace_type(png_, info_) == PNG_INTERLACE_NONE;
    if (!hasRows || (picture_.hasAlpha && picture_.palette.empty())) return std::nullopt;
    CodedParts parts{
        .coding = Coding::kFlateFilters, .bits = bits_, .stretches = FindPngPixels(file_.get())};
    const auto& last = parts.stretches.back();
    if (last.start + last.bytes > FileSize(path_)) return std::nullopt;
    return parts;
  }

 private:
  template <class Calls>
  void run(const Calls& calls) {
    if (Attempt(jump_, calls)) return;
    throw ModuleError{std::feof(file_.get()) != 0 ? kModuleReadFailed : kFileFormatDamaged};
  }

  void describe() {
    picture_.format = kFormatPng;
    picture_.compression = "deflate";
    picture_.width = static_cast<int>(png_get_image_width(png_, info_));
    picture_.height = static_cast<int>(png_get_image_height(png_, info_));
    const int color = png_get_color_type(png_, info_);
    picture_.hasAlpha =
        (color & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    picture_.isGray = (color & PNG_COLOR_MASK_COLOR) == 0;
    if (color == PNG_COLOR_TYPE_PALETTE) {
      takePalette();
    } else if (picture_.hasAlpha || !picture_.isGray) {
      picture_.samples = picture_.hasAlpha ? 4 : 3;
    }
    bits_ = png_get_bit_depth(png_, info_);
    if (picture_.samples == 1) picture_.bits = bits_;
    if (bits_ > picture_.bits) picture_.narrowedFrom = bits_;
    takeResolution();
    picture_.orientation = ReadPngOrientation(file_.get());
  }

  void takeResolution() {
    png_uint_32 x = 0;
    png_uint_32 y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png_, info_, &x, &y, &unit) == 0) return;
    if (unit == PNG_RESOLUTION_METER) {
      picture_.xPixelsPerMetre = PixelsPerMetreOf(x, 1);
      picture_.yPixelsPerMetre = PixelsPerMetreOf(y, 1);
    } else {
      picture_.xDensity = x;
      picture_.yDensity = y;
    }
  }

  void takePalette() {
    png_colorp colors = nullptr;
    int count = 0;
    (void)png_get_PLTE(png_, info_, &colors, &count);
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    (void)png_get_tRNS(png_, info_, &alphas, &alphaCount, nullptr);
    for (int i = 0; i < count; ++i) {
      std::uint8_t fourth = 0;
      if (picture_.hasAlpha) fourth = i < alphaCount ? alphas[i] : 255;
      picture_.palette.push_back({colors[i].blue, colors[i].green, colors[i].red, fourth});
    }
  }

  // Indexes and plain tones stay as they are; all else becomes colours of 8 bits, blue first.
  void transform() {
    if (picture_.samples == 1) return;
    png_set_scale_16(png_);
    png_set_expand(png_);
    png_set_gray_to_rgb(png_);
    png_set_bgr(png_);
  }

  // An interlaced picture has no whole row before its last pass.
  void readAllBut(int passes) {
    rowBytes_ = png_get_rowbytes(png_, info_);
    interlaced_.resize(rowBytes_ * static_cast<std::size_t>(picture_.height));
    for (int pass = 0; pass < passes; ++pass) {
      for (std::size_t y = 0; y < static_cast<std::size_t>(picture_.height); ++y) {
        run([this, y] { png_read_row(png_, interlaced_.data() + y * rowBytes_, nullptr); });
        endStep();
      }
    }
  }

  std::jmp_buf jump_{};
  png_structp png_;
  png_infop info_;
  FileHandle file_;
  int bits_ = 8;                          // of a sample in the file
  std::vector<std::uint8_t> interlaced_;  // all rows, for interlaced files only
  std::size_t rowBytes_ = 0;
  std::size_t nextRow_ = 0;
};

}  // namespace

bool IsPng(Head head) {
  constexpr std::size_t kMarkBytes = 8;
  return head.size() >= kMarkBytes && png_sig_cmp(head.data(), 0, kMarkBytes) == 0;
}

ReaderHandle OpenPng(const char* path, Report report) {
  return std::make_unique<PngReader>(path, report);
}

}  // namespace modules
