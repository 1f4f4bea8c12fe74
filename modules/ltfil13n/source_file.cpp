#include "ltfil13n/source_file.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <climits>
#include <filesystem>

#include "common/kernel_services.h"
#include "pictures/file_handle.h"
#include "pictures/loading.h"
#include "pictures/reduced_loading.h"
#include "platform/paths.h"

namespace modules {
namespace {

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

// By how much a picture is reduced while it is read: not at all unless it is large.
int ReductionOf(const Picture& picture, const Size& least) {
  constexpr std::int64_t kManyPixels = std::int64_t{1} << 24;
  if (std::int64_t{picture.width} * picture.height <= kManyPixels) return 1;
  return std::min(picture.width / least.width, picture.height / least.height);
}

}  // namespace

std::string TakePath(const char* path) {
  Require(path, kModuleBadParameter);
  std::string native = platform::NativePath(path);
  Require(!native.empty() && native.size() < MAX_PATH, kModuleFileNotOpened);
  return native;
}

const Format& FormatOfFile(const std::string& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  Require(status.type() != std::filesystem::file_type::not_found, kModuleFileNotFound);
  Require(std::filesystem::is_regular_file(status), kModuleFileNotOpened);
  const FileHandle file = OpenToRead(path.c_str());
  std::array<std::uint8_t, kHeadBytes> bytes{};
  const Head head(bytes.data(), std::fread(bytes.data(), 1, bytes.size(), file.get()));
  const Format* const format = FormatThatReads(head, ExtensionOf(path));
  Require(format, kFileFormatNotRead);
  return *format;
}

int LoadFile(const char* path, struct_LEAD_Bitmap& bitmap, const Size* frame) {
  const std::string native = TakePath(path);
  const ReaderHandle reader = FormatOfFile(native).open(native.c_str(), KernelReportStatus);
  Require(reader->goTo(1), kModuleBadParameter);
  int factor = 1;
  if (frame != nullptr) {
    const bool turned = SwapsSides(reader->picture().orientation);
    const Size least{turned ? frame->height : frame->width, turned ? frame->width : frame->height};
    reader->shrinkTo(least.width, least.height);
    factor = ReductionOf(reader->picture(), least);
  }
  const int depth = reader->picture().depth();
  TakeBlock(bitmap, factor > 1 ? LoadReduced(*reader, factor) : LoadPicture(*reader));
  return depth;
}

LTFILEINFO DescribeFile(const char* path, int page) {
  const std::string native = TakePath(path);
  const ReaderHandle reader = FormatOfFile(native).open(native.c_str(), nullptr);
  Require(reader->goTo(page), kModuleBadParameter);
  LTFILEINFO info{};
  DescribePicture(reader->picture(), info);
  info.sizeOnDisk = static_cast<int>(std::min<std::uint64_t>(FileSize(native.c_str()), INT_MAX));
  info.pageCount = reader->pageCount();
  info.page = page;
  return info;
}

void ChangeDepth(struct_LEAD_Bitmap& bitmap, int bits, unsigned flags) {
  const int code =
      L_ColorResBitmap(&bitmap, &bitmap, bits, flags, nullptr, nullptr, nullptr, nullptr, nullptr);
  Require(code == kModuleSuccess, code);
}

void BringToDepth(struct_LEAD_Bitmap& bitmap, int bits) {
  if (bits == 0 || bits == bitmap.bitsPerPixel) return;
  ChangeDepth(bitmap, bits,
              kColorResOptimisedPalette | KernelDefaultDithering() << kColorResDitheringShift);
}

}  // namespace modules
