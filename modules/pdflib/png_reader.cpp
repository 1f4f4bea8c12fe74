// PNG. Transparent pictures are laid on white here: a page is white, every reader then shows the
// same, and printers need no transparency.
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <vector>

#include "pdflib/picture_files.h"
#include "pictures/exif.h"
#include "pictures/file_handle.h"
#include "pictures/picture.h"
#include "pictures/library_calls.h"

namespace modules {
namespace {

constexpr std::uint64_t kMostDeflateRatio = 1032;

[[noreturn]] void OnError(png_structp png, png_const_charp /*message*/) {
  std::longjmp(*static_cast<std::jmp_buf*>(png_get_error_ptr(png)), 1);
}
void OnWarning(png_structp /*png*/, png_const_charp /*message*/) {}

class PngReader : public PictureReader {
 public:
  explicit PngReader(const std::string& path)
      : file_(OpenFile(path.c_str(), "rb")),
        png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &jump_, OnError, OnWarning)),
        info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {
    try {
      open(FileSize(path.c_str()));
    } catch (...) {
      close();
      throw;
    }
  }
  ~PngReader() override { close(); }

  void readRow(std::uint8_t* row) override {
    if (interlaced_.empty()) {
      attempt([this] { png_read_row(png_, source_.data(), nullptr); });
      lay(source_.data(), row);
    } else {
      lay(interlaced_.data() + nextRow_++ * source_.size(), row);
    }
  }

 private:
  void close() { png_destroy_read_struct(&png_, &info_, nullptr); }

  template <class Calls>
  void attempt(const Calls& calls) {
    if (!Attempt(jump_, calls)) throw UnreadablePicture("PNG");
  }

  void open(std::uint64_t fileBytes) {
    if (!file_ || info_ == nullptr) throw UnreadablePicture("PNG");
    int passes = 1;
    attempt([this, &passes] {
      constexpr png_uint_32 kMostChunks = 1000;
      constexpr png_alloc_size_t kMostChunkBytes = png_alloc_size_t{16} << 20;
      png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
      png_set_chunk_cache_max(png_, kMostChunks);
      png_set_chunk_malloc_max(png_, kMostChunkBytes);
      png_init_io(png_, file_.get());
      png_read_info(png_, info_);
      transform();
      passes = png_set_interlace_handling(png_);
      png_read_update_info(png_, info_);
    });
    describe();
    source_.resize(png_get_rowbytes(png_, info_));
    const std::uint64_t bytes =
        std::uint64_t{source_.size()} * static_cast<std::uint64_t>(picture_.height);
    if (!IsPlausible(bytes, fileBytes, kMostDeflateRatio)) throw UnreadablePicture("PNG");
    if (passes > 1) readAll(passes);
  }

  // Transparency as alpha values; a palette keeps its indexes and has its colours laid on white.
  void transform() {
    const int color = png_get_color_type(png_, info_);
    const bool transparent = png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    if (transparent && color != PNG_COLOR_TYPE_PALETTE) png_set_expand(png_);
    const bool plainGray = color == PNG_COLOR_TYPE_GRAY && !transparent;
    if (!plainGray) png_set_scale_16(png_);
  }

  void describe() {
    picture_.width = static_cast<int>(png_get_image_width(png_, info_));
    picture_.height = static_cast<int>(png_get_image_height(png_, info_));
    picture_.bits = png_get_bit_depth(png_, info_);
    const int color = png_get_color_type(png_, info_);
    hasAlpha_ = (color & PNG_COLOR_MASK_ALPHA) != 0;
    if (color == PNG_COLOR_TYPE_PALETTE) {
      takePalette();
    } else if ((color & PNG_COLOR_MASK_COLOR) != 0) {
      picture_.components = 3;
    }
    png_uint_32 x = 0;
    png_uint_32 y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png_, info_, &x, &y, &unit) != 0) {
      picture_.resolution = unit == PNG_RESOLUTION_METER
                                ? ResolutionOf(PixelsPerMetreOf(x, 1), PixelsPerMetreOf(y, 1))
                                : AspectOf(x, y);
    }
    png_uint_32 exifBytes = 0;
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(png_, info_, &exifBytes, &exif) != 0) {
      picture_.orientation = ReadExif({exif, exifBytes}).orientation;
    }
  }

  void takePalette() {
    png_colorp colors = nullptr;
    int count = 0;
    if (png_get_PLTE(png_, info_, &colors, &count) == 0) throw UnreadablePicture("PNG");
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    (void)png_get_tRNS(png_, info_, &alphas, &alphaCount, nullptr);
    for (int i = 0; i < count; ++i) {
      const std::uint8_t alpha = i < alphaCount ? alphas[i] : 255;
      for (const std::uint8_t tone : {colors[i].red, colors[i].green, colors[i].blue}) {
        picture_.palette.push_back(static_cast<char>(OnWhite(tone, alpha)));
      }
    }
  }

  // An interlaced picture has no whole row before its end.
  void readAll(int passes) {
    const std::size_t rowBytes = source_.size();
    interlaced_.resize(rowBytes * static_cast<std::size_t>(picture_.height));
    std::uint8_t* const rows = interlaced_.data();
    attempt([this, passes, rowBytes, rows] {
      for (int pass = 0; pass < passes; ++pass) {
        for (std::size_t y = 0; y < static_cast<std::size_t>(picture_.height); ++y) {
          png_read_row(png_, rows + y * rowBytes, nullptr);
        }
      }
    });
  }

  // Stores a row as the file has it, laid on white.
  void lay(const std::uint8_t* from, std::uint8_t* row) const {
    if (!hasAlpha_) {
      std::copy_n(from, source_.size(), row);
      return;
    }
    const int tones = picture_.components;
    for (int x = 0; x < picture_.width; ++x, from += tones + 1) {
      for (int i = 0; i < tones; ++i) *row++ = OnWhite(from[i], from[tones]);
    }
  }

  std::jmp_buf jump_{};
  FileHandle file_;
  png_structp png_;
  png_infop info_;
  bool hasAlpha_ = false;
  std::vector<std::uint8_t> source_;      // a row as the file has it
  std::vector<std::uint8_t> interlaced_;  // all of them, for interlaced files only
  std::size_t nextRow_ = 0;
};

}  // namespace

std::unique_ptr<PictureReader> OpenPng(const std::string& path) {
  return std::make_unique<PngReader>(path);
}

}  // namespace modules
