#include "ltfil13n/target_file.h"

#include <algorithm>
#include <filesystem>
#include <optional>

#include "ltfil13n/source_file.h"
#include "pictures/file_handle.h"
#include "pictures/formats.h"
#include "pictures/temporary_file.h"

namespace modules {
namespace {

namespace fs = std::filesystem;

// The file that is asked for, and the one that is to take its place.
class TargetFile {
 public:
  // Makes the temporary file. Module code.
  int open(const std::string& path) {
    std::error_code error;
    target_ = path;
    // A link stays a link: what it points to is written.
    if (fs::is_symlink(target_, error)) target_ = fs::weakly_canonical(target_, error);
    const fs::file_status status = fs::status(target_, error);
    exists_ = fs::exists(status);
    if (exists_) {
      permissions_ = status.permissions();
      // What may not be written over in place is not replaced either.
      if (!fs::is_regular_file(status) || !OpenFile(target_.c_str(), "r+b")) {
        return kModuleFileNotOpened;
      }
    }
    temporary_.emplace(target_);
    return *temporary_ ? kModuleSuccess : kModuleFileNotOpened;
  }

  [[nodiscard]] const fs::path& temporary() const { return temporary_->path(); }
  [[nodiscard]] const fs::path& target() const { return target_; }
  [[nodiscard]] bool exists() const { return exists_; }

  // Moves the finished file over its target.
  int commit() {
    std::error_code error;
    if (exists_) fs::permissions(temporary(), permissions_, error);
    return !error && temporary_->moveTo(target_) ? kModuleSuccess : kModuleWriteFailed;
  }

 private:
  fs::path target_;
  std::optional<TemporaryFile> temporary_;
  bool exists_ = false;
  fs::perms permissions_{};
};

const Codec* CodecFor(int format) {
  for (const Codec* codec : Codecs()) {
    if (std::ranges::find(codec->formats, format) != codec->formats.end()) return codec;
  }
  return nullptr;
}

int QualityOf(int asked) {
  constexpr int kDefault = 90;
  constexpr int kBest = 100;
  return asked <= 0 ? kDefault : std::min(asked, kBest);
}

// The earlier pages go into the temporary file; only files of the format at hand can take one more.
int CopyPages(const TargetFile& target, const Codec& codec) {
  SourceFile earlier;
  const int code = FindSource(target.target().c_str(), earlier);
  if (code != kModuleSuccess) return code;
  if (earlier.codec != &codec) return kModuleBadFile;
  std::error_code error;
  fs::copy_file(target.target(), target.temporary(), fs::copy_options::overwrite_existing, error);
  return error ? kModuleWriteFailed : kModuleSuccess;
}

}  // namespace

int WriteImage(const char* path, struct_LEAD_Bitmap& bitmap, const SaveOptions& options) {
  std::string native;
  if (const int code = TakePath(path, native); code != kModuleSuccess) return code;
  // A resolution that was stored in the record is stamped into the image on the way out of it.
  (void)L_ChangeFromDIB(&bitmap, L_ChangeToDIB(&bitmap));
  const LockedDib image(bitmap.block);
  if (!image) return kModuleNoBitmap;
  const Codec* const codec = CodecFor(options.format);
  if (codec == nullptr) return kFileFormatNotWritten;

  TargetFile target;
  if (const int code = target.open(native); code != kModuleSuccess) return code;
  const bool appends = options.appendPage && target.exists();
  if (appends) {
    if (const int code = CopyPages(target, *codec); code != kModuleSuccess) return code;
  }
  const std::string temporary = target.temporary().string();
  const SaveRequest request{.path = temporary.c_str(),
                            .format = options.format,
                            .quality = QualityOf(options.quality),
                            .appendPage = appends};
  const int code = codec->save(request, image);
  return code == kModuleSuccess ? target.commit() : code;
}

}  // namespace modules
