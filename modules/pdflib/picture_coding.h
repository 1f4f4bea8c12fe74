// Pictures coded as a document holds them.
#ifndef MODULES_PDFLIB_PICTURE_CODING_H
#define MODULES_PDFLIB_PICTURE_CODING_H

#include <string>

#include "pdflib/spool.h"
#include "pictures/picture.h"

namespace modules {

enum class Coding {
  kFlate,
  kFlateDifferences,  // each component as the difference from its left neighbour
  kFax,               // group 4; coded black is bit 1
  kJpeg,
  kJpegOfRgb,  // the components are red, green and blue themselves
};

struct CodedPicture {
  Picture picture;  // as it was in the file
  int components = 1;
  Coding coding = Coding::kFlate;
  Spool::Range data = {};
};

// Takes the page at which a reader stands. Data that documents can hold as they are go into the
// spool from the file at path; all else is coded without loss, 1 bit in group 4, the rest deflated.
CodedPicture CodePicture(PictureReader& reader, const std::string& path, Spool& spool);

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

#endif  // MODULES_PDFLIB_PICTURE_CODING_H
