#include "documents/spool.h"

#include <algorithm>
#include <vector>

namespace modules {

Spool::Spool(const std::filesystem::path& neighbour) : file_(neighbour) {
  stream_.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
  stream_.open(file_.path(), std::ios::in | std::ios::out | std::ios::binary);
}

void Spool::append(const std::uint8_t* bytes, std::size_t count) {
  stream_.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  size_ += count;
}

Spool::Range Spool::rangeSince(std::uint64_t start) {
  stream_.flush();
  return {start, size_ - start};
}

Spool::Range Spool::take(const std::filesystem::path& file, std::uint64_t start,
                         std::uint64_t bytes) {
  const std::uint64_t begin = size_;
  std::ifstream source;
  source.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
  source.open(file, std::ios::binary);
  source.seekg(static_cast<std::streamoff>(start));
  std::vector<std::uint8_t> piece(std::size_t{1} << 16);
  for (std::uint64_t left = bytes; left > 0;) {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left, piece.size()));
    source.read(reinterpret_cast<char*>(piece.data()), static_cast<std::streamsize>(count));
    append(piece.data(), count);
    left -= count;
  }
  return rangeSince(begin);
}

void Spool::copy(const Range& range, Pipeline& target) {
  std::vector<std::uint8_t> bytes(range.length);
  stream_.seekg(static_cast<std::streamoff>(range.start));
  stream_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  stream_.seekp(0, std::ios::end);
  target.write(bytes.data(), bytes.size());
}

}  // namespace modules
