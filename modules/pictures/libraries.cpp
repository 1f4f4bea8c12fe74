#include "pictures/libraries.h"

#include <algorithm>

#include "platform/modules.h"

namespace modules {
namespace {

struct Library {
  std::string_view name;
  const char* loaded = nullptr;  // when it is first needed; null for those that are linked
};

constexpr Library kLibraries[] = {
#if defined(ORVO_HAVE_JPEG)
    {"libjpeg"},
#endif
#if defined(ORVO_HAVE_PNG)
    {"libpng"},
#endif
#if defined(ORVO_HAVE_TIFF)
    {"libtiff"},
#endif
#if defined(ORVO_HAVE_GIF)
    {"giflib"},
#endif
#if defined(ORVO_HAVE_MAGICK)
    {"GraphicsMagick", kMagickLibrary},
#endif
#if defined(ORVO_HAVE_WEBP)
    {"libwebp", kWebpLibrary},
    {"libwebpdemux", kWebpPartsLibrary},
#endif
#if defined(ORVO_HAVE_HEIF)
    {"libheif", kHeifLibrary},
#endif
#if defined(ORVO_HAVE_JXL)
    {"libjxl", kJxlLibrary},
#endif
    {"own"},
};

}  // namespace

bool HasLibrary(std::string_view name) {
  const auto* const library = std::ranges::find(kLibraries, name, &Library::name);
  if (library == std::end(kLibraries)) return false;
  return library->loaded == nullptr || LoadLibraryA(library->loaded) != nullptr;
}

}  // namespace modules
