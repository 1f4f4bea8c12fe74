// Paths as the platform layer and the modules beside the toolkit open them.
#ifndef ORVO_PLATFORM_PATHS_H
#define ORVO_PLATFORM_PATHS_H

#include <algorithm>
#include <string>

#include <orvo/platform.h>

namespace platform {

// The path with the system's own separators: on systems that know only /, each \ becomes one.
inline char NativeSeparator(char character) {
#if defined(_WIN32)
  return character;
#else
  return character == '\\' ? '/' : character;
#endif
}
inline std::string NativePath(const char* path) {
  std::string native(path);
  std::transform(native.begin(), native.end(), native.begin(), NativeSeparator);
  return native;
}

// Length of the directory part, its last separator included; 0 for a bare name.
inline std::size_t DirectoryLength(const std::string& path) {
  const std::size_t last = path.find_last_of("/\\");
  return last == std::string::npos ? 0 : last + 1;
}

}  // namespace platform

#endif  // ORVO_PLATFORM_PATHS_H
