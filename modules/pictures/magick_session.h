// GraphicsMagick as a decoder and encoder of files in memory, and nothing more: it never picks a
// format, never starts a program, opens no file or address on its own, and keeps no pixels on disk.
#ifndef MODULES_PICTURES_MAGICK_SESSION_H
#define MODULES_PICTURES_MAGICK_SESSION_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

#include "common/guard.h"
#include "common/status.h"
#include "pictures/magick_library.h"

namespace modules {

struct MagickImageEnd {
  void operator()(Image* image) const { Magick().DestroyImageList(image); }
};
using MagickImage = std::unique_ptr<Image, MagickImageEnd>;

struct MagickInfoEnd {
  void operator()(ImageInfo* info) const { Magick().DestroyImageInfo(info); }
};
using MagickImageInfo = std::unique_ptr<ImageInfo, MagickInfoEnd>;

// What one call into the library reported. Module code of it by code().
class MagickReport {
 public:
  MagickReport() { Magick().GetExceptionInfo(&exception_); }
  // The library ends some reports itself, which must not be done twice.
  ~MagickReport() {
    if (exception_.signature == MagickSignature) Magick().DestroyExceptionInfo(&exception_);
  }
  MagickReport(const MagickReport&) = delete;
  MagickReport& operator=(const MagickReport&) = delete;

  ExceptionInfo* get() { return &exception_; }
  [[nodiscard]] int code() const;

 private:
  ExceptionInfo exception_{};
};

// Progress of one file: the library's own work takes the first half of the scale, the copying of
// rows the second or the other way round.
class MagickProgress {
 public:
  // The library's part lies above or below the rows' part.
  enum class Order : std::uint8_t { kLibraryFirst, kRowsFirst };
  MagickProgress(Order order, Report listener) : order_(order), progress_(2 * kHalf, listener) {}

  // False when the callback asks to stop; it is not asked again.
  bool reportLibrary(std::uint64_t done, std::uint64_t total);
  bool reportRows(int done, int total);
  [[nodiscard]] bool stopped() const { return stopped_; }

 private:
  static constexpr std::uint64_t kHalf = 100;
  bool report(bool firstHalf, std::uint64_t done, std::uint64_t total);

  Order order_;
  bool stopped_ = false;
  Progress progress_;
};

// Options of one call, for a format by the library's name; starts the library when it is the first.
MagickImageInfo NewMagickInfo(const char* magick);
// An image without pixels for the format of the options.
MagickImage NewMagickImage(const ImageInfo& info);

// The images of a file in memory, without their pixels when progress is null.
MagickImage DecodeMagick(const ImageInfo& info, std::span<const std::uint8_t> file,
                         MagickProgress* progress);
// Writes the bytes of a file that holds the image.
void EncodeMagick(const ImageInfo& info, Image& image, MagickProgress& progress, std::FILE* file);

}  // namespace modules

#endif  // MODULES_PICTURES_MAGICK_SESSION_H
