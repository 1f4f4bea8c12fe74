#include "tiff_pages.h"

#include <string_view>

#include <orvo/result_codes.h>

#include "file_kind.h"
#include "pictures/loading.h"
#include "progress.h"

namespace client {
namespace {

bool Go(int percent) {
  return ReportProgress(percent, nullptr) != ORVO_ERR_CANCELLED;
}

// Runs what may throw a module's code; the toolkit's code for it.
template <class Work>
int Done(const Work& work) {
  const int code = modules::Guarded([&] {
    work();
    return kModuleSuccess;
  });
  switch (code) {
    case kModuleSuccess:
      return ORVO_OK;
    case kModuleAborted:
      return ORVO_ERR_CANCELLED;
    case kModuleNoMemory:
      return ORVO_ERR_NO_MEMORY;
    default:
      return ORVO_ERR_FILE_IO;
  }
}

}  // namespace

int PageCount(const std::string& path) {
  if (KindOfFile(path) != "tiff") return 1;
  int pages = 1;
  (void)Done([&] {
    const modules::ReaderHandle reader = modules::OpenTiff(path.c_str(), nullptr);
    if (reader->goTo(1)) pages = reader->pageCount();
  });
  return pages;
}

bool BreaksOff(const std::string& path, int pages) {
  return Done([&] { (void)modules::OpenTiff(path.c_str(), nullptr)->goTo(pages + 1); }) != ORVO_OK;
}

TiffSource::TiffSource(std::string path)
    : path_(std::move(path)), reader_(modules::OpenTiff(path_.c_str(), Go)) {}

int TiffSource::load(int page, orvo::OwnedDib& picture) {
  return Done([&] {
    modules::Require(reader_->goTo(page), kModuleReadFailed);
    picture = modules::LoadPicture(*reader_);
  });
}

std::uint16_t CompressionFor(const std::string& path) {
  std::uint16_t compression = COMPRESSION_ADOBE_DEFLATE;
  if (KindOfFile(path) == "tiff") {
    (void)Done([&] {
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

int TiffTarget::add(DibHandle picture, std::uint16_t compression) {
  return Done([&] {
    using Form = modules::TiffWriter::Form;
    constexpr std::uint64_t kMostPlainBytes = std::uint64_t{7} << 29;
    if (!writer_) {
      writer_ = std::make_unique<modules::TiffWriter>(
          path_.c_str(), expectedBytes_ > kMostPlainBytes ? Form::kBig : Form::kPlain);
    }
    const modules::LockedDib image(picture);
    modules::Require(image, kModuleNoBitmap);
    writer_->add(image, compression, Go);
  });
}

int TiffTarget::finish() {
  return Done([&] { writer_->finish(); });
}

}  // namespace client
