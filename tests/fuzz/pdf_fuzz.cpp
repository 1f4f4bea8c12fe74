// Made-up bytes as a document: its pages described and taken out, put back, and written anew.
#include <memory>
#include <numeric>

#include "fuzz.h"
#include "pdf_file.h"

namespace {

constexpr int kMostPages = 3;

void TakeApart(client::PdfFile& book, int page) {
  const client::PdfPage facts = book.page(page);
  if (!facts.refusal.empty()) return;
  (void)book.profile(page);
  const fuzz::File picture("picture");
  const bool isJpeg = book.extract(page, client::PdfFile::Part::kAll, picture.path());
  ORVOIMAGEFILEINFO info{};
  const int code = fuzz::Toolkit().ImageFileInfo(picture.name(), &info);
  fuzz::Require(code == ORVO_OK || code == ORVO_ERR_NO_MEMORY, "a page's file is none");
  if (page % 2 == 0) {
    book.remake(page, isJpeg, picture.path(), 100, 50);
  } else {
    book.exchange(page, isJpeg, picture.path());
  }
}

// Whether that went well to its end.
bool WriteAnew(const fuzz::File& source, const fuzz::File& target) {
  const std::unique_ptr<client::PdfFile> book(OpenPdfFile(source.name()));
  (void)book->besidesPages();
  (void)book->isSigned();
  const int count = std::min(book->pageCount(), kMostPages);
  for (int page = 1; page <= count; ++page) {
    try {
      TakeApart(*book, page);
    } catch (const client::PdfFault&) {
      // One page the less.
    }
  }
  std::vector<int> pages(static_cast<std::size_t>(count));
  std::iota(pages.begin(), pages.end(), 1);
  book->keepOnly(pages);
  book->write(target.path());
  return count > 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Accounts accounts;
  const fuzz::File source("source.pdf", {data, size});
  const fuzz::File target("target.pdf");
  try {
    if (!WriteAnew(source, target)) return 0;
  } catch (const client::PdfFault&) {
    return 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
  const std::unique_ptr<client::PdfFile> anew(OpenPdfFile(target.name()));
  fuzz::Require(anew->pageCount() > 0, "the document is no longer one");
  return 0;
}
