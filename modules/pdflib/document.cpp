#include "pdflib/document.h"

#include <stdexcept>

#include "documents/image_object.h"
#include "documents/page_content.h"
#include "pictures/file_handle.h"
#include "platform/paths.h"

namespace fs = std::filesystem;
using modules::OpenFile;

PdfDocument::~PdfDocument() {
  std::error_code ignored;
  if (targetIsNew_) fs::remove(target_, ignored);
}

void PdfDocument::open(const char* path) {
  if (path == nullptr || file_) throw std::runtime_error("no target");
  fs::path target = platform::NativePath(path);
  if (target.native().empty() || target.native().size() >= MAX_PATH) {
    throw std::runtime_error("no usable path");
  }
  file_.emplace(target);
  target_ = std::move(target);
  targetIsNew_ = OpenFile(target_.c_str(), "wbx") != nullptr;
  if (!targetIsNew_ && (!fs::is_regular_file(target_) || !OpenFile(target_.c_str(), "r+b"))) {
    file_.reset();
    throw std::runtime_error("the target cannot be written");
  }
}

void PdfDocument::setInfo(const char* key, const char* value) {
  if (key == nullptr || value == nullptr || !file_) return;
  file_->setInfo(key, value);
}

std::optional<int> PdfDocument::openImage(std::string_view type, const char* path, int page) {
  if (path == nullptr || !file_) throw std::runtime_error("no source or no document");
  const auto coded = sources_.take(type, platform::NativePath(path), page, *file_->spool());
  if (!coded) return std::nullopt;
  images_[++lastImage_] = {coded->picture,
                           modules::MakeImageObject(file_->objects(), *coded, file_->spool())};
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
  if (!page_ || !file_) return;
  file_->addPage(*page_);
  page_.reset();
}

void PdfDocument::close() {
  if (!file_) return;
  endPage();
  if (spoiled_ || file_->pageCount() == 0) return;
  modules::TemporaryFile whole(target_);
  file_->write(whole.path());
  if (!whole.moveTo(target_)) throw std::runtime_error("the target cannot be replaced");
  targetIsNew_ = false;
  file_.reset();
}
