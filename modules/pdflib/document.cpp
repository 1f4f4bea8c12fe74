#include "pdflib/document.h"

#include <algorithm>
#include <cmath>
#include <qpdf/QPDFWriter.hh>
#include <stdexcept>

#include "pdflib/image_object.h"
#include "pdflib/page_content.h"
#include "pictures/file_handle.h"
#include "platform/paths.h"

namespace {

namespace fs = std::filesystem;
using Object = QPDFObjectHandle;
using modules::OpenFile;

// Readers take pages of up to this many units; a page beyond has larger units than points.
constexpr double kMostUnits = 14400;
constexpr int kDecimals = 4;  // of a page's measures, which come in single precision

}  // namespace

PdfDocument::~PdfDocument() {
  std::error_code ignored;
  if (targetIsNew_) fs::remove(target_, ignored);
}

void PdfDocument::open(const char* path) {
  if (path == nullptr || spool_) throw std::runtime_error("no target");
  fs::path target = platform::NativePath(path);
  if (target.native().empty() || target.native().size() >= MAX_PATH) {
    throw std::runtime_error("no usable path");
  }
  spool_ = std::make_shared<modules::Spool>(target);
  target_ = std::move(target);
  targetIsNew_ = OpenFile(target_.c_str(), "wbx") != nullptr;
  if (!targetIsNew_ && (!fs::is_regular_file(target_) || !OpenFile(target_.c_str(), "r+b"))) {
    spool_.reset();
    throw std::runtime_error("the target cannot be written");
  }
  pdf_.setSuppressWarnings(true);
  pdf_.emptyPDF();
}

void PdfDocument::setInfo(const char* key, const char* value) {
  if (key == nullptr || value == nullptr || !spool_) return;
  Object trailer = pdf_.getTrailer();
  if (!trailer.hasKey("/Info")) {
    trailer.replaceKey("/Info", pdf_.makeIndirectObject(Object::newDictionary()));
  }
  trailer.getKey("/Info").replaceKey(std::string("/") + key, Object::newUnicodeString(value));
}

std::optional<int> PdfDocument::openImage(std::string_view type, const char* path, int page) {
  if (path == nullptr || !spool_) throw std::runtime_error("no source or no document");
  const auto coded = sources_.take(type, platform::NativePath(path), page, *spool_);
  if (!coded) return std::nullopt;
  images_[++lastImage_] = {coded->picture, modules::MakeImageObject(pdf_, *coded, spool_)};
  return lastImage_;
}

float PdfDocument::value(std::string_view key, int image) const {
  const auto found = images_.find(image);
  if (found == images_.end()) return 0;
  const modules::Shown shown = modules::ShownOf(found->second.picture);
  if (key == "resx") return shown.xResolution;
  if (key == "resy") return shown.yResolution;
  if (key == "imagewidth") return static_cast<float>(shown.width);
  if (key == "imageheight") return static_cast<float>(shown.height);
  return 0;
}

void PdfDocument::beginPage(double width, double height) {
  endPage();
  page_.emplace();
  page_->width = width;
  page_->height = height;
}

void PdfDocument::scale(double x, double y) {
  if (page_) page_->content += modules::ScaleContent(x, y);
}

void PdfDocument::placeImage(int image, double x, double y, double scale) {
  const auto found = images_.find(image);
  if (!page_ || found == images_.end()) throw std::runtime_error("no page or no image");
  const std::string name = "/Im" + std::to_string(image);
  page_->images.replaceKey(name, found->second.object);
  page_->content += modules::PlaceContent(name, found->second.picture, x, y, scale);
}

void PdfDocument::endPage() {
  if (!page_ || !spool_) return;
  const double longer = std::max(page_->width, page_->height);
  if (!std::isfinite(longer) || page_->width <= 0 || page_->height <= 0) {
    throw std::runtime_error("a page has no size");
  }
  const double unit = std::max(1.0, std::ceil(longer / kMostUnits));
  const auto measure = [unit](double points) { return Object::newReal(points / unit, kDecimals); };
  Object resources = Object::newDictionary();
  resources.replaceKey("/XObject", page_->images);
  Object page = Object::newDictionary();
  page.replaceKey("/Type", Object::newName("/Page"));
  page.replaceKey("/MediaBox", Object::newArray(std::vector<Object>{
                                   Object::newInteger(0), Object::newInteger(0),
                                   measure(page_->width), measure(page_->height)}));
  if (unit > 1) {
    page.replaceKey("/UserUnit", Object::newInteger(static_cast<long long>(unit)));
    page_->content.insert(0, modules::ScaleContent(1 / unit, 1 / unit));
  }
  page.replaceKey("/Resources", resources);
  page.replaceKey("/Contents", Object::newStream(&pdf_, page_->content));
  pdf_.addPage(pdf_.makeIndirectObject(page), false);
  ++pageCount_;
  page_.reset();
}

void PdfDocument::close() {
  if (!spool_) return;
  endPage();
  if (spoiled_ || pageCount_ == 0) return;
  modules::TemporaryFile whole(target_);
  write(whole.path());
  if (!whole.moveTo(target_)) throw std::runtime_error("the target cannot be replaced");
  targetIsNew_ = false;
  spool_.reset();
}

void PdfDocument::write(const fs::path& path) {
  modules::FileHandle file = OpenFile(path.c_str(), "wb");
  if (!file) throw std::runtime_error("the target cannot be written");
  QPDFWriter writer(pdf_);
  writer.setOutputFile(path.c_str(), file.get(), false);
  writer.setMinimumPDFVersion("1.6");  // which brought larger units
  writer.setStreamDataMode(qpdf_s_preserve);
  writer.write();
  if (!modules::CloseWritten(std::move(file))) throw std::runtime_error("the disk is full");
}
