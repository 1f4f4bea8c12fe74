// Paths as the platform layer and the modules beside the toolkit open them.
#ifndef ORVO_PLATFORM_PATHS_H
#define ORVO_PLATFORM_PATHS_H

#include <string>

#include <orvo/platform.h>

namespace platform {

// The path with the system's own separators: on systems that know only /, each \ becomes one.
inline std::string NativePath(const char* path) {
  std::string native(path);
#if !defined(_WIN32)
  for (char& character : native) {
    if (character == '\\') character = '/';
  }
#endif
  return native;
}

// Length of the directory part, its last separator included; 0 for a bare name.
inline std::size_t DirectoryLength(const std::string& path) {
  const std::size_t last = path.find_last_of("/\\");
  return last == std::string::npos ? 0 : last + 1;
}

}  // namespace platform

#endif  // ORVO_PLATFORM_PATHS_H
