// What stands in a BMP file before its pixels, and its run-length codings.
#ifndef MODULES_PICTURES_BMP_HEADER_H
#define MODULES_PICTURES_BMP_HEADER_H

#include <cstdint>
#include <cstdio>
#include <span>

#include "pictures/picture.h"

namespace modules {

// Little-endian numbers.
inline std::uint16_t Little16(const std::uint8_t* bytes) {
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}
inline std::uint32_t Little32(const std::uint8_t* bytes) {
  return Little16(bytes) | static_cast<std::uint32_t>(Little16(bytes + 2)) << 16;
}

constexpr std::uint32_t kBmpFileHeaderBytes = 14;

// The bits of a pixel that hold one colour. A mask of 0 gives 0.
struct BmpChannel {
  std::uint32_t mask = 0;
  int shift = 0;
  int bits = 0;

  [[nodiscard]] std::uint8_t tone(std::uint32_t pixel) const;
};

struct BmpHeader {
  Picture picture;  // its palette has all that the depth has; black where the file has no entry
  int depth = 0;
  std::uint32_t compression = BI_RGB;  // BI_RGB, BI_RLE8, BI_RLE4 or BI_BITFIELDS
  std::uint64_t pixelOffset = 0;       // bytes from the start of the file
  std::uint64_t pixelBytes = 0;        // bytes of the file from there on
  BmpChannel red, green, blue, alpha;  // 16 and 32 bits

  // Whether pixels of 16 and 32 bits lie in the file just as an image in memory has them.
  bool isPlain = true;
  // From row to row, without runs.
  [[nodiscard]] std::uint64_t strideBytes() const;
  // Of all rows without runs, less what fills up the last: some files lack that.
  [[nodiscard]] std::uint64_t rowsBytes() const;
  [[nodiscard]] bool hasRuns() const { return compression == BI_RLE8 || compression == BI_RLE4; }
};

// Reads and checks all that stands before the pixels.
BmpHeader ReadBmpHeader(std::FILE* file, std::uint64_t fileBytes);

// Decodes the runs of a picture row by row, as they lie in the file: pairs of a count and a colour,
// and escapes that begin with 0.
class BmpRuns {
 public:
  BmpRuns(const BmpHeader& header, std::span<const std::uint8_t> data)
      : header_(header), data_(data) {}

  void readRow(std::uint8_t* row);

 private:
  int take();  // the next byte
  void step(std::uint8_t* row);
  void put(std::uint8_t* row, int value);
  void paint(std::uint8_t* row, int count, int value);
  void paintLiterally(std::uint8_t* row, int count);
  void jump();
  [[nodiscard]] int valueAt(int byte, int position) const;

  const BmpHeader& header_;
  std::span<const std::uint8_t> data_;
  int x_ = 0;
  int y_ = 0;           // row that the runs are at
  int next_ = 0;        // row that readRow gives
  bool ended_ = false;  // by its mark
};

}  // namespace modules

#endif  // MODULES_PICTURES_BMP_HEADER_H
