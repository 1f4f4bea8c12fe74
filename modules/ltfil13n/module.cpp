// The module's entry points.
#include <algorithm>
#include <climits>

#include "common/guard.h"
#include "common/kernel_services.h"
#include "common/status.h"
#include "ltfil13n/codecs.h"
#include "ltfil13n/source_file.h"
#include "ltfil13n/target_file.h"
#include "ltfil13n/thumbnail.h"

namespace {

using provider::Guarded;
using provider::StatusShare;

constexpr int kFirstPage = 1;

// The kernel module tells callers which libraries are in use.
const int kNamesRegistered = Guarded([] {
  KernelRegisterCodecs(provider::CodecNames().c_str());
  return kVendorSuccess;
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
  provider::SourceFile source;
  const int code = provider::FindSource(path, source);
  return code == kVendorSuccess ? source.codec->load(source.path.c_str(), kFirstPage, bitmap)
                                : code;
}

int Save(const char* path, struct_LEAD_Bitmap* bitmap, int bits,
         const provider::SaveOptions& options) {
  if (bitmap == nullptr) return kVendorNoBitmap;
  if (bits == 0 || bits == bitmap->bitsPerPixel) {
    return provider::WriteImage(path, *bitmap, options);
  }
  OwnBitmap copy;
  (*copy).block = L_ConvertToDIB(bitmap);
  if ((*copy).block == nullptr) return kVendorNoBitmap;
  provider::Describe(*copy);
  constexpr int kDepthShare = 30;
  int code = kVendorSuccess;
  {
    const StatusShare share(0, kDepthShare);
    code = provider::BringToDepth(*copy, bits);
  }
  const StatusShare share(kDepthShare, 100 - kDepthShare);
  return code == kVendorSuccess ? provider::WriteImage(path, *copy, options) : code;
}

int Convert(const char* source, const char* target, int width, int height, int bits,
            const provider::SaveOptions& options) {
  constexpr int kLoadEnd = 45;
  constexpr int kChangeEnd = 55;
  OwnBitmap bitmap;
  int code = kVendorSuccess;
  {
    const StatusShare share(0, kLoadEnd);
    code = Load(source, *bitmap);
  }
  {
    const StatusShare share(kLoadEnd, kChangeEnd - kLoadEnd);
    if (code == kVendorSuccess && width > 0 && height > 0) {
      code = L_SizeBitmap(&*bitmap, width, height, kSizeBest);
    }
    if (code == kVendorSuccess) code = provider::BringToDepth(*bitmap, bits);
  }
  const StatusShare share(kChangeEnd, 100 - kChangeEnd);
  return code == kVendorSuccess ? provider::WriteImage(target, *bitmap, options) : code;
}

int FileInfo(const char* path, int page, LTFILEINFO& info) {
  provider::SourceFile source;
  int code = provider::FindSource(path, source);
  if (code != kVendorSuccess) return code;
  LTFILEINFO found{};
  code = source.codec->describe(source.path.c_str(), page, found);
  if (code != kVendorSuccess) return code;
  found.sizeOnDisk = static_cast<int>(std::min<std::uint64_t>(source.bytes, INT_MAX));
  info = found;
  return kVendorSuccess;
}

}  // namespace

// Bytes always come blue first, whatever order is asked. The record need not be initialised.
int L_LoadBitmap(const char* path, struct_LEAD_Bitmap* bitmap, int bits, int /*order*/,
                 void* /*callback*/, void* /*userData*/) {
  if (bitmap == nullptr) return kVendorNoBitmap;
  *bitmap = {};
  return Guarded([=] {
    constexpr int kLoadShare = 70;
    OwnBitmap loaded;
    int code = kVendorSuccess;
    {
      const StatusShare share(0, bits == 0 ? 100 : kLoadShare);
      code = Load(path, *loaded);
    }
    if (code == kVendorSuccess && bits != 0) {
      const StatusShare share(kLoadShare, 100 - kLoadShare);
      code = provider::BringToDepth(*loaded, bits);
    }
    if (code == kVendorSuccess) std::swap(*bitmap, *loaded);
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
    if (append && !takesPages) return static_cast<int>(kVendorFormatNotWritten);
    return Save(path, bitmap, bits, {format, quality, append});
  });
}

int L_FileInfo(const char* path, LTFILEINFO* info, unsigned flags, const LTLOADOPTIONS* options) {
  if (info == nullptr) return kVendorBadParameter;
  const bool usesOptions = (flags & kInfoUsesOptions) != 0;
  if (usesOptions && (options == nullptr || options->size < static_cast<int>(sizeof *options))) {
    return kVendorBadParameter;
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
  if (bitmap == nullptr) return kVendorNoBitmap;
  *bitmap = {};
  if (options == nullptr) return kVendorBadParameter;
  return Guarded([=] {
    OwnBitmap made;
    const int code = provider::MakeThumbnail(path, *options, *made);
    if (code == kVendorSuccess) std::swap(*bitmap, *made);
    return code;
  });
}
