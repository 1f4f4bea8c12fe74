#include "jpeg_further.h"

#include "pictures/tags.h"

namespace client {
namespace {

constexpr unsigned kTagPictures = 0xB002;
// Of a picture's 16 bytes, after its kind: bytes that it takes, and where it begins.
constexpr std::size_t kPictureBytes = 16;
constexpr std::size_t kSize = 4;
constexpr std::size_t kPlace = 8;

}  // namespace

void MoveFurtherPictures(std::span<std::uint8_t> index, const FurtherPlaces& before,
                         const FurtherPlaces& after) {
  const modules::WritableTags tags(index);
  if (!tags.areSound()) return;
  // Numbers of 32 bits wrap round, so that what shrinks is added as well.
  const auto longer = static_cast<std::uint32_t>(after.end - before.end);
  const auto farther = static_cast<std::uint32_t>(longer - (after.index - before.index));
  tags.forEach(tags.firstDirectory(), [&](unsigned tag, std::size_t entry) {
    if (tag != kTagPictures) return;
    const std::size_t first = tags.at32(entry + modules::kEntryValue);
    const std::size_t bytes = tags.at32(entry + modules::kEntryCount);
    for (std::size_t at = first; at < first + bytes && at < tags.size(); at += kPictureBytes) {
      const std::uint32_t place = tags.at32(at + kPlace);
      if (place == 0) {
        tags.put32(at + kSize, tags.at32(at + kSize) + longer);
      } else if (before.index + place >= before.end) {
        tags.put32(at + kPlace, place + farther);
      }
    }
  });
}

}  // namespace client
