// Where coded pictures wait until the document is written. A document may have any number of pages;
// in memory there is never more than the one at work.
#ifndef MODULES_DOCUMENTS_SPOOL_H
#define MODULES_DOCUMENTS_SPOOL_H

#include <cstdint>
#include <fstream>
#include <qpdf/Pipeline.hh>

#include "pictures/temporary_file.h"

namespace modules {

class Spool {
 public:
  // A stretch of the spool, in bytes.
  struct Range {
    std::uint64_t start = 0;
    std::uint64_t length = 0;
  };

  // Lies in the folder of `neighbour`: a folder for temporary files may be kept in memory.
  explicit Spool(const std::filesystem::path& neighbour);

  [[nodiscard]] const std::filesystem::path& path() const { return file_.path(); }

  // These throw when a disk is full or fails.
  void append(const std::uint8_t* bytes, std::size_t count);
  // What was appended since the spool had `start` bytes; it has reached the system.
  [[nodiscard]] Range rangeSince(std::uint64_t start);
  // Appends a stretch of another file.
  Range take(const std::filesystem::path& file, std::uint64_t start, std::uint64_t bytes);
  // Writes a stretch in one piece: the document's writer keeps a stream whole, and in pieces its
  // buffer would grow by doubling.
  void copy(const Range& range, Pipeline& target);

  [[nodiscard]] std::uint64_t size() const { return size_; }

 private:
  TemporaryFile file_;
  std::fstream stream_;  // stands at the end, but while copy() runs
  std::uint64_t size_ = 0;
};

}  // namespace modules

#endif  // MODULES_DOCUMENTS_SPOOL_H
