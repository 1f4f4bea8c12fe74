// TIFF files put together of pages that other TIFF files hold, as they are: their data byte for
// byte and all of their tags.
#ifndef APPS_ORVO_METADATA_TIFF_ASSEMBLY_H
#define APPS_ORVO_METADATA_TIFF_ASSEMBLY_H

#include <fstream>
#include <string>

#include "tag_directory.h"

namespace client {

// A file whose pages are taken one after the other, best in rising order.
class TiffPages {
 public:
  explicit TiffPages(const std::string& path);

  [[nodiscard]] TagForm form() const { return form_; }
  [[nodiscard]] std::uint64_t bytes() const { return bytes_; }
  std::istream& file() { return file_; }
  // Where the directory of a page lies.
  std::uint64_t find(int page);

 private:
  std::ifstream file_;
  TagForm form_;
  std::uint64_t bytes_;
  PagePlace place_;
};

// All but the destructor may throw MetadataFault.
class TiffAssembly {
 public:
  // Samples of more than 8 bits lie in the byte order of their file: pages that have them need one
  // of the same.
  TiffAssembly(const std::string& path, TagForm form);

  void add(TiffPages& source, int page);
  void finish();

 private:
  struct Placed {
    std::uint64_t at;      // of a directory
    std::uint64_t nextAt;  // where it tells the position of the following one
  };
  Placed copyDirectory(TiffPages& source, std::uint64_t from, int depth);
  Tag copyData(TiffPages& source, const Tag& offsets, const Tag& counts);
  Tag copyLower(TiffPages& source, const Tag& offsets, int depth);
  std::uint64_t copyBytes(TiffPages& source, std::uint64_t from, std::uint64_t count);
  [[nodiscard]] Tag offsetTag(const std::vector<std::uint64_t>& offsets) const;
  std::uint64_t append(View bytes);
  void write(std::uint64_t at, View bytes);

  std::ofstream file_;
  TagForm form_;
  std::uint64_t end_ = 0;
  std::uint64_t nextAt_ = 0;  // where the position of the following page is told
};

}  // namespace client

#endif  // APPS_ORVO_METADATA_TIFF_ASSEMBLY_H
