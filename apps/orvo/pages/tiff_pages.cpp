#include "tiff_pages.h"

#include <string_view>

#include "file_access.h"
#include "file_kind.h"
#include "module_calls.h"
#include "pictures/loading.h"
#include "tiff_assembly.h"

namespace client {

int TiffPageCount(const std::string& path) {
  int pages = 1;
  (void)ModuleCall([&] {
    const modules::ReaderHandle reader = modules::OpenTiff(path.c_str(), nullptr);
    if (reader->goTo(1)) pages = reader->pageCount();
  });
  return pages;
}

TiffSource::TiffSource(std::string path)
    : path_(std::move(path)), reader_(modules::OpenTiff(path_.c_str(), ReportPercent)) {}

bool TiffSource::breaksOff() {
  const int pages = pageCount();
  return ModuleCall([&] { (void)modules::OpenTiff(path_.c_str(), nullptr)->goTo(pages + 1); }) !=
         ORVO_OK;
}

int TiffSource::load(int page, Job& job) {
  return ModuleCall([&] {
    modules::Require(reader_->goTo(page), kModuleReadFailed);
    job.image = modules::LoadPicture(*reader_);
    job.loaded = ShapeOf(job.image.get());
  });
}

std::uint16_t CompressionFor(const std::string& path) {
  std::uint16_t compression = COMPRESSION_ADOBE_DEFLATE;
  if (KindOfFile(path) == "tiff") {
    (void)ModuleCall([&] {
      TiffSource source(path);
      if (source.goTo(1)) compression = source.compression();
    });
  }
  return compression;
}

std::uint16_t TiffSource::compression() const {
  const std::string_view name = reader_->picture().compression;
  if (name == "none") return COMPRESSION_NONE;
  if (name == "LZW") return COMPRESSION_LZW;
  if (name == "PackBits") return COMPRESSION_PACKBITS;
  return COMPRESSION_ADOBE_DEFLATE;
}

int JoinPages(Job& job, int count, const std::vector<int>& taken, const std::string& made,
              const std::string& path) {
  try {
    TiffPages before(job.source);
    TiffPages changed(made);
    TagForm form = before.form();
    form.isBig = form.isBig || changed.form().isBig;
    TiffAssembly result(path, form);
    auto next = taken.begin();
    for (int page = 1; page <= count; ++page) {
      if (next != taken.end() && *next == page) {
        ++next;
        result.add(changed, static_cast<int>(next - taken.begin()));
      } else {
        result.add(before, page);
      }
    }
    result.finish();
    return ORVO_OK;
  } catch (const MetadataFault& fault) {
    job.hint = fault.what();
    return ORVO_ERR_NOT_SUPPORTED;
  }
}

int TiffTarget::add(DibHandle picture, const modules::TiffCoding& coding) {
  return ModuleCall([&] {
    using Form = modules::TiffWriter::Form;
    constexpr std::uint64_t kMostPlainBytes = std::uint64_t{7} << 29;
    if (!writer_) {
      writer_ = std::make_unique<modules::TiffWriter>(
          path_.c_str(), expectedBytes_ > kMostPlainBytes ? Form::kBig : Form::kPlain);
    }
    const modules::LockedDib image(picture);
    modules::Require(image, kModuleNoBitmap);
    writer_->add(image, coding, ReportPercent);
  });
}

int TiffTarget::finish() {
  return ModuleCall([&] { writer_->finish(); });
}

}  // namespace client
