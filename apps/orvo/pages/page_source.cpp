#include "page_source.h"

#include "file_kind.h"
#include "pdf_pages.h"
#include "tiff_pages.h"

namespace client {

int OpenPages(Job& job, std::unique_ptr<PageSource>& source) {
  if (KindOfFile(job.source) == "pdf") return OpenPdfPages(job, source);
  source = std::make_unique<TiffSource>(job.source);
  return ORVO_OK;
}

int PageCount(const std::string& path) {
  const std::string kind = KindOfFile(path);
  if (kind == "pdf") return PdfPageCount(path);
  return kind == "tiff" ? TiffPageCount(path) : 1;
}

}  // namespace client
