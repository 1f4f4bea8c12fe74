// PDF documents whose pages are one picture each: what they hold, the pictures as files, and other
// pictures in their place.
//
//   std::unique_ptr<PdfFile> book(OpenPdfFile("book.pdf"));
//   if (book->page(1).refusal.empty()) book->extract(1, PdfFile::Part::kAll, "page");
#ifndef APPS_ORVO_PDF_PDF_FILE_H
#define APPS_ORVO_PDF_PDF_FILE_H

#include <stdexcept>
#include <string>
#include <vector>

#include "common/guard.h"

namespace client {

// Says in words what is wrong with a document or a page: "it shows text".
struct PdfFault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct PdfPage {
  std::string refusal;  // why its picture cannot be taken out; the rest then is as far as known
  // As stored, before it is turned upright.
  int width = 0;   // pixels
  int height = 0;  // pixels
  double xDotsPerInch = 0;
  double yDotsPerInch = 0;
  int orientation = 1;  // 1 to 8, as cameras tell it
  int bits = 0;         // of a sample
  std::string colors;   // "gray", "RGB", "CMYK" or "palette"
  std::string coding;   // "JPEG", "CCITT G4", "deflate" ...
  bool hasHiddenText = false;
  bool hasAnnotations = false;
};

// Pages count from 1. What is done to a document may throw PdfFault.
class PdfFile {
 public:
  PdfFile() = default;
  virtual ~PdfFile() = default;
  PdfFile(const PdfFile&) = delete;
  PdfFile& operator=(const PdfFile&) = delete;

  [[nodiscard]] virtual int pageCount() const = 0;
  [[nodiscard]] virtual PdfPage page(int number) = 0;
  // What a picture file cannot hold of the document as a whole, in words.
  [[nodiscard]] virtual std::vector<std::string> besidesPages() = 0;
  // Whether a signature would no longer hold once anything changes.
  [[nodiscard]] virtual bool isSigned() = 0;

  // kBesides: of a picture that is no JPEG file, a TIFF file with a pixel and all that goes with
  // the picture.
  enum class Part { kAll, kBesides };
  // Writes the page's picture as a file: a JPEG stream as it is, which is told by true, and knows
  // nothing of the page; all else as a TIFF file that tells orientation, resolution and profile.
  virtual bool extract(int number, Part part, const std::string& path) = 0;
  // Of the colours; empty for none.
  [[nodiscard]] virtual std::string profile(int number) = 0;

  // From now on the page shows the picture of a file, JPEG or TIFF, where it showed its own.
  virtual void exchange(int number, bool isJpeg, const std::string& path) = 0;
  // The same on a page that is made anew round the picture, so many points wide and high, with the
  // margins of the old one and nothing else.
  virtual void remake(int number, bool isJpeg, const std::string& path, double width,
                      double height) = 0;
  virtual void keepOnly(const std::vector<int>& pages) = 0;
  virtual void write(const std::string& path) = 0;
};

}  // namespace client

extern "C" {
// In a library of its own, which is loaded when the first document is met. May throw PdfFault.
ORVO_MODULE_API client::PdfFile* OpenPdfFile(const char* path);
}

#endif  // APPS_ORVO_PDF_PDF_FILE_H
