#include "imaging/descreen/descreen_filter.h"

#include <algorithm>

#include "imaging/descreen/descreen_row.h"
#include "imaging/descreen/descreen_weights.h"

namespace orvo {

DescreenFilter::DescreenFilter(const DescreenImage& image, std::uint32_t level) noexcept
    : image_(image), level_(level), half_(DescreenSide(level) / 2) {}

bool DescreenFilter::allocate() noexcept {
  sums_ = ImgAllocArray<std::uint16_t>(static_cast<std::size_t>(image_.width) *
                                       static_cast<std::size_t>(image_.channels));
  return sums_ != nullptr;
}

std::size_t DescreenFilter::offset(std::int32_t x, std::int32_t y) const {
  return image_.stride * static_cast<std::size_t>(y) +
         static_cast<std::size_t>(x) * static_cast<std::size_t>(image_.channels);
}

// Near the edges: the mean of those samples that the image has.
void DescreenFilter::filterPixel(std::int32_t x, std::int32_t y) noexcept {
  const std::int32_t left = std::max(x - half_, 0);
  const std::int32_t right = std::min(x + half_, image_.width - 2);
  const std::int32_t first = std::max(y - half_, 0);
  const std::int32_t last = std::min(y + half_, image_.height - 2);
  if (left > right || first > last) return;
  std::uint32_t sums[3] = {};
  std::uint32_t weights = 0;
  for (std::int32_t row = first; row <= last; ++row) {
    const std::uint8_t* const exponents =
        DescreenExponents(level_) + (row - y + half_) * DescreenSide(level_) + half_ - x;
    for (std::int32_t column = left; column <= right; ++column) {
      const std::uint8_t* const sample = image_.source + offset(column, row);
      weights += 1U << exponents[column];
      for (std::int32_t c = 0; c < image_.channels; ++c) {
        sums[c] += std::uint32_t{sample[c]} << exponents[column];
      }
    }
  }
  std::uint8_t* const target = image_.target + offset(x, y);
  for (std::int32_t c = 0; c < image_.channels; ++c) {
    target[c] = static_cast<std::uint8_t>(sums[c] / weights);
  }
}

void DescreenFilter::filterRow(std::int32_t y) noexcept {
  const bool inner = y >= half_ && y + half_ <= image_.height - 2;
  const std::int32_t innerFirst = inner ? std::min(half_, image_.width) : image_.width;
  const std::int32_t innerEnd = std::max(innerFirst, image_.width - 1 - half_);
  if (innerFirst == innerEnd) {
    for (std::int32_t x = 0; x < image_.width; ++x) filterPixel(x, y);
    return;
  }
  for (std::int32_t x = 0; x < innerFirst; ++x) filterPixel(x, y);
  const std::uint8_t* rows[DescreenSide(kMostDescreenLevel)] = {};
  for (std::int32_t j = 0; j < DescreenSide(level_); ++j) {
    rows[j] = image_.source + offset(0, y + j - half_);
  }
  const std::size_t count =
      static_cast<std::size_t>(innerEnd - innerFirst) * static_cast<std::size_t>(image_.channels);
  ORVO_BEST(DescreenRow)
  (level_, image_.channels, rows, count, sums_.get(), image_.target + offset(innerFirst, y));
  for (std::int32_t x = innerEnd; x < image_.width; ++x) filterPixel(x, y);
}

}  // namespace orvo
