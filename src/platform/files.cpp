// Files and paths.
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/paths.h"

namespace {

// Copies text[begin, end) into a buffer of `size` bytes, cut to fit.
void CopyPart(char* target, std::size_t size, const char* begin, const char* end) {
  if (target == nullptr) return;
  const std::size_t length = std::min(static_cast<std::size_t>(end - begin), size - 1);
  std::memcpy(target, begin, length);
  target[length] = '\0';
}

bool IsLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

}  // namespace

int DeleteFileA(const char* path) {
  if (path == nullptr) return 0;
  try {
    // unlink refuses directories, unlike remove.
    return unlink(platform::NativePath(path).c_str()) == 0 ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

void _splitpath(const char* path, char* drive, char* dir, char* name, char* ext) {
  const char* const begin = path == nullptr ? "" : path;
  const char* const end = begin + std::strlen(begin);
  const char* const driveEnd = IsLetter(begin[0]) && begin[1] == ':' ? begin + 2 : begin;
  const char* nameBegin = driveEnd;
  for (const char* at = driveEnd; at != end; ++at) {
    if (*at == '/' || *at == '\\') nameBegin = at + 1;
  }
  const char* nameEnd = end;
  for (const char* at = nameBegin; at != end; ++at) {
    if (*at == '.') nameEnd = at;
  }
  CopyPart(drive, _MAX_DRIVE, begin, driveEnd);
  CopyPart(dir, _MAX_DIR, driveEnd, nameBegin);
  CopyPart(name, _MAX_FNAME, nameBegin, nameEnd);
  CopyPart(ext, _MAX_EXT, nameEnd, end);
}
