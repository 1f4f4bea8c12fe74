#include "ltfil13n/source_file.h"

#include <algorithm>
#include <climits>

#include "common/kernel_services.h"
#include "pictures/file_handle.h"
#include "pictures/loading.h"
#include "pictures/reduced_loading.h"
#include "platform/paths.h"

namespace modules {
namespace {

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
