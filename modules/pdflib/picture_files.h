// Pictures out of files, coded for a document.
#ifndef MODULES_PDFLIB_PICTURE_FILES_H
#define MODULES_PDFLIB_PICTURE_FILES_H

#include <optional>
#include <string>
#include <string_view>

#include "pdflib/picture_coding.h"

namespace modules {

// Keeps the file of the last picture open: pages are taken one after the other as a rule, and going
// on from one to the next is cheap.
class PictureFiles {
 public:
  // Takes a picture out of a file of a type: "jpeg", "tiff", "png" or "gif". page counts from 1 and
  // is for TIFF. Nothing when the TIFF file has fewer pages. Throws when the type is another or the
  // file cannot be read.
  std::optional<CodedPicture> take(std::string_view type, const std::string& path, int page,
                                   Spool& spool);

 private:
  ReaderHandle reader_;
  std::string path_;
  bool hasPages_ = false;
};

}  // namespace modules

#endif  // MODULES_PDFLIB_PICTURE_FILES_H
