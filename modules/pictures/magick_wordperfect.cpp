#include "pictures/magick_kinds.h"

namespace modules {
namespace {

using Bytes = MagickKind::Bytes;

// Where the next record begins, and the numbers before its data. What lies beyond the end reads as
// 0.
class Records {
 public:
  explicit Records(Bytes file) : file_(file) {
    constexpr std::size_t kFirstRecordAt = 4;
    at_ = kFirstRecordAt;
    const std::size_t low = word();
    at_ = low | word() << 16;
  }

  [[nodiscard]] bool atEnd() const { return at_ >= file_.size(); }
  std::size_t byte() { return atEnd() ? 0 : file_[at_++]; }
  // Of 1, 3 or 5 bytes.
  std::size_t length() {
    constexpr std::size_t kLonger = 0xFF;
    constexpr std::size_t kLongest = 0x8000;
    const std::size_t first = byte();
    if (first != kLonger) return first;
    const std::size_t high = word();
    return high < kLongest ? high : (high & ~kLongest) << 16 | word();
  }
  void skip(std::size_t bytes) { at_ += bytes; }

 private:
  // Little-endian.
  std::size_t word() {
    const std::size_t low = byte();
    return low | byte() << 8;
  }

  Bytes file_;
  std::size_t at_ = 0;
};

}  // namespace

bool IsSoundWordPerfect(Bytes file) {
  constexpr std::size_t kHeaderBytes = 16;
  constexpr std::size_t kVersionAt = 10;
  enum : std::size_t { kPostScript = 0x11, kPostScript2 = 0x1B, kPostScriptOfVersion2 = 0x12 };
  if (file.size() < kHeaderBytes) return false;
  const bool isVersion2 = file[kVersionAt] == 2;
  Records records(file);
  while (!records.atEnd()) {
    if (isVersion2) (void)records.byte();  // the class
    const std::size_t kind = records.byte();
    if (isVersion2 ? kind == kPostScriptOfVersion2 : kind == kPostScript || kind == kPostScript2) {
      return false;
    }
    if (isVersion2) (void)records.length();  // an extension
    const std::size_t bytes = records.length();
    records.skip(bytes);
  }
  return true;
}

}  // namespace modules
