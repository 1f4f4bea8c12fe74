// Writes TIFF files page by page, each with a compression of its own. What pages take in memory
// does not add up.
#ifndef MODULES_PICTURES_TIFF_WRITER_H
#define MODULES_PICTURES_TIFF_WRITER_H

#include <functional>

#include "common/dib_image.h"
#include "pictures/tiff_page.h"

namespace modules {

class TiffWriter {
 public:
  enum class Form : std::uint8_t {
    kPlain,  // offsets of 32 bits, up to 4 GiB
    kBig,    // of 64 bits
    kAppended,
  };
  // Tags beside those of the picture, set before its page is written.
  using MoreTags = std::function<void(TIFF*)>;

  // Makes the file, or opens it at its end.
  TiffWriter(const char* path, Form form);

  // compression: COMPRESSION_NONE, or another without loss for 4 bits and up; 1 bit in black and
  // white is then coded in group 4. Failures throw, as a rule a ModuleError.
  void add(const LockedDib& image, std::uint16_t compression, Report report,
           const MoreTags& moreTags = {});
  // Ends the file, and throws if any of it was not written.
  void finish();

 private:
  int faults_ = 0;
  TiffHandle tiff_;
};

}  // namespace modules

#endif  // MODULES_PICTURES_TIFF_WRITER_H
