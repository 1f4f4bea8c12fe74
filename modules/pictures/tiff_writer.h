// Writes TIFF files page by page, each with a compression of its own. What pages take in memory
// does not add up.
#ifndef MODULES_PICTURES_TIFF_WRITER_H
#define MODULES_PICTURES_TIFF_WRITER_H

#include <functional>

#include "common/dib_image.h"
#include "pictures/tiff_page.h"

namespace modules {

// How the rows of a page are coded.
struct TiffCoding {
  std::uint16_t compression = COMPRESSION_NONE;
  bool mayFax = true;  // 1 bit in black and white is coded in group 4 wherever there is compression
  int quality = 90;    // of JPEG, 1 to 100
};

// Whether a compression takes such pictures: group 4 black and white, JPEG tones and colours
// without opacity, the others all.
bool Takes(std::uint16_t compression, const Pixels& image);

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
  // Gives up a file that was not finished.
  ~TiffWriter();
  TiffWriter(const TiffWriter&) = delete;
  TiffWriter& operator=(const TiffWriter&) = delete;

  // Refuses what the compression does not take. Failures throw, as a rule a ModuleError.
  void add(const LockedDib& image, const TiffCoding& coding, Report report,
           const MoreTags& moreTags = {});
  // Ends the file, and throws if any of it was not written.
  void finish();

 private:
  int faults_ = 0;
  TiffHandle tiff_;
};

}  // namespace modules

#endif  // MODULES_PICTURES_TIFF_WRITER_H
