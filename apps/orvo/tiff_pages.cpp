#include "tiff_pages.h"

#include <string_view>

#include "file_kind.h"
#include "module_calls.h"
#include "pictures/loading.h"

namespace client {
int PageCount(const std::string& path) {
  if (KindOfFile(path) != "tiff") return 1;
  int pages = 1;
  (void)ModuleCall([&] {
    const modules::ReaderHandle reader = modules::OpenTiff(path.c_str(), nullptr);
    if (reader->goTo(1)) pages = reader->pageCount();
  });
  return pages;
}

bool BreaksOff(const std::string& path, int pages) {
  return ModuleCall([&] { (void)modules::OpenTiff(path.c_str(), nullptr)->goTo(pages + 1); }) !=
         ORVO_OK;
}

TiffSource::TiffSource(std::string path)
    : path_(std::move(path)), reader_(modules::OpenTiff(path_.c_str(), ReportPercent)) {}

int TiffSource::load(int page, orvo::OwnedDib& picture) {
  return ModuleCall([&] {
    modules::Require(reader_->goTo(page), kModuleReadFailed);
    picture = modules::LoadPicture(*reader_);
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
