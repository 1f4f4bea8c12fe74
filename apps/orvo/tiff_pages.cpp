#include "tiff_pages.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <optional>

namespace client {
namespace {

constexpr int kMostPages = 65535;
constexpr std::uint64_t kTiff = 42;     // the number that tells a TIFF file
constexpr std::uint64_t kBigTiff = 43;  // the same for files with 64-bit offsets

// Reads the unsigned numbers of a TIFF file, in the byte order that the file has.
class Numbers {
 public:
  explicit Numbers(const std::string& path) : file_(path, std::ios::binary) {}

  // Nothing behind the end of the file.
  std::optional<std::uint64_t> at(std::uint64_t offset, unsigned bytes) {
    std::array<char, 8> raw{};
    file_.clear();
    if (!file_.seekg(static_cast<std::streamoff>(offset)) || !file_.read(raw.data(), bytes)) {
      return std::nullopt;
    }
    if (!bigEndian_) std::reverse(raw.begin(), raw.begin() + bytes);
    std::uint64_t number = 0;
    for (unsigned i = 0; i < bytes; ++i) {
      number = number << 8 | static_cast<unsigned char>(raw.at(i));
    }
    return number;
  }

  // False when the file does not begin as a TIFF file does, with its byte order.
  bool readByteOrder() {
    std::array<char, 2> mark{};
    file_.read(mark.data(), mark.size());
    bigEndian_ = mark[0] == 'M';
    return file_ && mark[0] == mark[1] && (bigEndian_ || mark[0] == 'I');
  }

 private:
  std::ifstream file_;
  bool bigEndian_ = false;
};

// Where a page's directory keeps things, by the kind of file.
struct DirectoryForm {
  std::uint64_t firstAt;  // where the file tells its first directory
  unsigned offsetBytes;   // of an offset into the file
  unsigned countBytes;    // of the number of entries, at the start
  std::uint64_t entryBytes;
};
constexpr DirectoryForm kTiffForm{4, 4, 2, 12};
constexpr DirectoryForm kBigTiffForm{8, 8, 8, 20};
constexpr std::uint64_t kMostEntries = 65535;

}  // namespace

int PageCount(const std::string& path) {
  Numbers file(path);
  if (!file.readByteOrder()) return 1;
  const std::uint64_t kind = file.at(2, 2).value_or(0);
  if (kind != kTiff && kind != kBigTiff) return 1;
  const DirectoryForm& form = kind == kTiff ? kTiffForm : kBigTiffForm;

  int pages = 0;
  auto directory = file.at(form.firstAt, form.offsetBytes);
  while (directory && *directory != 0 && pages < kMostPages) {
    const auto entries = file.at(*directory, form.countBytes);
    if (!entries || *entries > kMostEntries) break;
    ++pages;
    const std::uint64_t next = *directory + form.countBytes + *entries * form.entryBytes;
    directory = file.at(next, form.offsetBytes);
  }
  return std::max(pages, 1);
}

}  // namespace client
