#include <cstring>

#include "common/status.h"
#include "pictures/exif.h"
#include "pictures/file_handle.h"
#include "pictures/library_calls.h"
#include "pictures/png_codec.h"

namespace modules {
namespace {

constexpr std::uint64_t kMostDeflateRatio = 1032;

class PngReader {
 public:
  PngReader()
      : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &jump_, OnPngError, OnPngWarning)),
        info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {}
  ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;

  // Reads what stands before the pixels and decides what the image becomes. Module code.
  int open(const char* path, int page) {
    if (page != 1) return kModuleBadParameter;
    if (info_ == nullptr) return kModuleNoMemory;
    file_ = OpenFile(path, "rb");
    if (!file_) return kModuleFileNotOpened;
    fileBytes_ = FileSize(path);
    return attempt([this] {
      constexpr png_uint_32 kMostChunks = 1000;
      constexpr png_alloc_size_t kMostChunkBytes = png_alloc_size_t{16} << 20;
      png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
      png_set_chunk_cache_max(png_, kMostChunks);
      png_set_chunk_malloc_max(png_, kMostChunkBytes);
      png_init_io(png_, file_.get());
      png_read_info(png_, info_);
      describe();
    });
  }

  [[nodiscard]] const FileImage& image() const { return image_; }
  [[nodiscard]] bool isPlausible() const {
    return IsPlausible(
        std::uint64_t{png_get_rowbytes(png_, info_)} * static_cast<std::uint64_t>(image_.height),
        fileBytes_, kMostDeflateRatio);
  }

  int read(const Pixels& image) {
    fillPalette(image);
    bool stopped = false;
    const int code = attempt([&, this] {
      const int passes = png_set_interlace_handling(png_);
      transform();
      png_read_update_info(png_, info_);
      Progress progress(static_cast<std::uint64_t>(passes) *
                        static_cast<std::uint64_t>(image.height));
      std::uint64_t done = 0;
      for (int pass = 0; pass < passes && !stopped; ++pass) {
        for (int y = 0; y < image.height && !stopped; ++y) {
          png_read_row(png_, LineFromTop(image, y), nullptr);
          stopped = !progress.report(++done);
        }
      }
    });
    if (stopped) return kModuleAborted;
    if (code == kModuleSuccess && bits_ == 2 && image.depth == 4) widenRows(image);
    return code;
  }

 private:
  template <class Calls>
  int attempt(const Calls& calls) {
    if (Attempt(jump_, calls)) return kModuleSuccess;
    return std::feof(file_.get()) != 0 ? kModuleReadFailed : kFileFormatDamaged;
  }

  void describe() {
    image_.width = static_cast<int>(png_get_image_width(png_, info_));
    image_.height = static_cast<int>(png_get_image_height(png_, info_));
    bits_ = png_get_bit_depth(png_, info_);
    color_ = png_get_color_type(png_, info_);
    const bool transparent = png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    if ((color_ & PNG_COLOR_MASK_ALPHA) != 0 || transparent) {
      image_.depth = 32;
    } else if (color_ == PNG_COLOR_TYPE_RGB) {
      image_.depth = 24;
    } else {
      image_.depth = bits_ == 2 ? 4 : bits_ < 8 ? bits_ : 8;
    }
    png_uint_32 x = 0;
    png_uint_32 y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png_, info_, &x, &y, &unit) != 0 && unit == PNG_RESOLUTION_METER) {
      image_.xPixelsPerMetre = PixelsPerMetreOf(x, 1);
      image_.yPixelsPerMetre = PixelsPerMetreOf(y, 1);
    }
    png_uint_32 exifBytes = 0;
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(png_, info_, &exifBytes, &exif) != 0) {
      image_.orientation = ReadExif({exif, exifBytes}).orientation;
    }
  }

  // Asks the library for rows as the image has them.
  void transform() {
    png_set_scale_16(png_);
    if (image_.depth <= 8) return;
    png_set_expand(png_);
    png_set_gray_to_rgb(png_);
    png_set_bgr(png_);
  }

  // A gray of 2 bits becomes every fifth of the 16 grays of 4 bits.
  void widenRows(const Pixels& image) const {
    constexpr int kGrayStep = 5;
    const int factor = color_ == PNG_COLOR_TYPE_PALETTE ? 1 : kGrayStep;
    for (int y = 0; y < image.height; ++y) {
      WidenTwoBits(image.row(y), image.width, factor, image.row(y));
    }
  }

  void fillPalette(const Pixels& image) const {
    if (image.palette == nullptr) return;
    if (color_ != PNG_COLOR_TYPE_PALETTE) {
      FillGrayPalette(image);
      return;
    }
    png_colorp entries = nullptr;
    int count = 0;
    (void)png_get_PLTE(png_, info_, &entries, &count);
    for (int i = 0; i < count && i < image.paletteSize(); ++i) {
      image.palette[i] = RGBQUAD{entries[i].blue, entries[i].green, entries[i].red, 0};
    }
  }

  std::jmp_buf jump_{};
  png_structp png_;
  png_infop info_;
  FileHandle file_;
  std::uint64_t fileBytes_ = 0;
  FileImage image_;
  int bits_ = 0;   // of a sample in the file
  int color_ = 0;  // colour type of the file
};

}  // namespace

void OnPngError(png_structp png, png_const_charp /*message*/) {
  std::longjmp(*static_cast<std::jmp_buf*>(png_get_error_ptr(png)), 1);
}

void OnPngWarning(png_structp /*png*/, png_const_charp /*message*/) {}

int DescribePng(const char* path, int page, LTFILEINFO& info) {
  PngReader reader;
  const int code = reader.open(path, page);
  if (code == kModuleSuccess) DescribeImage(reader.image(), kFormatPng, "deflate", info);
  return code;
}

int LoadPng(const char* path, int page, struct_LEAD_Bitmap& bitmap) {
  PngReader reader;
  if (const int code = reader.open(path, page); code != kModuleSuccess) return code;
  if (!reader.isPlausible()) return kModuleReadFailed;
  return LoadImage(reader.image(), bitmap,
                   [&](const Pixels& pixels) { return reader.read(pixels); });
}

}  // namespace modules
