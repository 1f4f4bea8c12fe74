#include "pictures/formats.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

#include "pictures/file_handle.h"
#include "platform/paths.h"

#if defined(ORVO_HAVE_JPEG)
#include "pictures/jpeg_session.h"
#endif
#if defined(ORVO_HAVE_MAGICK)
#include "pictures/magick_kinds.h"
#endif
#if defined(ORVO_HAVE_PNG)
#include <png.h>
#endif

namespace modules {
namespace {

#if defined(ORVO_HAVE_MAGICK)
template <const MagickKind& kind>
ReaderHandle Open(const char* path, Report report) {
  return OpenRare(kind, path, report);
}
#endif

// Kinds with a mark of their own come before those that are told by the extension.
constexpr Format kFormats[] = {
#if defined(ORVO_HAVE_JPEG)
    {"JPEG", kFormatJpeg, "jpg jpeg jpe", OpenJpeg, SaveJpeg, IsJpeg},
#endif
#if defined(ORVO_HAVE_PNG)
    {"PNG", kFormatPng, "png", OpenPng, SavePng, IsPng},
#endif
#if defined(ORVO_HAVE_TIFF)
    {"TIFF", kFormatTiff, "tif tiff", OpenTiff, SaveTiff, IsTiff},
    {"TIFF, compressed", kFormatTiffCompressed, "tif tiff", OpenTiff, SaveTiff, IsTiff},
#endif
    {"PSD", kFormatPsd, "psd", OpenPsd, SavePsd, IsPsd},
    {"BMP", kFormatBmp, "bmp jff", OpenBmp, SaveBmp, IsBmp},
#if defined(ORVO_HAVE_WEBP)
    {"WebP", 0, "webp", OpenWebp, nullptr, IsWebp},
#endif
#if defined(ORVO_HAVE_HEIF)
    {"HEIF", 0, "heic heif avif", OpenHeif, nullptr, IsHeif},
#endif
#if defined(ORVO_HAVE_JXL)
    {"JPEG XL", 0, "jxl", OpenJxl, nullptr, IsJxl},
#endif
#if defined(ORVO_HAVE_GIF)
    {"GIF", kFormatGif, "gif", OpenGif, nullptr, IsGif},
#endif
#if defined(ORVO_HAVE_MAGICK)
    {"PCX", kFormatPcx, "pcx", Open<kPcxKind>, SaveRare, IsPcx},
    {"DCX", kFormatPcx, "dcx", Open<kDcxKind>, nullptr, IsDcx},
    {"Sun raster", kFormatRas, "ras", Open<kRasKind>, SaveRare, IsRas},
    {"WordPerfect graphics", kFormatWpg, "wpg", Open<kWpgKind>, nullptr, IsWpg},
    {"Windows metafile", kFormatWmf, "wmf", Open<kWmfKind>, nullptr, IsWmf},
#endif
    {"TGA", kFormatTga, "tga", OpenTga, nullptr, IsTga, true},
#if defined(ORVO_HAVE_MAGICK)
    {"TGA", kFormatTga, "tga", nullptr, SaveRare},
    {"PICT", kFormatPct, "pct pict", Open<kPctKind>, SaveRare, nullptr, true},
    {"Photo CD", kFormatPcd, "pcd", Open<kPcdKind>, nullptr, nullptr, true},
    {"EPS", kFormatEps, "eps", nullptr, SaveRare},
#endif
};

// The part of a path behind its last dot, in lower case; empty when there is none.
std::string ExtensionOf(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string::npos || dot < platform::DirectoryLength(path)) return {};
  std::string extension = path.substr(dot + 1);
  for (char& character : extension) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return extension;
}

bool HasWord(std::string_view words, std::string_view word) {
  while (!words.empty()) {
    const std::size_t end = std::min(words.find(' '), words.size());
    if (words.substr(0, end) == word) return true;
    words.remove_prefix(std::min(end + 1, words.size()));
  }
  return false;
}

bool Reads(const Format& format, Head head, std::string_view extension) {
  return format.open != nullptr && (format.begins == nullptr || format.begins(head)) &&
         (!format.needsExtension || HasWord(format.extensions, extension));
}

#define ORVO_AS_TEXT(name) #name
#define ORVO_VALUE_AS_TEXT(name) ORVO_AS_TEXT(name)

constexpr const char* kLibraries[] = {
#if defined(ORVO_HAVE_JPEG) && defined(LIBJPEG_TURBO_VERSION)
    "libjpeg-turbo " ORVO_VALUE_AS_TEXT(LIBJPEG_TURBO_VERSION),
#elif defined(ORVO_HAVE_JPEG)
    "libjpeg " ORVO_VALUE_AS_TEXT(JPEG_LIB_VERSION),
#endif
#if defined(ORVO_HAVE_PNG)
    "libpng " PNG_LIBPNG_VER_STRING,
#endif
#if defined(ORVO_HAVE_TIFF)
    "libtiff " ORVO_TIFF_VERSION,
#endif
#if defined(ORVO_HAVE_MAGICK)
    "GraphicsMagick " ORVO_MAGICK_VERSION,
#endif
#if defined(ORVO_HAVE_WEBP)
    "libwebp " ORVO_WEBP_VERSION,
#endif
#if defined(ORVO_HAVE_HEIF)
    "libheif " ORVO_HEIF_VERSION,
#endif
#if defined(ORVO_HAVE_JXL)
    "libjxl " ORVO_JXL_VERSION,
#endif
    nullptr,  // so that the list is never empty
};

const Format* Find(const auto& fits) {
  const auto* const found = std::ranges::find_if(kFormats, fits);
  return found == std::end(kFormats) ? nullptr : found;
}

}  // namespace

const Format& FormatOfFile(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  Require(status.type() != std::filesystem::file_type::not_found, kModuleFileNotFound);
  Require(std::filesystem::is_regular_file(status), kModuleFileNotOpened);
  const FileHandle file = OpenToRead(path.c_str());
  std::array<std::uint8_t, kHeadBytes> bytes{};
  const Head head(bytes.data(), std::fread(bytes.data(), 1, bytes.size(), file.get()));
  const std::string extension = ExtensionOf(path);
  const Format* const format =
      Find([&](const Format& known) { return Reads(known, head, extension); });
  Require(format, kFileFormatNotRead);
  return *format;
}

const Format* FormatThatWrites(int number) {
  return Find([=](const Format& format) { return format.number == number && format.save; });
}

std::string CodecNames() {
  std::string names;
  for (const char* const* name = kLibraries; *name != nullptr; ++name) {
    names += names.empty() ? *name : std::string(", ") + *name;
  }
  return names;
}

}  // namespace modules
