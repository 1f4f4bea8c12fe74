// What stands in a BMP file before its pixels.
#ifndef MODULES_PICTURES_BMP_HEADER_H
#define MODULES_PICTURES_BMP_HEADER_H

#include <array>
#include <cstdint>

#include "pictures/file_handle.h"
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
  FileImage image;
  std::uint32_t compression = BI_RGB;  // BI_RGB, BI_RLE8, BI_RLE4 or BI_BITFIELDS
  bool topDown = false;                // the top line of the picture comes first
  std::uint64_t pixelOffset = 0;       // bytes from the start of the file
  std::uint64_t pixelBytes = 0;        // bytes of the file from there on
  std::array<RGBQUAD, 256> palette{};  // black where the file has no entry
  BmpChannel red, green, blue, alpha;  // 16 and 32 bits

  // Whether pixels of 16 and 32 bits lie in the file just as an image in memory has them.
  bool isPlain = true;
};

// Reads and checks all that stands before the pixels. Module code.
int ReadBmpHeader(std::FILE* file, std::uint64_t fileBytes, BmpHeader& header);

// Paints a BI_RLE4 or BI_RLE8 picture from the compressed bytes. Module code.
int DecodeBmpRuns(const std::uint8_t* data, std::size_t bytes, const Pixels& image);

}  // namespace modules

#endif  // MODULES_PICTURES_BMP_HEADER_H
