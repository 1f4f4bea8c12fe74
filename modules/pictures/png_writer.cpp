#include <algorithm>
#include <array>
#include <vector>

#include "common/color_rows.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/library_calls.h"
#include "pictures/png_session.h"

namespace modules {
namespace {

class PngWriter {
 public:
  PngWriter()
      : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, &jump_, OnPngError, OnPngWarning)),
        info_(png_ == nullptr ? nullptr : png_create_info_struct(png_)) {}
  ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  void write(std::FILE* file, const LockedDib& image, Report report) {
    Require(info_, kModuleNoMemory);
    const int colorType = colorTypeOf(*image);
    run([&, this] {
      png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
      png_init_io(png_, file);
      describe(image, colorType);
      png_write_info(png_, info_);
      png_set_bgr(png_);
      if (image->depth == 32 && colorType == PNG_COLOR_TYPE_RGB) {
        png_set_filler(png_, 0, PNG_FILLER_AFTER);
      }
    });
    writeRows(*image, report);
    run([this] { png_write_end(png_, nullptr); });
  }

 private:
  template <class Calls>
  void run(const Calls& calls) {
    Require(Attempt(jump_, calls), kModuleWriteFailed);
  }

  static int colorTypeOf(const Pixels& image) {
    if (image.depth <= 8) {
      return HasGrayRamp(image) ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_PALETTE;
    }
    return HasAlpha(image) ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
  }

  void describe(const LockedDib& image, int colorType) {
    constexpr int kMostSampleBits = 8;
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(image->width),
                 static_cast<png_uint_32>(image->height), std::min(image->depth, kMostSampleBits),
                 colorType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
      std::array<png_color, 256> entries{};
      for (int i = 0; i < image->paletteSize(); ++i) {
        const RGBQUAD& entry = image->palette[i];
        entries[static_cast<std::size_t>(i)] = {entry.rgbRed, entry.rgbGreen, entry.rgbBlue};
      }
      png_set_PLTE(png_, info_, entries.data(), image->paletteSize());
    }
    const BITMAPINFOHEADER& header = image.header();
    if (header.biXPelsPerMeter > 0 && header.biYPelsPerMeter > 0) {
      png_set_pHYs(png_, info_, static_cast<png_uint_32>(header.biXPelsPerMeter),
                   static_cast<png_uint_32>(header.biYPelsPerMeter), PNG_RESOLUTION_METER);
    }
  }

  void writeRows(const Pixels& image, Report report) {
    Progress progress(static_cast<std::uint64_t>(image.height), report);
    std::vector<Color> colors(image.depth == 16 ? static_cast<std::size_t>(image.width) : 0);
    for (int y = image.height - 1; y >= 0; --y) {
      const std::uint8_t* row = image.row(y);
      if (!colors.empty()) {
        ReadColors(image, y, colors.data());
        row = reinterpret_cast<const std::uint8_t*>(colors.data());
      }
      run([this, row] { png_write_row(png_, row); });
      Require(progress.report(static_cast<std::uint64_t>(image.height - y)), kModuleAborted);
    }
  }

  std::jmp_buf jump_{};
  png_structp png_;
  png_infop info_;
};

}  // namespace

void SavePng(const SaveRequest& request, const LockedDib& image) {
  WriteFile(request.path, [&](std::FILE* file) { PngWriter().write(file, image, request.report); });
}

}  // namespace modules
