#include "pdflib/spool.h"

#include <algorithm>
#include <array>

namespace provider {

Spool::Spool(const std::filesystem::path& neighbour) : file_(neighbour) {
  stream_.exceptions(std::ios::badbit | std::ios::failbit | std::ios::eofbit);
  stream_.open(file_.path(), std::ios::in | std::ios::out | std::ios::binary);
}

void Spool::append(std::span<const std::uint8_t> bytes) {
  stream_.write(reinterpret_cast<const char*>(bytes.data()),
                static_cast<std::streamsize>(bytes.size()));
  size_ += bytes.size();
}

Spool::Range Spool::rangeSince(std::uint64_t start) {
  stream_.flush();
  return {start, size_ - start};
}

void Spool::copy(const Range& range, Pipeline& target) {
  constexpr std::uint64_t kPiece = std::uint64_t{1} << 16;
  std::array<char, kPiece> piece{};
  stream_.seekg(static_cast<std::streamoff>(range.start));
  for (std::uint64_t left = range.length; left > 0;) {
    const std::uint64_t count = std::min(left, kPiece);
    stream_.read(piece.data(), static_cast<std::streamsize>(count));
    target.write(reinterpret_cast<const unsigned char*>(piece.data()), count);
    left -= count;
  }
  stream_.seekp(0, std::ios::end);
}

}  // namespace provider
