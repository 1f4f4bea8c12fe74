// Pictures out of files, coded as a document holds them.
#ifndef MODULES_DOCUMENTS_PICTURE_CODING_H
#define MODULES_DOCUMENTS_PICTURE_CODING_H

#include <optional>
#include <string>
#include <string_view>

#include "documents/spool.h"
#include "pictures/picture.h"

namespace modules {

struct CodedPicture {
  Picture picture;  // as it was in the file
  int components = 1;
  Coding coding = Coding::kFlate;
  Spool::Range data = {};
};

// Keeps the file of the last picture open: pages are taken one after the other as a rule, and going
// on from one to the next is cheap.
class PictureFiles {
 public:
  // Takes a picture out of a file of a type: "jpeg", "tiff", "png" or "gif". page counts from 1 and
  // is for TIFF. Nothing when the TIFF file has fewer pages. Throws when the type is another or the
  // file cannot be read. Data that documents can hold as they are go into the spool from the file;
  // all else is coded without loss, 1 bit in group 4, the rest deflated.
  std::optional<CodedPicture> take(std::string_view type, const std::string& path, int page,
                                   Spool& spool);

 private:
  ReaderHandle reader_;
  std::string path_;
  bool hasPages_ = false;
};

// Gives rows as a document has them: components lie red first, values of 16 bits high byte first.
// A page is white and printers need no transparency: transparent pictures are laid on white here.
class DocumentRows {
 public:
  explicit DocumentRows(PictureReader& reader);

  [[nodiscard]] int width() const { return picture_.width; }
  [[nodiscard]] int height() const { return picture_.height; }
  [[nodiscard]] int components() const { return components_; }
  // The next row; it may be written to.
  std::vector<std::uint8_t>& next();

 private:
  void convert();

  PictureReader& reader_;
  const Picture& picture_;
  int components_;
  std::vector<std::uint8_t> row_;
};

// Codes 1-bit rows as one stretch of group 4 data.
Spool::Range EncodeFax(DocumentRows& rows, Spool& spool);

// A tone as it shows on the white of the page; alpha 0 is clear, 255 covers.
constexpr std::uint8_t OnWhite(std::uint8_t tone, std::uint8_t alpha) {
  return static_cast<std::uint8_t>((tone * alpha + 255 * (255 - alpha) + 127) / 255);
}

}  // namespace modules

#endif  // MODULES_DOCUMENTS_PICTURE_CODING_H
