// Where the whole window lies inside the image the weights' sum is known, and most samples are
// added up first, many columns at once: those of one exponent plainly, the sums doubled from class
// to class. The pixel itself and its neighbours to the left follow in a second pass, pixel after
// pixel, since in place the neighbours are the filtered ones. Without these the sums fit into 16
// bits.
#include "imaging/descreen/descreen_filter.h"

#include <algorithm>
#include <utility>

#include "imaging/descreen/descreen_weights.h"
#include "imaging/vector_clones.h"

namespace orvo {

namespace {

template <std::uint32_t level>
constexpr int kHighestExponent = 2 + static_cast<int>(level);

template <std::uint32_t level>
constexpr bool InClass(std::size_t tap, int exponent) {
  constexpr auto kSide = static_cast<std::size_t>(DescreenSide(level));
  const bool inSecondPass = tap / kSide == kSide / 2 && tap % kSide <= kSide / 2;
  return DescreenExponents(level)[tap] == exponent && !inSecondPass;
}

// rows: the window's rows, each from the first column of the first pixel's window on.
template <std::uint32_t level, std::size_t channels, int exponent, std::size_t... taps>
ORVO_ALWAYS_INLINE std::uint16_t ClassSum(const std::uint8_t* const* rows, std::size_t at,
                                          std::index_sequence<taps...> /*window*/) {
  constexpr auto kSide = static_cast<std::size_t>(DescreenSide(level));
  std::uint16_t sum = 0;
  ((InClass<level>(taps, exponent)
        ? void(sum = static_cast<std::uint16_t>(sum +
                                                rows[taps / kSide][at + taps % kSide * channels]))
        : void()),
   ...);
  return sum;
}

template <std::uint32_t level, std::size_t channels, int exponent>
ORVO_ALWAYS_INLINE std::uint16_t SumFrom(const std::uint8_t* const* rows, std::size_t at) {
  constexpr auto kSide = static_cast<std::size_t>(DescreenSide(level));
  const std::uint16_t own =
      ClassSum<level, channels, exponent>(rows, at, std::make_index_sequence<kSide * kSide>{});
  if constexpr (exponent == kHighestExponent<level>) {
    return own;
  } else {
    return static_cast<std::uint16_t>(own + 2 * SumFrom<level, channels, exponent + 1>(rows, at));
  }
}

template <std::uint32_t level, std::size_t channels>
ORVO_ALWAYS_INLINE void SumMost(const std::uint8_t* const* rows, std::size_t count,
                                std::uint16_t* __restrict sums) {
  for (std::size_t at = 0; at < count; ++at) sums[at] = SumFrom<level, channels, 0>(rows, at);
}

// row: the source's own row from the first column of the first pixel's window on. When target is
// the same row, each pixel sees those to its left as they were just written.
template <std::uint32_t level, std::size_t channels>
ORVO_ALWAYS_INLINE void AddLeftAndDivide(const std::uint8_t* row, const std::uint16_t* sums,
                                         std::size_t count, std::uint8_t* target) {
  constexpr auto kSide = static_cast<std::size_t>(DescreenSide(level));
  constexpr const std::uint8_t* kOwnRow = DescreenExponents(level) + kSide * (kSide / 2);
  for (std::size_t at = 0; at < count; ++at) {
    std::uint32_t sum = sums[at];
    for (std::size_t i = 0; i <= kSide / 2; ++i) {
      sum += std::uint32_t{row[at + i * channels]} << kOwnRow[i];
    }
    target[at] = static_cast<std::uint8_t>(sum / DescreenWeightSum(level));
  }
}

// A row of pixels whose windows lie inside the image, from the first such pixel on.
template <std::uint32_t level, std::size_t channels>
ORVO_ALWAYS_INLINE void FilterInner(const std::uint8_t* const* rows, std::size_t count,
                                    std::uint16_t* sums, std::uint8_t* target) {
  SumMost<level, channels>(rows, count, sums);
  AddLeftAndDivide<level, channels>(rows[DescreenSide(level) / 2], sums, count, target);
}

ORVO_VECTOR_CLONES
void FilterInnerGray(std::uint32_t level, const std::uint8_t* const* rows, std::size_t count,
                     std::uint16_t* sums, std::uint8_t* target) {
  switch (level) {
    case 0:
      return FilterInner<0, 1>(rows, count, sums, target);
    case 1:
      return FilterInner<1, 1>(rows, count, sums, target);
    case 2:
      return FilterInner<2, 1>(rows, count, sums, target);
    default:
      return FilterInner<3, 1>(rows, count, sums, target);
  }
}

ORVO_VECTOR_CLONES
void FilterInnerColor(std::uint32_t level, const std::uint8_t* const* rows, std::size_t count,
                      std::uint16_t* sums, std::uint8_t* target) {
  switch (level) {
    case 0:
      return FilterInner<0, 3>(rows, count, sums, target);
    case 1:
      return FilterInner<1, 3>(rows, count, sums, target);
    case 2:
      return FilterInner<2, 3>(rows, count, sums, target);
    default:
      return FilterInner<3, 3>(rows, count, sums, target);
  }
}

}  // namespace

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
  const auto filterInner = image_.channels == 1 ? FilterInnerGray : FilterInnerColor;
  filterInner(level_, rows, count, sums_.get(), image_.target + offset(innerFirst, y));
  for (std::int32_t x = innerEnd; x < image_.width; ++x) filterPixel(x, y);
}

}  // namespace orvo
