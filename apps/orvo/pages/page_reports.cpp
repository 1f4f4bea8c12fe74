#include "page_reports.h"

#include <algorithm>
#include <cmath>

#include "module_calls.h"
#include "page_source.h"
#include "pdf_file.h"
#include "picture.h"
#include "pictures/file_handle.h"
#include "pictures/formats.h"
#include "pictures/loading.h"

namespace client {
namespace {

// The toolkit takes the densities of such a file for multiples of 72 dots per inch when it loads.
void TakeDensitiesWithoutUnit(const std::string& path, LTFILEINFO& info) {
  constexpr std::size_t kBeginAt = 6;  // behind two marks and a length
  constexpr std::uint8_t kBegin[] = {'J', 'F', 'I', 'F', 0, 1, 1, 0};  // version, no unit
  if (!path.ends_with(".jpg") && !path.ends_with(".jpeg")) return;
  std::uint8_t head[kBeginAt + sizeof kBegin + 4] = {};
  const modules::FileHandle file = modules::OpenToRead(path.c_str());
  if (std::fread(head, 1, sizeof head, file.get()) != sizeof head ||
      !std::equal(std::begin(kBegin), std::end(kBegin), &head[kBeginAt])) {
    return;
  }
  const std::uint8_t* const densities = &head[kBeginAt + sizeof kBegin];
  info.xResolution = 72 * (densities[0] << 8 | densities[1]);
  info.yResolution = 72 * (densities[2] << 8 | densities[3]);
}

}  // namespace

int DescribePicture(const std::string& path, Report& picture) {
  return ModuleCall([&] {
    const modules::ReaderHandle reader = modules::FormatOfFile(path).open(path.c_str(), nullptr);
    modules::Require(reader->goTo(1), kModuleReadFailed);
    LTFILEINFO info{};
    modules::DescribePicture(reader->picture(), info);
    TakeDensitiesWithoutUnit(path, info);
    picture = Described({.width = info.width,
                         .height = info.height,
                         .bits = info.bitsPerPixel,
                         .xDotsPerInch = info.xResolution,
                         .yDotsPerInch = info.yResolution,
                         .colors = ColorsOf(info.bitsPerPixel, reader->picture().palette)});
  });
}

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
