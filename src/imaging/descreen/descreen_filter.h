// The filter of descreen, row by row on plain pixels.
#ifndef ORVO_IMAGING_DESCREEN_DESCREEN_FILTER_H
#define ORVO_IMAGING_DESCREEN_DESCREEN_FILTER_H

#include <cstddef>
#include <cstdint>

#include "imaging/utilities.h"

namespace orvo {

constexpr std::uint32_t kMostDescreenLevel = 3;

// An image as the filter sees it; source and target may be the same rows.
struct DescreenImage {
  const std::uint8_t* source;
  std::uint8_t* target;
  std::size_t stride;     // of both
  std::int32_t width;     // pixels
  std::int32_t height;    // rows
  std::int32_t channels;  // bytes a pixel, each filtered by itself
};

// Replaces each byte by the weighted mean of its window. The image's last row and column are
// filtered but never read as samples.
class DescreenFilter {
 public:
  DescreenFilter(const DescreenImage& image, std::uint32_t level) noexcept;

  // False when there is no memory for a row of sums.
  [[nodiscard]] bool allocate() noexcept;
  // Rows are filtered in rising order: when source and target are the same, a window holds what was
  // written above and to the left.
  void filterRow(std::int32_t y) noexcept;

 private:
  void filterPixel(std::int32_t x, std::int32_t y) noexcept;
  [[nodiscard]] std::size_t offset(std::int32_t x, std::int32_t y) const;

  DescreenImage image_;
  std::uint32_t level_;
  std::int32_t half_;  // of the window
  ImgArray<std::uint16_t> sums_;
};

}  // namespace orvo

#endif  // ORVO_IMAGING_DESCREEN_DESCREEN_FILTER_H
