#include "document_target.h"

#include <algorithm>
#include <filesystem>

#include "beside_toolkit.h"
#include "encoding.h"
#include "file_kind.h"
#include "messages.h"
#include "metadata.h"
#include "module_calls.h"
#include "pictures/loaded_library.h"
#include "sample_depth.h"

namespace client {
namespace {

// Of the files that go into documents without a bitmap.
constexpr std::string_view kJpeg = "jpeg";
constexpr std::string_view kKinds[] = {kJpeg, "png", "tiff", "gif"};

// Null when there is no such library, or no file can be made beside `path`.
std::unique_ptr<modules::DocumentMaker> NewMaker(const std::string& path, bool& isMissing) {
  modules::DocumentMaker* maker = nullptr;
  const int code = modules::Guarded([&] {
    static const modules::LoadedLibrary library(BesideToolkit("orvo_documents.so").c_str());
    maker =
        library.get<decltype(&NewDocumentMaker)>("NewDocumentMaker")(path.c_str(), ReportPercent);
    return kModuleSuccess;
  });
  isMissing = code != kModuleSuccess;
  return std::unique_ptr<modules::DocumentMaker>(maker);
}

RGBQUAD GroundOf(const Parameters& parameters) {
  if (!parameters.has("background")) return {255, 255, 255, 0};
  const auto tone = [&](std::size_t index) {
    return static_cast<std::uint8_t>(parameters.whole("background", index));
  };
  return {tone(2), tone(1), tone(0), 0};
}

modules::PageExtras ExtrasOf(const Job& job, const DocumentMetadata& metadata) {
  return {.profile = TextOf(metadata.profile),
          .profileComponents = metadata.components,
          .xmp = metadata.xmp,
          .ground = GroundOf(job.parameters)};
}

}  // namespace

bool IsDocument(const std::string& path) {
  return KindOfName(path) == "pdf";
}

std::string TitleOf(const std::string& path) {
  return std::filesystem::path(path).stem().string();
}

DocumentTarget::DocumentTarget(std::string path, std::string title, std::string author)
    : path_(std::move(path)), title_(std::move(title)), author_(std::move(author)) {}

int DocumentTarget::begin() {
  if (maker_) return ORVO_OK;
  bool isMissing = false;
  maker_ = NewMaker(path_, isMissing);
  if (!maker_) return isMissing ? ORVO_ERR_NO_VENDOR : ORVO_ERR_FILE_OPEN;
  int code = maker_->setInfo("Creator", "orvo");
  if (code == kModuleSuccess) code = maker_->setInfo("Title", title_.c_str());
  if (code == kModuleSuccess && !author_.empty()) code = maker_->setInfo("Author", author_.c_str());
  return ResultOf(code);
}

int DocumentTarget::addPage(Job& job, int page) {
  if (const int code = begin(); code != ORVO_OK) return code;
  job.page = page;
  const std::string kind = KindOfFile(job.file());
  const bool leavesOut = kind == kJpeg && job.parameters.has("strip");
  if (leavesOut || std::ranges::find(kKinds, kind) == std::end(kKinds)) {
    return ORVO_ERR_NOT_SUPPORTED;
  }
  DocumentMetadata metadata =
      TakeForDocument(RequestFor(job, {job.page, {}, {}}), PictureIs::kAsItWas);
  modules::PageFacts facts;
  const int code =
      maker_->addFile(kind, job.file().c_str(), job.pageInFile(), ExtrasOf(job, metadata), facts);
  if (code != kModuleSuccess) return ResultOf(code);
  // A JPEG file's data hold all that there is beside its picture.
  if (!(facts.isFromFile && kind == kJpeg)) note(metadata, facts);
  return ORVO_OK;
}

int DocumentTarget::addPicture(Job& job) {
  if (const int code = begin(); code != ORVO_OK) return code;
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  DocumentMetadata metadata = TakeForDocument(
      RequestFor(job, {job.page, job.loaded.value_or(*shape), *shape}), PictureIs::kUpright);
  modules::PageFacts facts;
  const int code = maker_->addBitmap(job.image.get(), ExtrasOf(job, metadata), facts);
  if (code != kModuleSuccess) return ResultOf(code);
  if (const int bits = SampleBits(job.file(), job.pageInFile(), job.placeInFile()); bits > 8)
    facts.narrowedFrom = bits;
  note(metadata, facts);
  return ORVO_OK;
}

void DocumentTarget::note(DocumentMetadata& metadata, const modules::PageFacts& facts) {
  metadata.fitTo(facts.components);
  losses_.insert(metadata.lost.begin(), metadata.lost.end());
  laidOnGround_ = laidOnGround_ || facts.showsGround;
  narrowedFrom_ = std::max(narrowedFrom_, facts.narrowedFrom);
}

void DocumentTarget::tellLosses(Job& job) {
  if (laidOnGround_ && !job.parameters.has("background")) {
    TellWarning(job.source, "its opacity is lost, it is laid on white");
  }
  if (narrowedFrom_ > 0 && !job.parameters.has("allow-loss")) {
    TellWarning(job.source,
                "its samples of " + std::to_string(narrowedFrom_) + " bits are rounded to 8");
  }
  TellLosses(job, {losses_.begin(), losses_.end()});
  losses_.clear();
  laidOnGround_ = false;
  narrowedFrom_ = 0;
}

int DocumentTarget::finish() {
  return maker_ ? ResultOf(maker_->write(path_.c_str())) : ORVO_ERR_FAILURE;
}

int DocumentTarget::addFirstPage(Job& job) {
  int code = addPage(job, 1);
  if (code == ORVO_OK || code == ORVO_ERR_CANCELLED || code == ORVO_ERR_NO_VENDOR) return code;
  code = job.toolkit.LoadFile(job.source.c_str(), job.image.receive());
  job.loaded = ShapeOf(job.image.get());
  return code == ORVO_OK ? addPicture(job) : code;
}

int SaveAsDocument(Job& job, const std::string& path) {
  DocumentTarget document(path, TitleOf(job.target));
  const bool isAsItWas = job.before && AreTheSame(job.before.get(), job.image.get());
  int code = isAsItWas ? document.addPage(job, job.page) : ORVO_ERR_NOT_SUPPORTED;
  if (code != ORVO_OK && code != ORVO_ERR_CANCELLED) code = document.addPicture(job);
  document.tellLosses(job);
  return code == ORVO_OK ? document.finish() : code;
}

}  // namespace client
