// A PDF document in the making, as the entry points make it.
#ifndef MODULES_PDFLIB_DOCUMENT_H
#define MODULES_PDFLIB_DOCUMENT_H

#include <map>
#include <optional>
#include <string_view>

#include "binding/module_contract.h"
#include "documents/document_file.h"
#include "documents/picture_coding.h"

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
  void spoilUnlessEmpty() { spoiled_ = spoiled_ || (file_ && file_->pageCount() > 0); }
  // Writes the document in one step. A spoiled one, and one without pages, leaves no file.
  void close();

 private:
  struct Image {
    modules::Picture picture;
    QPDFObjectHandle object;
  };

  std::filesystem::path target_;
  bool targetIsNew_ = false;
  bool spoiled_ = false;
  std::optional<modules::DocumentFile> file_;
  modules::PictureFiles sources_;
  std::map<int, Image> images_;
  int lastImage_ = -1;
  std::optional<modules::OpenPage> page_;
};

#endif  // MODULES_PDFLIB_DOCUMENT_H
