#include <webp/encode.h>

#include <algorithm>
#include <vector>

#include "common/color_rows.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/libraries.h"
#include "pictures/loaded_library.h"

namespace modules {
namespace {

struct Encoding {
  LoadedLibrary library{kWebpLibrary};
  ORVO_LIBRARY_CALL(WebPConfigInitInternal);
  ORVO_LIBRARY_CALL(WebPPictureInitInternal);
  ORVO_LIBRARY_CALL(WebPPictureAlloc);
  ORVO_LIBRARY_CALL(WebPPictureFree);
  ORVO_LIBRARY_CALL(WebPEncode);
};
const Encoding& TheEncoding() {
  static const Encoding encoding;
  return encoding;
}

struct PictureEnd {
  void operator()(WebPPicture* picture) const { TheEncoding().WebPPictureFree(picture); }
};

// What the encoder's calls are told of, while it works.
struct Work {
  std::FILE* file;
  Report report;
};

int Write(const std::uint8_t* bytes, std::size_t count, const WebPPicture* picture) {
  const auto& work = *static_cast<const Work*>(picture->custom_ptr);
  return std::fwrite(bytes, 1, count, work.file) == count ? 1 : 0;
}

int Tell(int percent, const WebPPicture* picture) {
  const auto& work = *static_cast<const Work*>(picture->user_data);
  return work.report == nullptr || work.report(percent) ? 1 : 0;
}

WebPConfig ConfigFor(const SaveRequest& request) {
  WebPConfig config{};
  Require(TheEncoding().WebPConfigInitInternal(&config, WEBP_PRESET_DEFAULT,
                                               static_cast<float>(request.quality),
                                               WEBP_ENCODER_ABI_VERSION),
          kFileFormatNotWritten);
  if (request.lossless) {
    constexpr float kEffort = 75;
    config.lossless = 1;
    config.quality = kEffort;
    config.exact = 1;  // colours that nothing shows stay too
  }
  return config;
}

void Fill(WebPPicture& picture, const Pixels& image) {
  constexpr int kAlphaShift = 24;
  const bool hasAlpha = HasAlpha(image);
  std::vector<Color> colors(static_cast<std::size_t>(image.width));
  for (int line = 0; line < image.height; ++line) {
    const int y = image.height - 1 - line;
    ReadColors(image, y, colors.data());
    std::uint32_t* const out = picture.argb + std::ptrdiff_t{line} * picture.argb_stride;
    std::ranges::transform(colors, out, [](const Color& color) {
      return 255U << kAlphaShift | std::uint32_t{color.red} << 16 |
             std::uint32_t{color.green} << 8 | color.blue;
    });
    if (!hasAlpha) continue;
    const std::uint8_t* const row = image.row(y);
    for (int x = 0; x < image.width; ++x) {
      out[x] = (out[x] & 0xFFFFFFU) | std::uint32_t{row[4 * x + 3]} << kAlphaShift;
    }
  }
}

int CodeOf(WebPEncodingError error) {
  switch (error) {
    case VP8_ENC_ERROR_USER_ABORT:
      return kModuleAborted;
    case VP8_ENC_ERROR_OUT_OF_MEMORY:
    case VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY:
      return kModuleNoMemory;
    case VP8_ENC_ERROR_BAD_WRITE:
      return kModuleWriteFailed;
    default:
      return kFileFormatNotWritten;
  }
}

}  // namespace

void SaveWebp(const SaveRequest& request, const LockedDib& image) {
  Require(std::max(image->width, image->height) <= kMostWebpPixels, kFileFormatNotWritten);
  const Encoding& calls = TheEncoding();
  const WebPConfig config = ConfigFor(request);
  WebPPicture picture{};
  Require(calls.WebPPictureInitInternal(&picture, WEBP_ENCODER_ABI_VERSION), kFileFormatNotWritten);
  const std::unique_ptr<WebPPicture, PictureEnd> end(&picture);
  picture.use_argb = 1;
  picture.width = image->width;
  picture.height = image->height;
  Require(calls.WebPPictureAlloc(&picture), kModuleNoMemory);
  Fill(picture, *image);
  WriteFile(request.path, [&](std::FILE* file) {
    Work work{file, request.report};
    picture.writer = Write;
    picture.progress_hook = Tell;
    picture.custom_ptr = &work;
    picture.user_data = &work;
    const bool encoded = calls.WebPEncode(&config, &picture) != 0;
    Require(encoded, CodeOf(picture.error_code));
  });
}

}  // namespace modules
