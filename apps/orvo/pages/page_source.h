// Files that hold pages, one after the other, whatever their format.
#ifndef APPS_ORVO_PAGES_PAGE_SOURCE_H
#define APPS_ORVO_PAGES_PAGE_SOURCE_H

#include <memory>

#include "operations.h"

namespace client {

class PdfFile;

// Pages count from 1 and are cheapest in rising order. Result codes are the toolkit's; job.hint
// then says more, where there is more to say.
class PageSource {
 public:
  virtual ~PageSource() = default;

  [[nodiscard]] virtual int pageCount() = 0;
  // Whether there may be further pages that a damaged file no longer tells.
  [[nodiscard]] virtual bool breaksOff() { return false; }
  // Loads the page into job.image; job.loaded becomes what its file says of it.
  virtual int load(int page, Job& job) = 0;
  // Makes job.file() one that holds what goes with the page's picture, until the next call.
  virtual int hold(int /*page*/, Job& /*job*/) { return ORVO_OK; }
  // A lossless TIFF compression that is, or stands for, that of the page at hand.
  [[nodiscard]] virtual std::uint16_t compression() const = 0;
  // The document whose pages these are; null for others.
  [[nodiscard]] virtual PdfFile* document() { return nullptr; }
  // What of the pages loaded, and of the file, no other kind of file holds.
  [[nodiscard]] virtual std::vector<std::string> besides() { return {}; }
};

// Of the job's source.
int OpenPages(Job& job, std::unique_ptr<PageSource>& source);

// 1 for files that hold one picture, and for those that cannot be read.
int PageCount(const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_PAGES_PAGE_SOURCE_H
