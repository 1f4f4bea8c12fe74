// The module's entry points.
#include <utility>

#include "common/guard.h"
#include "common/kernel_services.h"
#include "common/status.h"
#include "ltfil13n/source_file.h"
#include "ltfil13n/target_file.h"
#include "ltfil13n/thumbnail.h"

namespace {

using modules::Guarded;
using modules::Require;
using modules::StatusShare;

// The kernel module tells callers which libraries are in use.
const int kNamesRegistered = Guarded([] {
  KernelRegisterCodecs(modules::CodecNames().c_str());
  return kModuleSuccess;
});

// Releases what a bitmap of this module's own holds.
class OwnBitmap {
 public:
  OwnBitmap() = default;
  ~OwnBitmap() { (void)L_FreeBitmap(&bitmap_); }
  OwnBitmap(const OwnBitmap&) = delete;
  OwnBitmap& operator=(const OwnBitmap&) = delete;
  struct_LEAD_Bitmap& operator*() { return bitmap_; }

 private:
  struct_LEAD_Bitmap bitmap_{};
};

void Save(const char* path, struct_LEAD_Bitmap* bitmap, int bits,
          const modules::SaveOptions& options) {
  Require(bitmap, kModuleNoBitmap);
  if (bits == 0 || bits == bitmap->bitsPerPixel) {
    return modules::WriteImage(path, *bitmap, options);
  }
  OwnBitmap copy;
  (*copy).block = L_ConvertToDIB(bitmap);
  Require((*copy).block != nullptr, kModuleNoBitmap);
  modules::Describe(*copy);
  constexpr int kDepthShare = 30;
  {
    const StatusShare share(0, kDepthShare);
    modules::BringToDepth(*copy, bits);
  }
  const StatusShare share(kDepthShare, 100 - kDepthShare);
  modules::WriteImage(path, *copy, options);
}

void Convert(const char* source, const char* target, int width, int height, int bits,
             const modules::SaveOptions& options) {
  constexpr int kLoadEnd = 45;
  constexpr int kChangeEnd = 55;
  OwnBitmap bitmap;
  {
    const StatusShare share(0, kLoadEnd);
    modules::LoadFile(source, *bitmap);
  }
  {
    const StatusShare share(kLoadEnd, kChangeEnd - kLoadEnd);
    if (width > 0 && height > 0) {
      const int code = L_SizeBitmap(&*bitmap, width, height, kSizeBest);
      Require(code == kModuleSuccess, code);
    }
    modules::BringToDepth(*bitmap, bits);
  }
  const StatusShare share(kChangeEnd, 100 - kChangeEnd);
  modules::WriteImage(target, *bitmap, options);
}

void Load(const char* path, int bits, struct_LEAD_Bitmap& bitmap) {
  constexpr int kLoadShare = 70;
  {
    const StatusShare share(0, bits == 0 ? 100 : kLoadShare);
    modules::LoadFile(path, bitmap);
  }
  const StatusShare share(kLoadShare, 100 - kLoadShare);
  if (bits == bitmap.bitsPerPixel) Require(KernelReportStatus(100), kModuleAborted);
  modules::BringToDepth(bitmap, bits);
}

// Runs an entry's work; the module code of what it throws, else success.
template <class Work>
int Done(const Work& work) noexcept {
  return Guarded([&] {
    work();
    return kModuleSuccess;
  });
}

}  // namespace

// Bytes always come blue first, whatever order is asked. The record need not be initialised.
int L_LoadBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int bits, int /*order*/,
                 void* /*callback*/, void* /*userData*/) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  *bitmap = {};
  return Done([=] {
    OwnBitmap loaded;
    Load(path, bits, *loaded);
    std::swap(*bitmap, *loaded);
  });
}

int L_SaveBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits, int quality,
                 void* /*options*/) {
  return Done([=] { Save(path, bitmap, bits, {format, quality, false}); });
}

int L_SaveFile(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits, int quality,
               unsigned flags, void* /*callback*/, void* /*userData*/, void* /*options*/) {
  return Done([=] {
    const bool append = (flags & kSaveAppendsPage) == kSaveAppendsPage;
    const bool takesPages = format == kFormatTiff || format == kFormatTiffCompressed;
    Require(!append || takesPages, kFileFormatNotWritten);
    Save(path, bitmap, bits, {format, quality, append});
  });
}

int L_FileInfo(const char* path, LTFILEINFO* info, unsigned flags, const LTLOADOPTIONS* options) {
  if (info == nullptr) return kModuleBadParameter;
  const bool usesOptions = (flags & kInfoUsesOptions) != 0;
  if (usesOptions && (options == nullptr || options->size < static_cast<int>(sizeof *options))) {
    return kModuleBadParameter;
  }
  return Done([=] { *info = modules::DescribeFile(path, usesOptions ? options->page : 1); });
}

// width and height of 0 keep the image's measures, bits of 0 its depth.
int L_FileConvert(const char* source, const char* target, int format, int width, int height,
                  int bits, int quality, void* /*loadOptions*/, void* /*saveOptions*/,
                  void* /*info*/) {
  return Done([=] { Convert(source, target, width, height, bits, {format, quality, false}); });
}

int L_CreateThumbnailFromFile(const char* path, struct_LEAD_Bitmap* bitmap,
                              const LTTHUMBNAILOPTIONS* options, void* /*info*/,
                              void* /*saveOptions*/, void* /*callback*/, void* /*userData*/) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  *bitmap = {};
  if (options == nullptr) return kModuleBadParameter;
  return Done([=] {
    OwnBitmap made;
    modules::MakeThumbnail(path, *options, *made);
    std::swap(*bitmap, *made);
  });
}
