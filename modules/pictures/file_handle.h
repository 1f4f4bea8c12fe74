// Files as the readers and writers open them, and what a file of some size can hold.
#ifndef MODULES_PICTURES_FILE_HANDLE_H
#define MODULES_PICTURES_FILE_HANDLE_H

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "common/guard.h"

namespace modules {

struct FileCloser {
  void operator()(std::FILE* file) const { (void)std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

inline FileHandle OpenFile(const char* path, const char* mode) {
  return FileHandle(std::fopen(path, mode));
}
inline FileHandle OpenToRead(const char* path) {
  FileHandle file = OpenFile(path, "rb");
  Require(file, kModuleFileNotOpened);
  return file;
}

// Ends a file that was written; false when any byte of it did not reach the system.
inline bool CloseWritten(FileHandle file) {
  const bool intact = std::ferror(file.get()) == 0;
  return std::fclose(file.release()) == 0 && intact;
}

// Makes the file, lets write(std::FILE*) fill it, and sees to it that every byte is written.
template <class Write>
void WriteFile(const char* path, const Write& write) {
  FileHandle file = OpenFile(path, "wb");
  Require(file, kModuleFileNotOpened);
  write(file.get());
  Require(CloseWritten(std::move(file)), kModuleWriteFailed);
}

// In bytes; 0 when it cannot be told.
inline std::uint64_t FileSize(const char* path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : size;
}

inline std::vector<std::uint8_t> ReadWhole(const char* path) {
  const FileHandle file = OpenToRead(path);
  std::vector<std::uint8_t> bytes(FileSize(path));
  Require(std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size(), kModuleReadFailed);
  return bytes;
}

// Whether a file can hold an image of imageBytes bytes when its coding shrinks at most to one
// mostRatio-th. Keeps a header that claims more than its file holds from taking the memory of the
// whole machine; small images pass, so that no sparse but honest file is refused.
inline bool IsPlausible(std::uint64_t imageBytes, std::uint64_t fileBytes,
                        std::uint64_t mostRatio) {
  constexpr std::uint64_t kSmall = std::uint64_t{64} << 20;
  return imageBytes <= kSmall || imageBytes / mostRatio <= fileBytes;
}

}  // namespace modules

#endif  // MODULES_PICTURES_FILE_HANDLE_H
