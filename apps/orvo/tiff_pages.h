// The pages of TIFF files, by the readers and writers of the file module.
#ifndef APPS_ORVO_TIFF_PAGES_H
#define APPS_ORVO_TIFF_PAGES_H

#include <string>

#include <orvo/dib_block.h>

#include "pictures/codecs.h"
#include "pictures/tiff_writer.h"

namespace client {

// 1 for files that are no TIFF, and for those that cannot be read. A chain of pages that leads back
// to an earlier one ends there.
int PageCount(const std::string& path);

// Whether there may be further pages that a damaged file no longer tells.
bool BreaksOff(const std::string& path, int pages);

// Pages are cheapest in rising order.
class TiffSource {
 public:
  explicit TiffSource(std::string path);

  // The page as LoadFile loads the first one. A result code of the toolkit.
  int load(int page, orvo::OwnedDib& picture);
  // Reads what stands before the page.
  bool goTo(int page) { return reader_->goTo(page); }
  // Of the page at hand: a lossless TIFF compression that is, or stands for, its own.
  [[nodiscard]] std::uint16_t compression() const;

 private:
  std::string path_;
  modules::ReaderHandle reader_;
};

// The compression of a file's first page, as above, or the best without loss for other files.
std::uint16_t CompressionFor(const std::string& path);

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

#endif  // APPS_ORVO_TIFF_PAGES_H
