// Bytes of a file, and the numbers in them.
#ifndef APPS_ORVO_METADATA_BYTES_H
#define APPS_ORVO_METADATA_BYTES_H

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace client {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

enum class ByteOrder { kLittle, kBig };

// The number in the first `bytes` bytes, 8 at most; a shorter view gives 0.
inline std::uint64_t NumberIn(View view, std::size_t bytes, ByteOrder order = ByteOrder::kBig) {
  std::uint64_t number = 0;
  if (view.size() < bytes) return number;
  for (std::size_t i = 0; i < bytes; ++i) {
    number = number << 8 | view[order == ByteOrder::kBig ? i : bytes - 1 - i];
  }
  return number;
}

// Fills all of `out`.
inline void PutNumber(std::span<std::uint8_t> out, std::uint64_t number,
                      ByteOrder order = ByteOrder::kBig) {
  for (std::size_t i = 0; i < out.size(); ++i, number >>= 8) {
    out[order == ByteOrder::kBig ? out.size() - 1 - i : i] = static_cast<std::uint8_t>(number);
  }
}

inline void Append(Bytes& bytes, View more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

inline void AppendNumber(Bytes& bytes, std::uint64_t number, std::size_t length) {
  bytes.resize(bytes.size() + length);
  PutNumber(std::span(bytes).last(length), number);
}

inline View ViewOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline std::string_view TextOf(View view) {
  return {reinterpret_cast<const char*>(view.data()), view.size()};
}

inline bool StartsWith(View view, std::string_view start) {
  return TextOf(view).starts_with(start);
}

}  // namespace client

#endif  // APPS_ORVO_METADATA_BYTES_H
