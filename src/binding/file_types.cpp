// Every extension that the toolkit knows, with all that it tells. Saves and conversions differ on
// purpose: a save writes a plain TIFF, a conversion a compressed one, and each takes extensions
// that the other does not.
#include "binding/file_types.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <orvo/result_codes.h>

#include "binding/module_contract.h"

namespace orvo {

namespace {

constexpr int kNoFormat = 0;

struct FileType {
  std::string_view extension;  // upper case, with its dot
  SaveType save;
  int convertedTo = kNoFormat;  // files of these kinds can be loaded too
  const char* pdfPicture = nullptr;
};

constexpr FileType kFileTypes[] = {
    {".BMP", {kFormatBmp}, kFormatBmp},
    {".TIF", {kFormatTiff, SaveQuality::kNone, true}, kFormatTiffCompressed, "tiff"},
    {".TIFF", {kFormatTiff, SaveQuality::kNone, true}, kFormatTiffCompressed},
    {".JPG", {kFormatJpeg, SaveQuality::kCallers}, kFormatJpeg, "jpeg"},
    {".JPE", {kNoFormat}, kFormatJpeg},
    {".JPEG", {kFormatJpeg, SaveQuality::kCallers}, kFormatJpeg},
    {".CMP", {kFormatCmp, SaveQuality::kCallers}, kFormatCmp},
    {".PCX", {kFormatPcx}, kFormatPcx},
    {".PSD", {kFormatPsd}, kFormatPsd},
    {".PNG", {kFormatPng}, kFormatPng, "png"},
    {".RAS", {kFormatRas}, kFormatRas},
    {".PCD", {kFormatPcd}, kFormatPcd},
    {".FPX", {kFormatFpx, SaveQuality::kFixedLow}, kFormatFpx},
    {".WMF", {kFormatWmf}, kFormatWmf},
    {".TGA", {kFormatTga}, kFormatTga},
    {".PCT", {kFormatPct}, kFormatPct},
    {".JFF", {kFormatBmp}},
    {".EPS", {kFormatEps}},
    {".WPG", {kFormatWpg}},
    {".GIF", {kNoFormat}, kNoFormat, "gif"},
};

// Beside those that can be loaded the names of image files end in one of these.
constexpr std::string_view kOtherImageNames[] = {".JTF", ".EXF", ".DCX"};

// The extension of a path, dot included.
struct Extension {
  explicit Extension(const char* path) { _splitpath(path, nullptr, nullptr, nullptr, text); }
  [[nodiscard]] bool is(std::string_view other) const {
    return _mbsicmp(reinterpret_cast<const unsigned char*>(text),
                    reinterpret_cast<const unsigned char*>(other.data())) == 0;
  }
  char text[_MAX_EXT] = {};
};

// An extension outside the table is a kind that nothing can be done with.
FileType TypeOf(const Extension& extension) {
  const auto* const found = std::ranges::find_if(
      kFileTypes, [&](const FileType& type) { return extension.is(type.extension); });
  return found != std::end(kFileTypes) ? *found : FileType{};
}

constexpr bool IsLoadable(const FileType& type) {
  return type.convertedTo != kNoFormat;
}

// Each name counts without its dot and with a NUL behind it; one more closes the list.
constexpr std::uint32_t LoadableListBytes() {
  std::size_t bytes = 1;
  for (const FileType& type : kFileTypes) bytes += IsLoadable(type) ? type.extension.size() : 0;
  return static_cast<std::uint32_t>(bytes);
}

}  // namespace

std::optional<SaveType> SaveTypeOf(const char* path) noexcept {
  const SaveType save = TypeOf(Extension(path)).save;
  return save.format != kNoFormat ? std::optional(save) : std::nullopt;
}

int DetermineFileTypeByName(const char* path) noexcept {
  const FileType type = TypeOf(Extension(path));
  return IsLoadable(type) ? type.convertedTo : kUnknownFileType;
}

const char* PdfPictureTypeOf(const char* path) noexcept {
  return TypeOf(Extension(path)).pdfPicture;
}

bool IsPdfName(const char* path) noexcept {
  return Extension(path).is(".PDF");
}

bool IsImageFileName(const char* path) noexcept {
  const Extension extension(path);
  return IsLoadable(TypeOf(extension)) ||
         std::ranges::any_of(kOtherImageNames,
                             [&](std::string_view name) { return extension.is(name); });
}

int CopyLoadableExtensions(int* count, char* buffer, std::uint32_t* size) noexcept {
  if (count != nullptr) *count = static_cast<int>(std::ranges::count_if(kFileTypes, IsLoadable));
  if (size == nullptr) return ORVO_ERR_BUFFER_TOO_SMALL;
  const std::uint32_t given = *size;
  *size = LoadableListBytes();
  if (given < *size || buffer == nullptr) return ORVO_ERR_BUFFER_TOO_SMALL;
  for (const FileType& type : kFileTypes) {
    if (!IsLoadable(type)) continue;
    buffer = std::ranges::copy(type.extension.substr(1), buffer).out;
    *buffer++ = '\0';
  }
  *buffer = '\0';
  return ORVO_OK;
}

}  // namespace orvo
