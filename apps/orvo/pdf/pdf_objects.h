// A document as its objects, and the page that was looked at last.
#ifndef APPS_ORVO_PDF_PDF_OBJECTS_H
#define APPS_ORVO_PDF_PDF_OBJECTS_H

#include <memory>
#include <new>
#include <qpdf/QPDF.hh>

#include "common/guard.h"
#include "documents/spool.h"
#include "image_facts.h"
#include "page_scan.h"
#include "pictures/picture.h"

namespace client {

class PdfObjects : public PdfFile {
 public:
  explicit PdfObjects(const char* path);

  [[nodiscard]] int pageCount() const override { return static_cast<int>(pages_.size()); }
  PdfPage page(int number) override;
  std::vector<std::string> besidesPages() override;
  bool isSigned() override;
  bool extract(int number, Part part, const std::string& path) override;
  std::string profile(int number) override;
  void exchange(int number, bool isJpeg, const std::string& path) override;
  void remake(int number, bool isJpeg, const std::string& path, double width,
              double height) override;
  void keepOnly(const std::vector<int>& pages) override;
  void write(const std::string& path) override;

 private:
  struct Look {
    int number = 0;
    PdfPage page;
    DrawnPicture drawn;
    ImageFacts facts;
  };

  void lookAt(int number);
  // The same, of a page whose picture can be taken out.
  void require(int number);
  // A file's picture as an object of the document, in the colours of the page looked at.
  QPDFObjectHandle take(bool isJpeg, const std::string& path, modules::Picture& picture);

  QPDF pdf_;
  std::vector<QPDFObjectHandle> pages_;
  std::shared_ptr<modules::Spool> spool_;  // of pictures in the place of others
  Look look_;
};

// Runs work on a document; what the libraries throw becomes a PdfFault.
template <class Work>
auto InWords(const Work& work) {
  try {
    return work();
  } catch (const PdfFault&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const QPDFExc& fault) {
    throw PdfFault(fault.getErrorCode() == qpdf_e_password ? "it opens with a password only"
                                                           : "the document is damaged");
  } catch (const std::exception&) {
    throw PdfFault("the document is damaged");
  } catch (const modules::ModuleError& error) {
    if (error.code == kModuleNoMemory) throw std::bad_alloc();
    throw PdfFault("its picture could not be read");
  }
}

}  // namespace client

#endif  // APPS_ORVO_PDF_PDF_OBJECTS_H
