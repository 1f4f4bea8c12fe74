#include "pdflib/spool.h"

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

void Spool::copy(const Range& range, Pipeline& target) {
  std::vector<std::uint8_t> bytes(range.length);
  stream_.seekg(static_cast<std::streamoff>(range.start));
  stream_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  stream_.seekp(0, std::ios::end);
  target.write(bytes.data(), bytes.size());
}

}  // namespace modules
