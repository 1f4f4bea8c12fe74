// The objects of a PDF document, and its file.
#ifndef MODULES_DOCUMENTS_DOCUMENT_FILE_H
#define MODULES_DOCUMENTS_DOCUMENT_FILE_H

#include <filesystem>
#include <memory>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <string>

#include "common/status.h"
#include "documents/spool.h"

namespace modules {

// A page that is being drawn. Measures in points, 1/72 inch.
struct OpenPage {
  double width = 0;
  double height = 0;
  std::string content;
  QPDFObjectHandle images = QPDFObjectHandle::newDictionary();  // by their names
};

// Throws when the disk or memory gives out.
class DocumentFile {
 public:
  // Coded pictures wait in the folder of `neighbour` until the document is written.
  explicit DocumentFile(const std::filesystem::path& neighbour);

  [[nodiscard]] QPDF& objects() { return pdf_; }
  [[nodiscard]] const std::shared_ptr<Spool>& spool() const { return spool_; }

  // text: in UTF-8.
  void setInfo(const std::string& key, const std::string& text);
  void addPage(const OpenPage& page);
  [[nodiscard]] int pageCount() const { return pageCount_; }
  // The report may stop it.
  void write(const std::filesystem::path& path, Report report = nullptr);

 private:
  std::shared_ptr<Spool> spool_;
  QPDF pdf_;
  int pageCount_ = 0;
};

}  // namespace modules

#endif  // MODULES_DOCUMENTS_DOCUMENT_FILE_H
