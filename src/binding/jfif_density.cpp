#include "binding/jfif_density.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "platform/paths.h"

namespace orvo {

namespace {

// Offsets in a file whose first segment is the JFIF one.
constexpr long kIdentifierAt = 6;
constexpr std::size_t kMajorVersion = 5;  // from here on, counted from the identifier
constexpr std::size_t kMinorVersion = 6;
constexpr std::size_t kUnits = 7;
constexpr std::size_t kXDensity = 8;
constexpr std::size_t kYDensity = 10;
constexpr std::size_t kBytesRead = 12;

bool NameTellsJpeg(const char* path) {
  const unsigned char* const dot = _mbsrchr(reinterpret_cast<const unsigned char*>(path), '.');
  if (dot == nullptr) return false;
  return _mbscmp(dot + 1, reinterpret_cast<const unsigned char*>("jpg")) == 0 ||
         _mbscmp(dot + 1, reinterpret_cast<const unsigned char*>("jpeg")) == 0;
}

std::FILE* OpenForReading(const char* path) {
  try {
    return std::fopen(platform::NativePath(path).c_str(), "r");
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

std::optional<JfifDensity> UnitlessJfifDensity(const char* path) noexcept {
  if (!NameTellsJpeg(path)) return std::nullopt;
  const std::unique_ptr<std::FILE, Close> file(OpenForReading(path));
  if (!file || std::fseek(file.get(), kIdentifierAt, SEEK_SET) != 0) return std::nullopt;
  std::uint8_t bytes[kBytesRead];
  for (std::uint8_t& byte : bytes) {
    const int read = std::fgetc(file.get());
    if (read == EOF) return std::nullopt;
    byte = static_cast<std::uint8_t>(read);
  }
  const bool applies = std::memcmp(bytes, "JFIF", 5) == 0 && bytes[kMajorVersion] == 1 &&
                       bytes[kMinorVersion] == 1 && bytes[kUnits] == 0;
  if (!applies) return std::nullopt;
  return JfifDensity{bytes[kXDensity] << 8 | bytes[kXDensity + 1],
                     bytes[kYDensity] << 8 | bytes[kYDensity + 1]};
}

}  // namespace orvo
