#include "page_reports.h"

#include <cmath>

#include "page_source.h"
#include "pdf_file.h"
#include "pictures/codecs.h"
#include "pictures/loading.h"

namespace client {
Report::List DescribedTiffPages(const std::string& path) {
  Report::List pages;
  const int count = PageCount(path);
  const modules::ReaderHandle reader = modules::OpenTiff(path.c_str(), nullptr);
  for (int page = 1; page <= count; ++page) {
    Report entry = Report::Fields{{"page", page}};
    const int code = modules::Guarded([&] {
      modules::Require(reader->goTo(page), kModuleReadFailed);
      LTFILEINFO info{};
      modules::DescribePicture(reader->picture(), info);
      entry.set("width", info.width);
      entry.set("height", info.height);
      entry.set("bits", info.bitsPerPixel);
      entry.set("x_dpi", info.xResolution);
      entry.set("y_dpi", info.yResolution);
      entry.set("coding", std::string_view(info.compression));
      return kModuleSuccess;
    });
    if (code != kModuleSuccess) entry.set("refused", "it is of a kind that is not read");
    pages.push_back(std::move(entry));
  }
  return pages;
}

int DescribePdfPages(Job& job, Report::List& pages) {
  std::unique_ptr<PageSource> source;
  if (const int code = OpenPages(job, source); code != ORVO_OK) return code;
  const int count = source->pageCount();
  for (int number = 1; number <= count; ++number) {
    const PdfPage page = source->document()->page(number);
    const bool turned = modules::SwapsSides(page.orientation);
    Report entry = Report::Fields{{"page", number}};
    if (!page.refusal.empty()) entry.set("refused", page.refusal);
    if (page.width > 0 && page.height > 0) {
      entry.set("width", turned ? page.height : page.width);
      entry.set("height", turned ? page.width : page.height);
      entry.set("bits", page.bits);
      entry.set("colors", page.colors);
      entry.set("coding", page.coding);
    }
    if (page.refusal.empty()) {
      entry.set("x_dpi", std::lround(turned ? page.yDotsPerInch : page.xDotsPerInch));
      entry.set("y_dpi", std::lround(turned ? page.xDotsPerInch : page.yDotsPerInch));
    }
    pages.push_back(std::move(entry));
  }
  return ORVO_OK;
}

}  // namespace client
