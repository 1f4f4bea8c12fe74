#include "pictures/exif.h"

namespace modules {
namespace {

constexpr unsigned kTagOrientation = 0x0112;
constexpr unsigned kTagXResolution = 0x011A;
constexpr unsigned kTagYResolution = 0x011B;
constexpr unsigned kTagResolutionUnit = 0x0128;
constexpr unsigned kUnitNone = 1;
constexpr unsigned kUnitInch = 2;

// Numbers in the block's own byte order; what lies beyond its end reads as 0.
class Numbers {
 public:
  explicit Numbers(std::span<const std::uint8_t> bytes)
      : bytes_(bytes), bigEndian_(bytes.size() > 1 && bytes[0] == 'M') {}

  [[nodiscard]] unsigned at16(std::size_t offset) const {
    if (offset >= bytes_.size() || bytes_.size() - offset < 2) return 0;
    const unsigned first = bytes_[offset];
    const unsigned second = bytes_[offset + 1];
    return bigEndian_ ? first << 8 | second : second << 8 | first;
  }
  [[nodiscard]] std::uint32_t at32(std::size_t offset) const {
    const std::uint32_t first = at16(offset);
    const std::uint32_t second = at16(offset + 2);
    return bigEndian_ ? first << 16 | second : second << 16 | first;
  }
  [[nodiscard]] double fractionAt(std::size_t offset) const {
    const std::uint32_t divisor = at32(offset + 4);
    return divisor == 0 ? 0 : static_cast<double>(at32(offset)) / divisor;
  }

 private:
  std::span<const std::uint8_t> bytes_;
  bool bigEndian_;
};

}  // namespace

void ReadExif(std::span<const std::uint8_t> block, Picture& picture) {
  constexpr unsigned kMark = 42;
  constexpr std::size_t kEntryBytes = 12;
  const Numbers numbers(block);
  if (numbers.at16(2) != kMark) return;

  const std::size_t directory = numbers.at32(4);
  const unsigned entries = numbers.at16(directory);
  double x = 0;
  double y = 0;
  unsigned unit = kUnitInch;
  for (unsigned i = 0; i < entries; ++i) {
    const std::size_t entry = directory + 2 + i * kEntryBytes;
    const std::size_t value = entry + 8;
    switch (numbers.at16(entry)) {
      case kTagOrientation:
        picture.orientation = OrientationOf(numbers.at16(value));
        break;
      case kTagXResolution:
        x = numbers.fractionAt(numbers.at32(value));
        break;
      case kTagYResolution:
        y = numbers.fractionAt(numbers.at32(value));
        break;
      case kTagResolutionUnit:
        unit = numbers.at16(value);
        break;
      default:
        break;
    }
  }
  if (unit != kUnitNone) picture.setResolution(x, y, unit);
}

}  // namespace modules
