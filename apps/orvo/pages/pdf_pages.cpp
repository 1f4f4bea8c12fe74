#include "pdf_pages.h"

#include <tiff.h>

#include <filesystem>
#include <set>

#include "beside_toolkit.h"
#include "jpeg_amendment.h"
#include "metadata.h"
#include "module_calls.h"
#include "pdf_file.h"
#include "pictures/codecs.h"
#include "pictures/loaded_library.h"
#include "pictures/loading.h"
#include "pictures/temporary_file.h"

namespace client {
namespace {

// What reads documents; null when it is not there.
const modules::LoadedLibrary* Library() {
  try {
    static const modules::LoadedLibrary library(BesideToolkit("orvo_pages.so").c_str());
    return &library;
  } catch (const modules::ModuleError&) {
    return nullptr;
  }
}

// Throws PdfFault.
std::unique_ptr<PdfFile> OpenDocument(const std::string& path) {
  const auto open = Library()->get<decltype(&OpenPdfFile)>("OpenPdfFile");
  return std::unique_ptr<PdfFile>(open(path.c_str()));
}

// Runs work on a document; its words become the job's hint.
template <class Work>
int Done(Job& job, const Work& work) {
  try {
    work();
    return ORVO_OK;
  } catch (const PdfFault& fault) {
    job.hint = fault.what();
    return ORVO_ERR_NOT_SUPPORTED;
  } catch (const MetadataFault& fault) {
    job.hint = fault.what();
    return ORVO_ERR_FILE_IO;
  } catch (const std::bad_alloc&) {
    return ORVO_ERR_NO_MEMORY;
  } catch (const modules::ModuleError& error) {
    return ResultOf(error.code);
  }
}

// Pictures whose files know nothing of the page are as large as they are shown there.
void SetResolution(DibHandle picture, const PdfPage& page) {
  const orvo::LockedImage image(picture);
  if (!image) return;
  BITMAPINFOHEADER header = image.header();
  header.biXPelsPerMeter = modules::PixelsPerMetreOf(page.xDotsPerInch, orvo::kMetresPerInch);
  header.biYPelsPerMeter = modules::PixelsPerMetreOf(page.yDotsPerInch, orvo::kMetresPerInch);
  if (modules::SwapsSides(page.orientation)) {
    std::swap(header.biXPelsPerMeter, header.biYPelsPerMeter);
  }
  std::memcpy(image.bytes(), &header, sizeof header);
}

class PdfSource : public PageSource {
 public:
  explicit PdfSource(const Job& job)
      : document_(OpenDocument(job.source)),
        neighbour_(job.target.empty() ? std::filesystem::temp_directory_path() / "orvo"
                                      : std::filesystem::path(job.target)) {}

  int pageCount() override { return document_->pageCount(); }
  PdfFile* document() override { return document_.get(); }
  [[nodiscard]] std::uint16_t compression() const override { return COMPRESSION_ADOBE_DEFLATE; }

  int load(int page, Job& job) override {
    return Done(job, [&] {
      const bool isJpeg = take(page, PdfFile::Part::kAll, job);
      const char* const path = job.pageFile.c_str();
      const modules::ReaderHandle reader =
          isJpeg ? modules::OpenJpeg(path, ReportPercent) : modules::OpenTiff(path, ReportPercent);
      modules::Require(reader->goTo(1), kModuleReadFailed);
      job.image = modules::LoadPicture(*reader);
      job.loaded = ShapeOf(job.image.get());
      const PdfPage facts = document_->page(page);
      if (isJpeg) SetResolution(job.image.get(), facts);
      if (facts.hasHiddenText) besides_.insert("the invisible text");
      if (facts.hasAnnotations) besides_.insert("the annotations");
    });
  }

  int hold(int page, Job& job) override {
    return Done(job, [&] { (void)take(page, PdfFile::Part::kBesides, job); });
  }

  std::vector<std::string> besides() override {
    std::vector<std::string> all = document_->besidesPages();
    all.insert(all.end(), besides_.begin(), besides_.end());
    return all;
  }

 private:
  bool take(int page, PdfFile::Part part, Job& job) {
    job.pageFile.clear();
    file_.emplace(neighbour_);
    if (!*file_) throw MetadataFault("while writing " + job.target);
    const std::string path = file_->path().string();
    const bool isJpeg = document_->extract(page, part, path);
    if (isJpeg) AmendJpeg(path, document_->page(page).orientation, document_->profile(page));
    job.pageFile = path;
    return isJpeg;
  }

  std::unique_ptr<PdfFile> document_;
  std::filesystem::path neighbour_;
  std::optional<modules::TemporaryFile> file_;
  std::set<std::string> besides_;
};

}  // namespace

int OpenPdfPages(Job& job, std::unique_ptr<PageSource>& source) {
  std::error_code fault;
  if (!std::filesystem::exists(job.source, fault)) return ORVO_ERR_FILE_NOT_FOUND;
  if (Library() == nullptr) {
    job.hint = "orvo_pages.so, which reads documents";
    return ORVO_ERR_NO_VENDOR;
  }
  const int code = Done(job, [&] { source = std::make_unique<PdfSource>(job); });
  return code == ORVO_ERR_NOT_SUPPORTED ? ORVO_ERR_BAD_FILE : code;
}

int PdfPageCount(const std::string& path) {
  try {
    return Library() == nullptr ? 1 : OpenDocument(path)->pageCount();
  } catch (const std::exception&) {
    return 1;
  }
}

}  // namespace client
