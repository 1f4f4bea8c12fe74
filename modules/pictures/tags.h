// Blocks of tags as TIFF lays them out, of which EXIF and its relatives in JPEG files consist: a
// byte order ("II" or "MM"), the number 42, and directories of entries of 12 bytes (tag, type,
// count, value or its offset). Offsets count from the block's first byte.
#ifndef MODULES_PICTURES_TAGS_H
#define MODULES_PICTURES_TAGS_H

#include <cstdint>
#include <span>

namespace modules {

// Numbers in the block's own byte order; what lies beyond its end reads as 0.
class Tags {
 public:
  explicit Tags(std::span<const std::uint8_t> bytes)
      : bytes_(bytes), bigEndian_(bytes.size() > 1 && bytes[0] == 'M') {}

  [[nodiscard]] bool areSound() const {
    constexpr unsigned kMark = 42;
    return at16(2) == kMark;
  }
  [[nodiscard]] std::size_t size() const { return bytes_.size(); }
  [[nodiscard]] bool bigEndian() const { return bigEndian_; }

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

  [[nodiscard]] std::size_t firstDirectory() const { return at32(4); }
  // Calls visit(tag, offset of the entry) for each entry.
  template <class Visit>
  void forEach(std::size_t directory, const Visit& visit) const {
    constexpr std::size_t kEntryBytes = 12;
    const unsigned entries = at16(directory);
    for (unsigned i = 0; i < entries; ++i) {
      const std::size_t entry = directory + 2 + i * kEntryBytes;
      visit(at16(entry), entry);
    }
  }

 private:
  std::span<const std::uint8_t> bytes_;
  bool bigEndian_;
};

// Where in an entry its parts lie.
constexpr std::size_t kEntryType = 2;
constexpr std::size_t kEntryCount = 4;
constexpr std::size_t kEntryValue = 8;

// The same, for numbers that are to change in place. What lies beyond the end is not written.
class WritableTags : public Tags {
 public:
  explicit WritableTags(std::span<std::uint8_t> bytes) : Tags(bytes), room_(bytes) {}

  void put16(std::size_t offset, unsigned number) const { put(offset, number, 2); }
  void put32(std::size_t offset, std::uint32_t number) const { put(offset, number, 4); }

 private:
  void put(std::size_t offset, std::uint32_t number, unsigned bytes) const {
    if (offset >= room_.size() || room_.size() - offset < bytes) return;
    for (unsigned i = 0; i < bytes; ++i) {
      room_[offset + (bigEndian() ? bytes - 1 - i : i)] =
          static_cast<std::uint8_t>(number >> 8 * i);
    }
  }

  std::span<std::uint8_t> room_;
};

}  // namespace modules

#endif  // MODULES_PICTURES_TAGS_H
