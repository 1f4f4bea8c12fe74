// The module's entry points.
#include <algorithm>
#include <climits>

#include "common/guard.h"
#include "common/kernel_services.h"
#include "common/status.h"
#include "ltfil13n/source_file.h"
#include "ltfil13n/target_file.h"
#include "ltfil13n/thumbnail.h"
#include "pictures/codecs.h"

namespace {

using modules::Guarded;
using modules::StatusShare;

constexpr int kFirstPage = 1;

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

int Load(const char* path, struct_LEAD_Bitmap& bitmap) {
  modules::SourceFile source;
  const int code = modules::FindSource(path, source);
  return code == kModuleSuccess ? source.codec->load(source.path.c_str(), kFirstPage, bitmap)
                                : code;
}

int Save(const char* path, struct_LEAD_Bitmap* bitmap, int bits,
         const modules::SaveOptions& options) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  if (bits == 0 || bits == bitmap->bitsPerPixel) {
    return modules::WriteImage(path, *bitmap, options);
  }
  OwnBitmap copy;
  (*copy).block = L_ConvertToDIB(bitmap);
  if ((*copy).block == nullptr) return kModuleNoBitmap;
  modules::Describe(*copy);
  constexpr int kDepthShare = 30;
  int code = kModuleSuccess;
  {
    const StatusShare share(0, kDepthShare);
    code = modules::BringToDepth(*copy, bits);
  }
  const StatusShare share(kDepthShare, 100 - kDepthShare);
  return code == kModuleSuccess ? modules::WriteImage(path, *copy, options) : code;
}

int Convert(const char* source, const char* target, int width, int height, int bits,
            const modules::SaveOptions& options) {
  constexpr int kLoadEnd = 45;
  constexpr int kChangeEnd = 55;
  OwnBitmap bitmap;
  int code = kModuleSuccess;
  {
    const StatusShare share(0, kLoadEnd);
    code = Load(source, *bitmap);
  }
  {
    const StatusShare share(kLoadEnd, kChangeEnd - kLoadEnd);
    if (code == kModuleSuccess && width > 0 && height > 0) {
      code = L_SizeBitmap(&*bitmap, width, height, kSizeBest);
    }
    if (code == kModuleSuccess) code = modules::BringToDepth(*bitmap, bits);
  }
  const StatusShare share(kChangeEnd, 100 - kChangeEnd);
  return code == kModuleSuccess ? modules::WriteImage(target, *bitmap, options) : code;
}

int FileInfo(const char* path, int page, LTFILEINFO& info) {
  modules::SourceFile source;
  int code = modules::FindSource(path, source);
  if (code != kModuleSuccess) return code;
  LTFILEINFO found{};
  code = source.codec->describe(source.path.c_str(), page, found);
  if (code != kModuleSuccess) return code;
  found.sizeOnDisk = static_cast<int>(std::min<std::uint64_t>(source.bytes, INT_MAX));
  info = found;
  return kModuleSuccess;
}

}  // namespace

// Bytes always come blue first, whatever order is asked. The record need not be initialised.
int L_LoadBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int bits, int /*order*/,
                 void* /*callback*/, void* /*userData*/) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  *bitmap = {};
  return Guarded([=] {
    constexpr int kLoadShare = 70;
    OwnBitmap loaded;
    int code = kModuleSuccess;
    {
      const StatusShare share(0, bits == 0 ? 100 : kLoadShare);
      code = Load(path, *loaded);
    }
    if (code == kModuleSuccess && bits != 0) {
      const StatusShare share(kLoadShare, 100 - kLoadShare);
      code = modules::BringToDepth(*loaded, bits);
    }
    if (code == kModuleSuccess) std::swap(*bitmap, *loaded);
    return code;
  });
}

int L_SaveBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits, int quality,
                 void* /*options*/) {
  return Guarded([=] { return Save(path, bitmap, bits, {format, quality, false}); });
}

int L_SaveFile(const char* path, struct_LEAD_Bitmap* bitmap, int format, int bits, int quality,
               unsigned flags, void* /*callback*/, void* /*userData*/, void* /*options*/) {
  return Guarded([=] {
    const bool append = (flags & kSaveAppendsPage) == kSaveAppendsPage;
    const bool takesPages = format == kFormatTiff || format == kFormatTiffCompressed;
    if (append && !takesPages) return static_cast<int>(kFileFormatNotWritten);
    return Save(path, bitmap, bits, {format, quality, append});
  });
}

int L_FileInfo(const char* path, LTFILEINFO* info, unsigned flags, const LTLOADOPTIONS* options) {
  if (info == nullptr) return kModuleBadParameter;
  const bool usesOptions = (flags & kInfoUsesOptions) != 0;
  if (usesOptions && (options == nullptr || options->size < static_cast<int>(sizeof *options))) {
    return kModuleBadParameter;
  }
  return Guarded([=] { return FileInfo(path, usesOptions ? options->page : kFirstPage, *info); });
}

// width and height of 0 keep the image's measures, bits of 0 its depth.
int L_FileConvert(const char* source, const char* target, int format, int width, int height,
                  int bits, int quality, void* /*loadOptions*/, void* /*saveOptions*/,
                  void* /*info*/) {
  return Guarded([=] {
    return Convert(source, target, width, height, bits, {format, quality, false});
  });
}

int L_CreateThumbnailFromFile(const char* path, struct_LEAD_Bitmap* bitmap,
                              const LTTHUMBNAILOPTIONS* options, void* /*info*/,
                              void* /*saveOptions*/, void* /*callback*/, void* /*userData*/) {
  if (bitmap == nullptr) return kModuleNoBitmap;
  *bitmap = {};
  if (options == nullptr) return kModuleBadParameter;
  return Guarded([=] {
    OwnBitmap made;
    const int code = modules::MakeThumbnail(path, *options, *made);
    if (code == kModuleSuccess) std::swap(*bitmap, *made);
    return code;
  });
}
