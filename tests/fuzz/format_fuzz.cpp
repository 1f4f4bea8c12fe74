// Made-up bytes as a picture file: described, loaded, shrunk to a thumbnail, put into a document,
// converted, and saved. FUZZ_KIND in the environment is the file's extension, by which the kinds
// without a mark of their own are known.
#include <memory>

#include <orvo/raii.h>

#include "fuzz.h"
#include "pdf_file.h"

namespace {

struct Measures {
  int width = 0, height = 0, depth = 0;
  bool operator==(const Measures&) const = default;
};
Measures MeasuresOf(const orvo::OwnedDib& picture) {
  const orvo::LockedImage image(picture.get());
  fuzz::Require(static_cast<bool>(image), "a malformed picture");
  return {image.layout().width, image.layout().height, image.layout().depth};
}

// What was written can be read.
void ReadBack(const fuzz::File& file, const Measures& written) {
  orvo::OwnedDib picture;
  fuzz::Require(fuzz::Toolkit().LoadFile(file.name(), picture.receive()) == ORVO_OK,
                "the saved file does not load");
  const Measures read = MeasuresOf(picture);
  fuzz::Require(read.width == written.width && read.height == written.height,
                "the saved file has other measures");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Accounts accounts;
  COrvoInstance& toolkit = fuzz::Toolkit();
  const char* const kind = std::getenv("FUZZ_KIND");
  const fuzz::File source(std::string("source.") + (kind == nullptr ? "" : kind), {data, size});

  ORVOIMAGEFILEINFO info{};
  const int told = toolkit.ImageFileInfo(source.name(), &info);
  orvo::OwnedDib thumbnail;
  if (toolkit.CreateThumbnailFromFile(source.name(), thumbnail.receive(), 20, 20) == ORVO_OK) {
    const Measures small = MeasuresOf(thumbnail);
    fuzz::Require(small.width <= 20 && small.height <= 20, "a large thumbnail");
  }
  const fuzz::File document("target.pdf");
  if (toolkit.ConvertFile(source.name(), document.name(), 0, nullptr) == ORVO_OK) {
    const std::unique_ptr<client::PdfFile> book(OpenPdfFile(document.name()));
    fuzz::Require(book->pageCount() > 0, "a document without pages");
    const std::string refusal = book->page(1).refusal;
    fuzz::Require(refusal.empty(), "a page that cannot be read: " + refusal);
  }
  const fuzz::File target("target." + fuzz::Kinds()[size % fuzz::Kinds().size()]);
  (void)toolkit.ConvertFile(source.name(), target.name(), 0, nullptr);

  orvo::OwnedDib picture;
  if (toolkit.LoadFile(source.name(), picture.receive()) != ORVO_OK) return 0;
  const Measures loaded = MeasuresOf(picture);
  fuzz::Require(told == ORVO_OK && Measures{info.width, info.height, info.bitsPerPixel} == loaded,
                "the description is of another picture");
  if (toolkit.SaveFile(picture.get(), target.name(), 0, 0) == ORVO_OK) {
    ReadBack(target, loaded);
  }
  return 0;
}
