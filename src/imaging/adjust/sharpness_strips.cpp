// An image is filtered in strips. A strip's columns are dealt out to eight lanes, one after the
// other, and lie in memory lane beside lane: so the eight lanes are a vector whose neighbours to
// the left and right are whole vectors too, which loads them twice as fast as pixels side by side.
#include <cstddef>
#include <cstring>

#include "imaging/adjust/sharpness_tones.h"

namespace orvo::ORVO_LEVEL {

namespace {

constexpr std::uint32_t kBorder = kKernelBorder;
constexpr std::size_t kLanes = 8;
constexpr std::size_t kColumns = 32;  // of a lane; with more of them the rows outgrow the cache
constexpr std::size_t kWindows = kColumns + 2 * kBorder;
constexpr std::size_t kSums = kLanes * kColumns;
constexpr std::size_t kValues = kLanes * kWindows;
constexpr std::size_t kBlock = 8;  // bytes that are turned at once, each way

struct StripRow {
  double value[kValues];
  double outer[kValues];
};

// Turns eight rows of eight bytes into columns.
ORVO_ALWAYS_INLINE void Turn(const std::uint8_t* from, std::size_t fromStride, std::uint8_t* to,
                             std::size_t toStride) {
  std::uint64_t rows[kBlock];
  for (std::size_t i = 0; i < kBlock; ++i) std::memcpy(&rows[i], from + i * fromStride, kBlock);
  // Swaps quarters, then quarters of these, then single bytes.
  const auto swapBetween = [&](std::size_t step, std::uint64_t low) {
    for (std::size_t i = 0; i < kBlock; ++i) {
      if ((i & step) != 0) continue;
      const std::uint64_t differing = (rows[i] >> (8 * step) ^ rows[i + step]) & low;
      rows[i + step] ^= differing;
      rows[i] ^= differing << (8 * step);
    }
  };
  swapBetween(4, 0x00000000FFFFFFFF);
  swapBetween(2, 0x0000FFFF0000FFFF);
  swapBetween(1, 0x00FF00FF00FF00FF);
  for (std::size_t i = 0; i < kBlock; ++i) std::memcpy(to + i * toStride, &rows[i], kBlock);
}

// Two functions of their own: inside the strip's, they would run out of registers, a third slower.

// tones: of the strip and the borders beside it.
[[gnu::noinline]] void FillRow(const std::uint8_t* tones, KernelWeights weights, StripRow& row) {
  std::uint8_t dealt[kValues];
  for (std::size_t column = 0; column < kWindows; column += kBlock) {
    const std::size_t at = Least(column, kWindows - kBlock);
    Turn(tones + at, kColumns, dealt + at * kLanes, kLanes);
  }
  for (std::size_t i = 0; i < kValues; ++i) {
    row.value[i] = dealt[i];
    row.outer[i] = weights.outer * row.value[i];
  }
}

// rows: those of the window, from the top. tones: of the strip.
[[gnu::noinline]] void SumRow(const StripRow* const (&rows)[kKernelRows], KernelWeights weights,
                              std::uint8_t* tones) {
  alignas(64) double sums[kSums];
  for (std::size_t i = 0; i < kSums; ++i) {
    sums[i] = KernelSum(
        [&](std::size_t row, std::size_t column) { return rows[row]->outer[i + column * kLanes]; },
        [&](std::size_t row, std::size_t column) {
          return weights.near * rows[row]->value[i + column * kLanes];
        },
        rows[kBorder]->value[i + kBorder * kLanes]);
  }
  std::uint8_t dealt[kSums];
  for (std::size_t i = 0; i < kSums; ++i) dealt[i] = static_cast<std::uint8_t>(ToneOfSum(sums[i]));
  for (std::size_t column = 0; column < kColumns; column += kBlock) {
    Turn(dealt + column * kLanes, kLanes, tones + column, kColumns);
  }
}

// One strip of an image. The last one may be narrower than its lanes; its rows go through a buffer.
class Strip {
 public:
  Strip(const std::uint8_t* source, std::uint8_t* target, std::size_t stride, std::size_t columns,
        KernelWeights weights)
      : source_(source), target_(target), stride_(stride), columns_(columns), weights_(weights) {}

  void filter(std::uint32_t height) {
    for (std::uint32_t y = 0; y < kKernelRows - 1; ++y) fill(y);
    for (std::uint32_t y = kBorder; y < height - kBorder; ++y) {
      fill(y + kBorder);
      sum(y);
    }
  }

 private:
  [[nodiscard]] bool isWhole() const { return columns_ == kSums; }
  [[nodiscard]] StripRow& row(std::uint32_t y) { return rows_[y % kKernelRows]; }

  void fill(std::uint32_t y) {
    const std::uint8_t* const tones = source_ + stride_ * y;
    if (!isWhole()) std::memcpy(buffer_, tones, columns_ + 2 * kBorder);
    FillRow(isWhole() ? tones : buffer_, weights_, row(y));
  }

  void sum(std::uint32_t y) {
    const StripRow* window[kKernelRows];
    for (std::uint32_t i = 0; i < kKernelRows; ++i) window[i] = &row(y - kBorder + i);
    std::uint8_t* const tones = target_ + stride_ * y + kBorder;
    SumRow(window, weights_, isWhole() ? tones : buffer_);
    if (!isWhole()) std::memcpy(tones, buffer_, columns_);
  }

  const std::uint8_t* source_;
  std::uint8_t* target_;
  std::size_t stride_;
  std::size_t columns_;
  KernelWeights weights_;
  std::uint8_t buffer_[kSums + 2 * kBorder] = {};
  alignas(64) StripRow rows_[kKernelRows];
};

}  // namespace

void SharpenTones(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                  std::uint32_t height, std::size_t stride, KernelWeights weights) {
  const std::size_t columns = width - 2 * kBorder;
  for (std::size_t x = 0; x < columns; x += kSums) {
    Strip(source + x, target + x, stride, Least(columns - x, kSums), weights).filter(height);
  }
}

}  // namespace orvo::ORVO_LEVEL
