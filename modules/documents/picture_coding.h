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
  Picture picture;  // as it was in the file, but its palette laid on the ground
  int bits = 8;     // of a component
  int components = 1;
  Coding coding = Coding::kFlate;
  Spool::Range data = {};
  bool showsGround = false;  // something is not opaque
  bool isFromFile = false;   // the data are the file's own

  // Of a pixel, where indexes stand for three.
  [[nodiscard]] int colorComponents() const { return picture.palette.empty() ? components : 3; }
};

struct CodingRules {
  // Takes data as they are wherever a document can hold them, not only in one stretch; 16 bits
  // stay.
  bool takesParts = false;
  // What lies under opacity, which documents are not given. A page is white.
  RGBQUAD ground{255, 255, 255, 0};
};

// What is passed through is decoded all the same: damage is met here and not in the document. Data
// that are neither are coded without loss, 1 bit in group 4, the rest deflated.
CodedPicture CodePicture(PictureReader& reader, const std::string& path, const CodingRules& rules,
                         Spool& spool);

// Keeps the file of the last picture open: pages are taken one after the other as a rule, and going
// on from one to the next is cheap.
class PictureFiles {
 public:
  explicit PictureFiles(Report report = nullptr) : report_(report) {}

  // Takes a picture out of a file of a type: "jpeg", "tiff", "png" or "gif". page counts from 1 and
  // is for TIFF. Nothing when the TIFF file has fewer pages. Throws when the type is another or the
  // file cannot be read.
  std::optional<CodedPicture> take(std::string_view type, const std::string& path, int page,
                                   Spool& spool, const CodingRules& rules = {});

 private:
  Report report_;
  ReaderHandle reader_;
  std::string path_;
  bool hasPages_ = false;
};

// Gives rows as a document has them: components lie red first, values of 16 bits high byte first.
// Printers need no transparency: transparent pictures are laid on the ground here.
class DocumentRows {
 public:
  DocumentRows(PictureReader& reader, const RGBQUAD& ground);

  [[nodiscard]] int width() const { return picture_.width; }
  [[nodiscard]] int height() const { return picture_.height; }
  [[nodiscard]] int components() const { return components_; }
  // Whether the ground showed through the rows so far.
  [[nodiscard]] bool showsGround() const { return showsGround_; }
  // The next row; it may be written to.
  std::vector<std::uint8_t>& next();

 private:
  void convert();

  PictureReader& reader_;
  const Picture& picture_;
  RGBQUAD ground_;
  bool showsGround_ = false;
  int components_;
  std::vector<std::uint8_t> row_;
};

// Codes 1-bit rows as one stretch of group 4 data.
Spool::Range EncodeFax(DocumentRows& rows, Spool& spool);

}  // namespace modules

#endif  // MODULES_DOCUMENTS_PICTURE_CODING_H
