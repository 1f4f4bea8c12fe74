// The pages of TIFF files, by the readers and writers of the file module.
#ifndef APPS_ORVO_PAGES_TIFF_PAGES_H
#define APPS_ORVO_PAGES_TIFF_PAGES_H

#include <string>

#include "page_source.h"
#include "pictures/codecs.h"
#include "pictures/tiff_writer.h"

namespace client {

// 1 for files that cannot be read. A chain of pages that leads back to an earlier one ends there.
int TiffPageCount(const std::string& path);

class TiffSource : public PageSource {
 public:
  explicit TiffSource(std::string path);

  int pageCount() override { return TiffPageCount(path_); }
  bool breaksOff() override;
  // As LoadFile loads the first page.
  int load(int page, Job& job) override;
  // Reads what stands before the page.
  bool goTo(int page) { return reader_->goTo(page); }
  [[nodiscard]] std::uint16_t compression() const override;

 private:
  std::string path_;
  modules::ReaderHandle reader_;
};

// The compression of a file's first page, as above, or the best without loss for other files.
std::uint16_t CompressionFor(const std::string& path);

// Makes `path` of the job's source, a TIFF file of `count` pages: those of `made`, another such
// file, take the places of `taken`, rising. All others are copied as they are, tags and coded data.
int JoinPages(Job& job, int count, const std::vector<int>& taken, const std::string& made,
              const std::string& path);

// A file that is made page by page; it is whole once finished.
class TiffTarget {
 public:
  // expectedBytes: of the file, roughly; large ones have offsets of 64 bits.
  TiffTarget(std::string path, std::uint64_t expectedBytes)
      : path_(std::move(path)), expectedBytes_(expectedBytes) {}

  // Result codes of the toolkit.
  int add(DibHandle picture, const modules::TiffCoding& coding);
  int finish();

 private:
  std::string path_;
  std::uint64_t expectedBytes_;
  std::unique_ptr<modules::TiffWriter> writer_;
};

}  // namespace client

#endif  // APPS_ORVO_PAGES_TIFF_PAGES_H
