// The two tables differ on purpose: a save writes a plain TIFF, a conversion a compressed one, and
// each knows extensions that the other does not.
#include "binding/file_types.h"

#include "binding/module_contract.h"

namespace orvo {

namespace {

constexpr SaveType kSaveTypes[] = {
    {".BMP", kFormatBmp},
    {".JFF", kFormatBmp},
    {".JPG", kFormatJpeg, SaveQuality::kCallers},
    {".JPEG", kFormatJpeg, SaveQuality::kCallers},
    {".CMP", kFormatCmp, SaveQuality::kCallers},
    {".TIF", kFormatTiff, SaveQuality::kNone, true},
    {".TIFF", kFormatTiff, SaveQuality::kNone, true},
    {".PCX", kFormatPcx},
    {".PSD", kFormatPsd},
    {".PNG", kFormatPng},
    {".RAS", kFormatRas},
    {".PCD", kFormatPcd},
    {".FPX", kFormatFpx, SaveQuality::kFixedLow},
    {".WMF", kFormatWmf},
    {".TGA", kFormatTga},
    {".EPS", kFormatEps},
    {".WPG", kFormatWpg},
    {".PCT", kFormatPct},
};

struct ConversionType {
  const char* extension;
  int format;
};

constexpr ConversionType kConversionTypes[] = {
    {".BMP", kFormatBmp},
    {".TIF", kFormatTiffCompressed},
    {".TIFF", kFormatTiffCompressed},
    {".JPG", kFormatJpeg},
    {".JPE", kFormatJpeg},
    {".JPEG", kFormatJpeg},
    {".CMP", kFormatCmp},
    {".PCX", kFormatPcx},
    {".PSD", kFormatPsd},
    {".PNG", kFormatPng},
    {".RAS", kFormatRas},
    {".PCD", kFormatPcd},
    {".FPX", kFormatFpx},
    {".WMF", kFormatWmf},
    {".TGA", kFormatTga},
    {".PCT", kFormatPct},
};

struct PdfPictureType {
  const char* extension;
  const char* type;
};

constexpr PdfPictureType kPdfPictureTypes[] = {
    {".JPG", "jpeg"},
    {".TIF", "tiff"},
    {".PNG", "png"},
    {".GIF", "gif"},
};

// The extension of a path, dot included.
struct Extension {
  explicit Extension(const char* path) { _splitpath(path, nullptr, nullptr, nullptr, text); }
  [[nodiscard]] bool is(const char* other) const {
    return _mbsicmp(reinterpret_cast<const unsigned char*>(text),
                    reinterpret_cast<const unsigned char*>(other)) == 0;
  }
  char text[_MAX_EXT] = {};
};

}  // namespace

std::optional<SaveType> SaveTypeOf(const char* path) noexcept {
  const Extension extension(path);
  for (const SaveType& type : kSaveTypes) {
    if (extension.is(type.extension)) return type;
  }
  return std::nullopt;
}

bool IsPdfName(const char* path) noexcept {
  return Extension(path).is(".PDF");
}

const char* PdfPictureTypeOf(const char* path) noexcept {
  const Extension extension(path);
  for (const PdfPictureType& row : kPdfPictureTypes) {
    if (extension.is(row.extension)) return row.type;
  }
  return nullptr;
}

int DetermineFileTypeByName(const char* path) noexcept {
  const Extension extension(path);
  for (const ConversionType& type : kConversionTypes) {
    if (extension.is(type.extension)) return type.format;
  }
  return kUnknownFileType;
}

}  // namespace orvo
