#include <memory>

#include "common/color_rows.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/jpeg_session.h"

namespace modules {
namespace {

// How the rows of an image go to the library: as they are, or through a row of colours whose first
// channel is the tone of a gray image.
struct RowForm {
  J_COLOR_SPACE colors;
  int channels;
  bool asStored;
};

RowForm FormOf(const Pixels& image) {
  switch (image.depth) {
    case 16:
      return {JCS_EXT_BGR, 3, false};
    case 24:
      return {JCS_EXT_BGR, 3, true};
    case 32:
      return {JCS_EXT_BGRX, 4, true};
    default:
      break;
  }
  if (PaletteIsGray(image)) return {JCS_GRAYSCALE, 1, BytesAreTones(image)};
  return {JCS_EXT_BGR, 3, false};
}

class JpegWriter {
 public:
  explicit JpegWriter(Report report) : session_(report) { PrepareJpeg(session_, common()); }
  ~JpegWriter() { jpeg_destroy_compress(&codec_); }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;

  void write(std::FILE* file, const LockedDib& image, int quality) {
    const RowForm form = FormOf(*image);
    std::unique_ptr<Color[]> colors;
    if (!form.asStored) colors = std::make_unique<Color[]>(static_cast<std::size_t>(image->width));
    Color* const scratch = colors.get();
    session_.run([&, this] {
      jpeg_create_compress(&codec_);
      WatchJpeg(session_, common());
      jpeg_stdio_dest(&codec_, file);
      describe(image, form, quality);
      jpeg_start_compress(&codec_, TRUE);
      while (codec_.next_scanline < codec_.image_height) {
        const int y = image->height - 1 - static_cast<int>(codec_.next_scanline);
        JSAMPROW row = form.asStored ? image->row(y) : converted(*image, y, form, scratch);
        (void)jpeg_write_scanlines(&codec_, &row, 1);
      }
      jpeg_finish_compress(&codec_);
    });
    session_.finish();
  }

 private:
  j_common_ptr common() { return reinterpret_cast<j_common_ptr>(&codec_); }

  void describe(const LockedDib& image, const RowForm& form, int quality) {
    constexpr int kFullColorQuality = 90;
    codec_.image_width = static_cast<JDIMENSION>(image->width);
    codec_.image_height = static_cast<JDIMENSION>(image->height);
    codec_.input_components = form.channels;
    codec_.in_color_space = form.colors;
    jpeg_set_defaults(&codec_);
    jpeg_set_quality(&codec_, quality, TRUE);
    // Whoever asks for the best wants no colour thrown away; below, colour has half the sharpness.
    if (quality >= kFullColorQuality) {
      codec_.comp_info[0].h_samp_factor = 1;
      codec_.comp_info[0].v_samp_factor = 1;
    }
    DescribeDensity(codec_, image.header());
  }

  static std::uint8_t* converted(const Pixels& image, int y, const RowForm& form, Color* colors) {
    ReadColors(image, y, colors);
    auto* const bytes = reinterpret_cast<std::uint8_t*>(colors);
    if (form.channels == 1) {
      for (int x = 0; x < image.width; ++x) bytes[x] = colors[x].blue;
    }
    return bytes;
  }

  jpeg_compress_struct codec_{};
  JpegSession session_;
};

}  // namespace

void SaveJpeg(const SaveRequest& request, const LockedDib& image) {
  Require(image->width <= JPEG_MAX_DIMENSION && image->height <= JPEG_MAX_DIMENSION,
          kFileFormatNotWritten);
  WriteFile(request.path, [&](std::FILE* file) {
    JpegWriter(request.report).write(file, image, request.quality);
  });
}

}  // namespace modules
