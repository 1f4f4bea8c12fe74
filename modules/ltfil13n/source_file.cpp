#include "ltfil13n/source_file.h"

#include <array>
#include <cctype>
#include <filesystem>

#include "common/kernel_services.h"
#include "pictures/file_handle.h"
#include "platform/paths.h"

namespace modules {

int TakePath(const char* path, std::string& native) {
  if (path == nullptr) return kModuleBadParameter;
  native = platform::NativePath(path);
  return native.empty() || native.size() >= MAX_PATH ? kModuleFileNotOpened : kModuleSuccess;
}

std::string ExtensionOf(const std::string& path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string::npos || dot < platform::DirectoryLength(path)) return {};
  std::string extension = path.substr(dot + 1);
  for (char& character : extension) {
    character = static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
  }
  return extension;
}

int FindSource(const char* path, SourceFile& source) {
  if (const int code = TakePath(path, source.path); code != kModuleSuccess) return code;
  std::error_code error;
  const auto status = std::filesystem::status(source.path, error);
  if (status.type() == std::filesystem::file_type::not_found) return kModuleFileNotFound;
  if (!std::filesystem::is_regular_file(status)) return kModuleFileNotOpened;
  source.bytes = FileSize(source.path.c_str());

  const FileHandle file = OpenFile(source.path.c_str(), "rb");
  if (!file) return kModuleFileNotOpened;
  std::array<std::uint8_t, Codec::kHeadBytes> bytes{};
  const std::span head(bytes.data(), std::fread(bytes.data(), 1, bytes.size(), file.get()));
  const std::string extension = ExtensionOf(source.path);
  for (const Codec* codec : Codecs()) {
    if (!codec->recognises(head, extension.c_str())) continue;
    source.codec = codec;
    return kModuleSuccess;
  }
  return kFileFormatNotRead;
}

int BringToDepth(struct_LEAD_Bitmap& bitmap, int bits) {
  if (bits == 0 || bits == bitmap.bitsPerPixel) return kModuleSuccess;
  const unsigned flags = kColorResOptimisedPalette | KernelDefaultDithering()
                                                         << kColorResDitheringShift;
  return L_ColorResBitmap(&bitmap, &bitmap, bits, flags, nullptr, nullptr, nullptr, nullptr,
                          nullptr);
}

}  // namespace modules
