#include "pictures/exif.h"

#include "pictures/tags.h"

namespace modules {
namespace {

constexpr unsigned kTagOrientation = 0x0112;
constexpr unsigned kTagXResolution = 0x011A;
constexpr unsigned kTagYResolution = 0x011B;
constexpr unsigned kTagResolutionUnit = 0x0128;
constexpr unsigned kTagCamera = 0x8769;  // the directory of what the camera tells
constexpr unsigned kTagPixelWidth = 0xA002;
constexpr unsigned kTagPixelHeight = 0xA003;
constexpr unsigned kUnitNone = 1;
constexpr unsigned kUnitInch = 2;

void PutWhole(const WritableTags& tags, std::size_t entry, int number) {
  constexpr unsigned kTypeShort = 3;
  const auto value = static_cast<std::uint32_t>(number);
  if (tags.at16(entry + kEntryType) == kTypeShort) {
    tags.put16(entry + kEntryValue, value);
  } else {
    tags.put32(entry + kEntryValue, value);
  }
}

}  // namespace

void ReadExif(std::span<const std::uint8_t> block, Picture& picture) {
  const Tags tags(block);
  if (!tags.areSound()) return;

  double x = 0;
  double y = 0;
  unsigned unit = kUnitInch;
  tags.forEach(tags.firstDirectory(), [&](unsigned tag, std::size_t entry) {
    const std::size_t value = entry + kEntryValue;
    switch (tag) {
      case kTagOrientation:
        picture.orientation = OrientationOf(tags.at16(value));
        break;
      case kTagXResolution:
        x = tags.fractionAt(tags.at32(value));
        break;
      case kTagYResolution:
        y = tags.fractionAt(tags.at32(value));
        break;
      case kTagResolutionUnit:
        unit = tags.at16(value);
        break;
      default:
        break;
    }
  });
  if (unit != kUnitNone) picture.setResolution(x, y, unit);
}

void SetExifShape(std::span<std::uint8_t> block, int width, int height, bool sidesSwapped) {
  const WritableTags tags(block);
  if (!tags.areSound()) return;
  std::size_t camera = 0;
  std::size_t xResolution = 0;
  std::size_t yResolution = 0;
  tags.forEach(tags.firstDirectory(), [&](unsigned tag, std::size_t entry) {
    const std::size_t value = entry + kEntryValue;
    if (tag == kTagOrientation && OrientationOf(tags.at16(value)) != kUpright) {
      tags.put16(value, kUpright);
    }
    if (tag == kTagXResolution) xResolution = value;
    if (tag == kTagYResolution) yResolution = value;
    if (tag == kTagCamera) camera = tags.at32(value);
  });
  if (sidesSwapped && xResolution != 0 && yResolution != 0) {
    const std::uint32_t x = tags.at32(xResolution);
    tags.put32(xResolution, tags.at32(yResolution));
    tags.put32(yResolution, x);
  }
  if (camera == 0) return;
  tags.forEach(camera, [&](unsigned tag, std::size_t entry) {
    if (tag == kTagPixelWidth) PutWhole(tags, entry, width);
    if (tag == kTagPixelHeight) PutWhole(tags, entry, height);
  });
}

std::vector<std::uint8_t> TagsBehindPlace(std::span<const std::uint8_t> block) {
  constexpr std::size_t kPlaceBytes = 4;
  std::size_t place = 0;
  if (block.size() < kPlaceBytes) return {};
  for (const std::uint8_t byte : block.first(kPlaceBytes)) place = place << 8 | byte;
  block = block.subspan(kPlaceBytes);
  if (place > block.size()) return {};
  block = block.subspan(place);
  return {block.begin(), block.end()};
}

}  // namespace modules
