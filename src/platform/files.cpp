// Files and paths.
#include "platform/files.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "platform/paths.h"

namespace {

// Copies text[begin, end) into a buffer of `size` bytes, cut to fit.
void CopyPart(char* target, std::size_t size, const char* begin, const char* end) {
  if (target == nullptr) return;
  const std::size_t length = std::min(static_cast<std::size_t>(end - begin), size - 1);
  std::memcpy(target, begin, length);
  target[length] = '\0';
}

// The path as the system takes it, without memory from anywhere: what has to be cleared away when
// there is none left is cleared away. False for null and for what is too long for the system.
class NativeCopy {
 public:
  explicit NativeCopy(const char* path) {
    const std::size_t length = path == nullptr ? sizeof text_ : std::strlen(path);
    fits_ = length < sizeof text_;
    if (fits_) *std::transform(path, path + length, text_, platform::NativeSeparator) = '\0';
  }
  explicit operator bool() const { return fits_; }
  [[nodiscard]] const char* text() const { return text_; }

 private:
  char text_[PATH_MAX];
  bool fits_;
};

bool IsLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

}  // namespace

int DeleteFileA(const char* path) {
  // unlink refuses directories, unlike remove.
  const NativeCopy native(path);
  return native && unlink(native.text()) == 0 ? 1 : 0;
}

int PlatformIsThere(const char* path) noexcept {
  const NativeCopy native(path);
  return native && access(native.text(), F_OK) == 0 ? 1 : 0;
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
