#include <algorithm>
#include <array>

#include "pictures/magick_kinds.h"

namespace modules {
namespace {

using Bytes = std::span<const std::uint8_t>;

// Sizes count words of 2 bytes, little-endian.
constexpr std::size_t kPlaceableBytes = 22;
constexpr std::size_t kHeaderWords = 9;
constexpr std::size_t kRecordStartWords = 3;  // its size in words, then its function

// The caller knows that the word is there.
std::size_t Word(Bytes bytes, std::size_t word) {
  return bytes[2 * word] | static_cast<std::size_t>(bytes[2 * word + 1]) << 8;
}
std::size_t DoubleWord(Bytes bytes, std::size_t word) {
  return Word(bytes, word) | Word(bytes, word + 1) << 16;
}

enum Function : std::uint16_t {
  kEnd = 0,
  kCreatePalette = 0x00F7,
  kSelectObject = 0x012D,
  kCreateBitmapBrush = 0x0142,
  kDeleteObject = 0x01F0,
  kSelectPalette = 0x0234,
  kCreatePatternBrush = 0x01F9,
  kCreatePen = 0x02FA,
  kCreateFont = 0x02FB,
  kCreateBrush = 0x02FC,
  kCreateRegion = 0x06FF,
};

bool Creates(std::size_t function) {
  constexpr std::array<std::size_t, 7> kCreators{
      kCreatePalette, kCreateBitmapBrush, kCreatePatternBrush, kCreatePen,
      kCreateFont,    kCreateBrush,       kCreateRegion};
  return std::find(kCreators.begin(), kCreators.end(), function) != kCreators.end();
}

bool TakesObject(std::size_t function) {
  return function == kSelectObject || function == kDeleteObject || function == kSelectPalette;
}

}  // namespace

bool IsSoundMetafile(std::span<const std::uint8_t> file) {
  if (file.size() > kPlaceableBytes && file[0] == 0xD7) file = file.subspan(kPlaceableBytes);
  if (file.size() < 2 * kHeaderWords || Word(file, 1) != kHeaderWords) return false;
  const std::size_t slots = Word(file, 5);  // for pens, brushes and the like
  const std::size_t largestRecord = DoubleWord(file, 6);
  if (largestRecord > file.size() / 2) return false;
  file = file.subspan(2 * kHeaderWords);

  std::size_t created = 0;
  while (file.size() >= 2 * kRecordStartWords) {
    const std::size_t words = DoubleWord(file, 0);
    const std::size_t function = Word(file, 2);
    if (words < kRecordStartWords || words > file.size() / 2 || words > largestRecord) return false;
    if (function == kEnd) return true;
    if (TakesObject(function) && (words <= kRecordStartWords || Word(file, 3) >= slots))
      return false;
    created += Creates(function) ? 1 : 0;
    created -= function == kDeleteObject && created > 0 ? 1 : 0;
    if (created > slots) return false;
    file = file.subspan(2 * words);
  }
  return false;
}

}  // namespace modules
