#include "ltfil13n/target_file.h"

#include <algorithm>
#include <filesystem>

#include "ltfil13n/source_file.h"
#include "pictures/file_handle.h"
#include "pictures/temporary_file.h"

namespace modules {
namespace {

namespace fs = std::filesystem;

// The file that is asked for, and the one that is to take its place.
class TargetFile {
 public:
  // Makes the temporary file.
  explicit TargetFile(const std::string& path)
      : target_(followed(path)), temporary_((checkTarget(), target_)) {
    Require(temporary_, kModuleFileNotOpened);
  }

  [[nodiscard]] const fs::path& temporary() const { return temporary_.path(); }
  [[nodiscard]] const fs::path& target() const { return target_; }
  [[nodiscard]] bool exists() const { return fs::exists(status_); }

  // Moves the finished file over its target.
  void commit() {
    std::error_code error;
    if (exists()) fs::permissions(temporary(), status_.permissions(), error);
    Require(!error && temporary_.moveTo(target_), kModuleWriteFailed);
  }

 private:
  // A link stays a link: what it points to is written.
  static fs::path followed(const fs::path& path) {
    std::error_code error;
    return fs::is_symlink(path, error) ? fs::weakly_canonical(path, error) : path;
  }

  // What may not be written over in place is not replaced either.
  void checkTarget() {
    std::error_code error;
    status_ = fs::status(target_, error);
    Require(!exists() || (fs::is_regular_file(status_) && OpenFile(target_.c_str(), "r+b")),
            kModuleFileNotOpened);
  }

  fs::path target_;
  fs::file_status status_;
  TemporaryFile temporary_;
};

int QualityOf(int asked) {
  constexpr int kDefault = 90;
  constexpr int kBest = 100;
  return asked <= 0 ? kDefault : std::min(asked, kBest);
}

// The earlier pages go into the temporary file; only files of the format at hand can take one more.
void CopyPages(const TargetFile& target, const Format& format) {
  const Format& earlier = FormatOfFile(TakePath(target.target().c_str()));
  Require(earlier.save == format.save, kModuleBadFile);
  std::error_code error;
  fs::copy_file(target.target(), target.temporary(), fs::copy_options::overwrite_existing, error);
  Require(!error, kModuleWriteFailed);
}

}  // namespace

void WriteImage(const char* path, struct_LEAD_Bitmap& bitmap, const SaveOptions& options) {
  const std::string native = TakePath(path);
  // A resolution that was stored in the record is stamped into the image on the way out of it.
  (void)L_ChangeFromDIB(&bitmap, L_ChangeToDIB(&bitmap));
  const LockedDib image(bitmap.block);
  Require(image, kModuleNoBitmap);
  const Format* const format = FormatThatWrites(options.format);
  Require(format, kFileFormatNotWritten);

  TargetFile target(native);
  const bool appends = options.appendPage && target.exists();
  if (appends) CopyPages(target, *format);
  const std::string temporary = target.temporary().string();
  format->save({.path = temporary.c_str(),
                .format = options.format,
                .quality = QualityOf(options.quality),
                .appendPage = appends,
                .report = KernelReportStatus},
               image);
  target.commit();
}

}  // namespace modules
