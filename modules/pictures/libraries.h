// The libraries that readers and writers stand on.
#ifndef MODULES_PICTURES_LIBRARIES_H
#define MODULES_PICTURES_LIBRARIES_H

#include <string_view>

namespace modules {

// Of those that are loaded when they are first needed, as the loader knows them.
inline constexpr const char* kMagickLibrary = "libGraphicsMagick-Q16.so.3";
inline constexpr const char* kWebpLibrary = "libwebp.so.7";
inline constexpr const char* kWebpPartsLibrary = "libwebpdemux.so.2";
inline constexpr const char* kHeifLibrary = "libheif.so.1";
#if defined(ORVO_JXL_SERIES)
inline constexpr const char* kJxlLibrary = "libjxl.so." ORVO_JXL_SERIES;
#endif

// Whether a library, by its own name such as "libpng", is in this build, and can be loaded.
bool HasLibrary(std::string_view name);

}  // namespace modules

#endif  // MODULES_PICTURES_LIBRARIES_H
