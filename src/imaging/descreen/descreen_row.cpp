// Where the whole window lies inside the image the weights' sum is known, and most samples are
// added up first, many columns at once: those of one exponent plainly, the sums doubled from class
// to class. The pixel itself and its neighbours to the left follow in a second pass, pixel after
// pixel, since in place the neighbours are the filtered ones. Without these the sums fit into 16
// bits.
#include "imaging/descreen/descreen_row.h"

#include <utility>

#include "imaging/descreen/descreen_weights.h"

namespace orvo::ORVO_LEVEL {

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

template <std::size_t channels>
ORVO_ALWAYS_INLINE void FilterAt(std::uint32_t level, const std::uint8_t* const* rows,
                                 std::size_t count, std::uint16_t* sums, std::uint8_t* target) {
  switch (level) {
    case 0:
      return FilterInner<0, channels>(rows, count, sums, target);
    case 1:
      return FilterInner<1, channels>(rows, count, sums, target);
    case 2:
      return FilterInner<2, channels>(rows, count, sums, target);
    default:
      return FilterInner<3, channels>(rows, count, sums, target);
  }
}

}  // namespace

void DescreenRow(std::uint32_t level, std::int32_t channels, const std::uint8_t* const* rows,
                 std::size_t count, std::uint16_t* sums, std::uint8_t* target) {
  channels == 1 ? FilterAt<1>(level, rows, count, sums, target)
                : FilterAt<3>(level, rows, count, sums, target);
}

}  // namespace orvo::ORVO_LEVEL
