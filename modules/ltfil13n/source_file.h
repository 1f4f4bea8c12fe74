// A file to read, and the codec that reads it.
#ifndef MODULES_LTFIL13N_SOURCE_FILE_H
#define MODULES_LTFIL13N_SOURCE_FILE_H

#include <cstdint>
#include <string>

#include "pictures/formats.h"

namespace modules {

// Checks a caller's path and gives it with the system's own separators. Module code.
int TakePath(const char* path, std::string& native);

// The part of a path behind its last dot, in lower case; empty when there is none.
std::string ExtensionOf(const std::string& path);

struct SourceFile {
  std::string path;
  std::uint64_t bytes = 0;
  const Codec* codec = nullptr;
};

// Finds the codec by what the file holds. Module code.
int FindSource(const char* path, SourceFile& source);

// Brings a bitmap to a depth; 0 and its own depth leave it alone. Module code; on failure the
// bitmap is as it was.
int BringToDepth(struct_LEAD_Bitmap& bitmap, int bits);

}  // namespace modules

#endif  // MODULES_LTFIL13N_SOURCE_FILE_H
