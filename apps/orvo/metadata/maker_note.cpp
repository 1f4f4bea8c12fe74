#include "maker_note.h"

#include <algorithm>
#include <array>

#include "tag_directory.h"

namespace client {
namespace {

constexpr std::size_t kCountBytes = 2;
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kFieldAt = 8;

// A value that does not fit into its entry.
struct Value {
  std::size_t fieldAt;  // where in the note its position is told
  std::uint64_t bytes;
};

// Those of the directory in the note; nothing when `start` begins none.
std::vector<Value> ValuesOf(View note, std::size_t start, ByteOrder order) {
  constexpr std::size_t kShortValue = 4;  // lies in the field itself
  if (start + kCountBytes > note.size()) return {};
  const std::uint64_t entries = NumberIn(note.subspan(start), kCountBytes, order);
  if (entries > (note.size() - start - kCountBytes) / kEntryBytes) return {};
  std::vector<Value> values;
  for (std::size_t i = 0; i < entries; ++i) {
    const std::size_t at = start + kCountBytes + i * kEntryBytes;
    const View entry = note.subspan(at, kEntryBytes);
    const std::uint64_t unit =
        BytesOfType(static_cast<std::uint16_t>(NumberIn(entry.subspan(2), 2, order)));
    if (unit == 0) return {};
    const std::uint64_t bytes = unit * NumberIn(entry.subspan(4), 4, order);
    if (bytes > kShortValue) values.push_back({at + kFieldAt, bytes});
  }
  return values;
}

// Whether all of them lie in the note when it stands at `place`.
bool AllLieIn(View note, const std::vector<Value>& values, std::uint64_t place, ByteOrder order) {
  return std::all_of(values.begin(), values.end(), [&](const Value& value) {
    const std::uint64_t at = NumberIn(note.subspan(value.fieldAt), 4, order);
    return at >= place && at + value.bytes <= place + note.size();
  });
}

}  // namespace

void MoveMakerNote(Bytes& note, std::uint64_t from, std::uint64_t to) {
  // Behind a name of so many bytes, or none.
  constexpr std::array<std::size_t, 5> kStarts{0, 6, 8, 10, 12};
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    for (const std::size_t start : kStarts) {
      const std::vector<Value> values = ValuesOf(note, start, order);
      // Positions that count from the note itself are right wherever it stands.
      if (values.empty() || !AllLieIn(note, values, from, order) ||
          AllLieIn(note, values, 0, order)) {
        continue;
      }
      for (const Value& value : values) {
        const auto place = std::span(note).subspan(value.fieldAt, 4);
        PutNumber(place, NumberIn(place, 4, order) - from + to, order);
      }
      return;
    }
  }
}

}  // namespace client
