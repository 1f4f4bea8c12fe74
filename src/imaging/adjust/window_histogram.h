// The tone histogram of a window of 128x128 pixels that moves over an image in steps of 16.
//
// Each pixel is counted once, in a block of 8x8 pixels. Groups of 16 columns over the rows of the
// window are sums of blocks: moving down by 16 rows drops two rows of blocks and adds two. The
// window is a sum of groups: moving right adds one and drops one.
#ifndef ORVO_IMAGING_ADJUST_WINDOW_HISTOGRAM_H
#define ORVO_IMAGING_ADJUST_WINDOW_HISTOGRAM_H

#include <algorithm>

#include "imaging/adjust/tones.h"

namespace orvo {

constexpr std::uint32_t kWindowSide = 128;
constexpr std::uint32_t kTileSide = 16;

class WindowHistogram {
 public:
  // Counts of up to 128x128 pixels fit into 16 bits, those of a block into 8.
  using Count = std::uint16_t;
  using BlockCount = std::uint8_t;

  // The tones are read when rows are counted.
  WindowHistogram(const Tones& tones, std::uint32_t width, std::uint32_t height)
      : tones_(tones),
        width_(width),
        height_(height),
        groupCount_((width + kTileSide - 1) / kTileSide),
        bandBlocks_(2 * groupCount_ + 1) {}

  [[nodiscard]] bool allocate();

  // Counts the rows of the first row of tiles.
  void start();
  // Moves to the next row of tiles.
  void moveDown();
  // Counts rows of the window again whose tones have changed.
  void recount(std::uint32_t firstRow, std::uint32_t endRow);

  // Puts the window at the left edge.
  void moveToStart();
  // For windows whose left column lies in the image.
  void moveRight();

  [[nodiscard]] const Count* counts() const { return window_; }
  // Of the image in the window.
  [[nodiscard]] std::uint32_t pixels() const {
    return columns_ * (std::min(top_ + kWindowSide, height_) - top_);
  }

  // Sum of the squared counts in 16x16 pixels of the window, at most 65536. left and top are
  // multiples of 8.
  [[nodiscard]] std::uint32_t squaredCounts(std::uint32_t left, std::uint32_t top) const;

 private:
  static constexpr std::uint32_t kBlockSide = 8;
  static constexpr std::uint32_t kBands = kWindowSide / kBlockSide;  // rows of blocks

  // The block that begins there, empty beyond the image.
  [[nodiscard]] BlockCount* block(std::uint32_t column, std::uint32_t row) const {
    const std::size_t band = row / kBlockSide % kBands;
    return blocks_.get() + (band * bandBlocks_ + column / kBlockSide) * kToneCount;
  }
  [[nodiscard]] Count* group(std::uint32_t column) const {
    return groups_.get() + std::size_t{column / kTileSide} * kToneCount;
  }
  void enterBand(std::uint32_t row);
  void leaveBand(std::uint32_t row);
  void countBand(std::uint32_t row);
  void enterGroup();

  const Tones& tones_;
  std::uint32_t width_;
  std::uint32_t height_;
  std::size_t groupCount_;
  std::size_t bandBlocks_;       // two a group, and one for pairs that begin in the last
  ImgArray<BlockCount> blocks_;  // of the bands in the window, which take turns
  ImgArray<Count> groups_;
  Count window_[kToneCount] = {};
  std::uint32_t top_ = 0;
  std::uint32_t next_ = 0;     // the column that enters next
  std::uint32_t columns_ = 0;  // of the image in the window
};

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_WINDOW_HISTOGRAM_H
