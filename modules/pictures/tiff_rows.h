// Rows of TIFF samples on their way to pixels.
#ifndef MODULES_PICTURES_TIFF_ROWS_H
#define MODULES_PICTURES_TIFF_ROWS_H

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "pictures/tiff_page.h"

namespace modules {

// Stores row segments of one page. Keeps the working memory that this takes.
class TiffRows {
 public:
  explicit TiffRows(const TiffPage& page) : page_(page) {}

  // Stores `count` pixels from column `left` of the line that row begins. planes: the segment's
  // packed samples; one pointer for each sample of a planar page, else planes[0] alone.
  void store(const std::uint8_t* const* planes, int left, int count, std::uint8_t* row);

 private:
  const std::uint8_t* bytesOf(const std::uint8_t* packed, std::size_t count, std::size_t sample,
                              std::vector<std::uint8_t>& out) const;
  const std::uint8_t* samplesOf(const std::uint8_t* const* planes, std::size_t count);
  void storeWide(const std::uint8_t* from, std::size_t count, std::uint8_t* out) const;
  void storeTones(std::span<const std::uint8_t> samples, std::uint8_t* out) const;
  void storeInks(std::span<const std::uint8_t> samples, std::uint8_t* out) const;
  // With the opacity behind each colour where the page has it. colorOf takes a pixel's samples.
  template <class ColorOf>
  void storeColors(std::span<const std::uint8_t> samples, std::uint8_t* out,
                   const ColorOf& colorOf) const;
  [[nodiscard]] std::uint8_t toneOf(std::uint8_t sample) const {
    return page_.whiteIsZero ? static_cast<std::uint8_t>(255 - sample) : sample;
  }
  // What a colour was before it was multiplied by its alpha.
  [[nodiscard]] std::uint8_t plainTone(std::uint8_t tone, std::uint8_t alpha) const;

  const TiffPage& page_;
  std::vector<std::uint8_t> samples_;  // of 8 bits, pixel by pixel
  std::vector<std::uint8_t> plane_;
};

}  // namespace modules

#endif  // MODULES_PICTURES_TIFF_ROWS_H
