#include "documents/document_file.h"

#include <algorithm>
#include <cmath>
#include <qpdf/QPDFWriter.hh>
#include <stdexcept>

#include "documents/page_content.h"
#include "pictures/file_handle.h"

namespace modules {
namespace {

using Object = QPDFObjectHandle;

// Readers take pages of up to this many units; a page beyond has larger units than points.
constexpr double kMostUnits = 14400;
constexpr int kDecimals = 4;  // of a page's measures, which come in single precision

class Listener : public QPDFWriter::ProgressReporter {
 public:
  explicit Listener(Report report) : report_(report) {}
  void reportProgress(int percent) override { Require(report_(percent), kModuleAborted); }

 private:
  Report report_;
};

}  // namespace

DocumentFile::DocumentFile(const std::filesystem::path& neighbour)
    : spool_(std::make_shared<Spool>(neighbour)) {
  pdf_.setSuppressWarnings(true);
  pdf_.emptyPDF();
}

void DocumentFile::setInfo(const std::string& key, const std::string& text) {
  Object trailer = pdf_.getTrailer();
  if (!trailer.hasKey("/Info")) {
    trailer.replaceKey("/Info", pdf_.makeIndirectObject(Object::newDictionary()));
  }
  trailer.getKey("/Info").replaceKey("/" + key, Object::newUnicodeString(text));
}

void DocumentFile::addPage(const OpenPage& page) {
  const double longer = std::max(page.width, page.height);
  if (!std::isfinite(longer) || page.width <= 0 || page.height <= 0) {
    throw std::runtime_error("a page has no size");
  }
  const double unit = std::max(1.0, std::ceil(longer / kMostUnits));
  const auto measure = [unit](double points) { return Object::newReal(points / unit, kDecimals); };
  Object resources = Object::newDictionary();
  resources.replaceKey("/XObject", page.images);
  Object object = Object::newDictionary();
  object.replaceKey("/Type", Object::newName("/Page"));
  object.replaceKey("/MediaBox", Object::newArray(std::vector<Object>{
                                     Object::newInteger(0), Object::newInteger(0),
                                     measure(page.width), measure(page.height)}));
  std::string content = page.content;
  if (unit > 1) {
    object.replaceKey("/UserUnit", Object::newInteger(static_cast<long long>(unit)));
    content.insert(0, ScaleContent(1 / unit, 1 / unit));
  }
  object.replaceKey("/Resources", resources);
  object.replaceKey("/Contents", Object::newStream(&pdf_, content));
  pdf_.addPage(pdf_.makeIndirectObject(object), false);
  ++pageCount_;
}

void DocumentFile::write(const std::filesystem::path& path, Report report) {
  // What libqpdf cannot take in, for want of memory too, it passes over with a warning.
  if (pdf_.anyWarnings()) throw std::runtime_error("the document lacks a part");
  FileHandle file = OpenFile(path.c_str(), "wb");
  if (!file) throw std::runtime_error("the target cannot be written");
  QPDFWriter writer(pdf_);
  writer.setOutputFile(path.c_str(), file.get(), false);
  writer.setMinimumPDFVersion("1.6");  // which brought larger units
  writer.setStreamDataMode(qpdf_s_preserve);
  if (report != nullptr) writer.registerProgressReporter(std::make_shared<Listener>(report));
  writer.write();
  if (!CloseWritten(std::move(file))) throw std::runtime_error("the disk is full");
}

}  // namespace modules
