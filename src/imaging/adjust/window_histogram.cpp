#include "imaging/adjust/window_histogram.h"

#include "imaging/adjust/count_sums.h"

namespace orvo {

bool WindowHistogram::allocate() {
  blocks_ = ImgAllocArray<BlockCount>(kBands * bandBlocks_ * kToneCount);
  groups_ = ImgAllocArray<Count>(groupCount_ * kToneCount);
  return blocks_ != nullptr && groups_ != nullptr;
}

void WindowHistogram::start() {
  std::fill_n(groups_.get(), groupCount_ * kToneCount, Count{0});
  for (std::uint32_t row = 0; row < kWindowSide; row += kBlockSide) enterBand(row);
}

void WindowHistogram::moveDown() {
  for (std::uint32_t i = 0; i < kTileSide; i += kBlockSide) {
    leaveBand(top_ + i);
    enterBand(top_ + i + kWindowSide);
  }
  top_ += kTileSide;
}

void WindowHistogram::recount(std::uint32_t firstRow, std::uint32_t endRow) {
  for (std::uint32_t row = firstRow / kBlockSide * kBlockSide; row < endRow; row += kBlockSide) {
    leaveBand(row);
    enterBand(row);
  }
}

void WindowHistogram::moveToStart() {
  std::fill_n(window_, kToneCount, Count{0});
  next_ = 0;
  columns_ = 0;
  while (next_ < kWindowSide) enterGroup();
}

void WindowHistogram::moveRight() {
  ORVO_BEST(SubtractCounts)(group(next_ - kWindowSide), window_);
  columns_ -= kTileSide;
  enterGroup();
}

std::uint32_t WindowHistogram::squaredCounts(std::uint32_t left, std::uint32_t top) const {
  return ORVO_BEST(SquaresOfPairs)(block(left, top), block(left, top + kBlockSide));
}

void WindowHistogram::enterBand(std::uint32_t row) {
  countBand(row);
  for (std::uint32_t x = 0; x < width_; x += kTileSide) ORVO_BEST(AddPair)(block(x, row), group(x));
}

void WindowHistogram::leaveBand(std::uint32_t row) {
  for (std::uint32_t x = 0; x < width_; x += kTileSide)
    ORVO_BEST(SubtractPair)(block(x, row), group(x));
}

// A few blocks at a time, which stay in the nearest cache, and of them in turn: neighbours, which
// often have one tone, would wait for each other's count.
void WindowHistogram::countBand(std::uint32_t row) {
  constexpr std::uint32_t kColumns = 32 * kBlockSide;
  BlockCount* const blocks = block(0, row);
  std::fill_n(blocks, bandBlocks_ * kToneCount, BlockCount{0});
  const std::uint32_t end = std::min(row + kBlockSide, height_);
  for (std::uint32_t first = 0; first < width_; first += kColumns) {
    const std::uint32_t last = std::min(first + kColumns, width_);
    for (std::uint32_t y = row; y < end; ++y) {
      const std::uint8_t* const tones = tones_.row(y);
      for (std::uint32_t i = 0; i < kBlockSide; ++i) {
        for (std::uint32_t x = first + i; x < last; x += kBlockSide) {
          ++blocks[std::size_t{x / kBlockSide} * kToneCount + tones[x]];
        }
      }
    }
  }
}

void WindowHistogram::enterGroup() {
  if (next_ < width_) {
    ORVO_BEST(AddCounts)(group(next_), window_);
    columns_ += std::min(kTileSide, width_ - next_);
  }
  next_ += kTileSide;
}

}  // namespace orvo
