// A PDF document in the making.
#ifndef MODULES_PDFLIB_DOCUMENT_H
#define MODULES_PDFLIB_DOCUMENT_H

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <string>
#include <string_view>

#include "binding/module_contract.h"
#include "pdflib/picture_coding.h"
#include "pdflib/spool.h"

namespace modules {

// A page that is being drawn. Measures in points.
struct OpenPage {
  double width = 0;
  double height = 0;
  std::string content;
  QPDFObjectHandle images = QPDFObjectHandle::newDictionary();  // by their names
};

}  // namespace modules

// Throws when the disk or memory gives out; the entry points turn that into their answers.
struct PdfDocument {
 public:
  PdfDocument() = default;
  // A document that was not closed leaves no file.
  ~PdfDocument();
  PdfDocument(const PdfDocument&) = delete;
  PdfDocument& operator=(const PdfDocument&) = delete;

  // Makes sure that the target can be written. A new target stands there empty until close().
  void open(const char* path);
  void setInfo(const char* key, const char* value);

  // The picture's number; nothing when the file has fewer pages.
  std::optional<int> openImage(std::string_view type, const char* path, int page);
  // Of the picture as shown; 0 for keys and pictures that are unknown.
  [[nodiscard]] float value(std::string_view key, int image) const;
  void closeImage(int image) { images_.erase(image); }

  // Measures in points, 1/72 inch.
  void beginPage(double width, double height);
  void scale(double x, double y);
  void placeImage(int image, double x, double y, double scale);
  void endPage();

  // From now on close() leaves no file: what it would write lacks a part.
  void spoil() { spoiled_ = true; }
  // A page that fails behind others looks to the caller like the end of the file.
  void spoilUnlessEmpty() { spoiled_ = spoiled_ || pageCount_ > 0; }
  // Writes the document in one step. A spoiled one, and one without pages, leaves no file.
  void close();

 private:
  struct Image {
    modules::Picture picture;
    QPDFObjectHandle object;
  };

  void write(const std::filesystem::path& path);

  std::filesystem::path target_;
  bool targetIsNew_ = false;
  bool spoiled_ = false;
  std::shared_ptr<modules::Spool> spool_;
  QPDF pdf_;
  modules::PictureFiles sources_;
  std::map<int, Image> images_;
  int lastImage_ = -1;
  std::optional<modules::OpenPage> page_;
  int pageCount_ = 0;
};

#endif  // MODULES_PDFLIB_DOCUMENT_H
