#include <array>

#include "pictures/codecs.h"

#if defined(ORVO_HAVE_JPEG)
#include "pictures/jpeg_session.h"
#endif
#if defined(ORVO_HAVE_PNG)
#include <png.h>
#endif

namespace modules {
namespace {

#define ORVO_AS_TEXT(name) #name
#define ORVO_VALUE_AS_TEXT(name) ORVO_AS_TEXT(name)

// Kinds with a mark of their own come before those that are told by the extension.
constexpr std::array kCodecs {
#if defined(ORVO_HAVE_JPEG)
  &kJpegCodec,
#endif
#if defined(ORVO_HAVE_PNG)
      &kPngCodec,
#endif
#if defined(ORVO_HAVE_TIFF)
      &kTiffCodec,
#endif
#if defined(ORVO_HAVE_PSD)
      &kPsdCodec,
#endif
      &kBmpCodec,
#if defined(ORVO_HAVE_MAGICK)
      &kMagickCodec,
#endif
};

}  // namespace

std::span<const Codec* const> Codecs() {
  return kCodecs;
}

std::string CodecNames() {
  std::string names;
#if defined(ORVO_HAVE_JPEG)
#if defined(LIBJPEG_TURBO_VERSION)
  names += "libjpeg-turbo " ORVO_VALUE_AS_TEXT(LIBJPEG_TURBO_VERSION) ", ";
#else
  names += "libjpeg " ORVO_VALUE_AS_TEXT(JPEG_LIB_VERSION) ", ";
#endif
#endif
#if defined(ORVO_HAVE_PNG)
  names += "libpng " PNG_LIBPNG_VER_STRING ", ";
#endif
#if defined(ORVO_HAVE_TIFF)
  names += "libtiff " ORVO_TIFF_VERSION ", ";
#endif
#if defined(ORVO_HAVE_MAGICK)
  names += "GraphicsMagick " ORVO_MAGICK_VERSION ", ";
#endif
  constexpr std::size_t kSeparator = 2;
  names.resize(names.size() < kSeparator ? 0 : names.size() - kSeparator);
  return names;
}

}  // namespace modules
