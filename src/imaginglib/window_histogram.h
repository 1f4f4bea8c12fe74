// The tone histogram of a window of 128x128 pixels that moves over an image in steps of 16.
//
// It is kept as one histogram for each group of 16 columns over the window's rows. Moving right
// adds one group and drops one; moving to the next row of tiles adds 16 rows to each group and
// drops 16, so that a pixel is counted twice in all and not once for each of the eight rows of
// tiles that see it.
#ifndef ORVO_IMAGINGLIB_WINDOW_HISTOGRAM_H
#define ORVO_IMAGINGLIB_WINDOW_HISTOGRAM_H

#include <algorithm>

#include "imaginglib/tones.h"

constexpr std::uint32_t kWindowSide = 128;
constexpr std::uint32_t kTileSide = 16;

class WindowHistogram {
 public:
  // Counts of up to 128x128 pixels fit into 16 bits.
  using Count = std::uint16_t;

  WindowHistogram(const Tones& tones, std::uint32_t width, std::uint32_t height)
      : tones_(tones), width_(width), height_(height) {}

  [[nodiscard]] bool allocate() {
    groups_ = ImgAllocArray<Count>(std::size_t{groupCount()} * kToneCount);
    return groups_ != nullptr;
  }

  // Counts the rows of the first row of tiles, or of any when the tones of rows that were counted
  // have changed since.
  void countRows(std::uint32_t top) {
    std::fill_n(groups_.get(), std::size_t{groupCount()} * kToneCount, Count{0});
    for (std::uint32_t y = top; y < bottomOf(top); ++y) addRow(y, 1);
  }
  // Moves from the row of tiles above to the one at `top`.
  void moveDown(std::uint32_t top) {
    for (std::uint32_t y = top - kTileSide; y < top; ++y) addRow(y, Count(-1));
    for (std::uint32_t y = bottomOf(top - kTileSide); y < bottomOf(top); ++y) addRow(y, 1);
  }

  // Puts the window at the left edge.
  void moveToStart() {
    std::fill_n(window_, kToneCount, Count{0});
    next_ = 0;
    columns_ = 0;
    while (next_ < kWindowSide) enterGroup();
  }
  // For windows whose left column lies in the image.
  void moveRight() {
    const Count* const leaving = group(next_ - kWindowSide);
    for (int tone = 0; tone < kToneCount; ++tone) {
      window_[tone] = static_cast<Count>(window_[tone] - leaving[tone]);
    }
    columns_ -= kTileSide;
    enterGroup();
  }

  [[nodiscard]] const Count* counts() const { return window_; }
  [[nodiscard]] std::uint32_t columns() const { return columns_; }
  [[nodiscard]] std::uint32_t bottomOf(std::uint32_t top) const {
    return std::min(top + kWindowSide, height_);
  }

 private:
  [[nodiscard]] std::uint32_t groupCount() const { return (width_ + kTileSide - 1) / kTileSide; }
  [[nodiscard]] Count* group(std::uint32_t column) const {
    return groups_.get() + std::size_t{column / kTileSide} * kToneCount;
  }

  void addRow(std::uint32_t y, Count change) {
    const std::uint8_t* const row = tones_.row(y);
    for (std::uint32_t first = 0; first < width_; first += kTileSide) {
      Count* const counts = group(first);
      const std::uint32_t end = std::min(first + kTileSide, width_);
      for (std::uint32_t x = first; x < end; ++x) {
        counts[row[x]] = static_cast<Count>(counts[row[x]] + change);
      }
    }
  }

  void enterGroup() {
    if (next_ < width_) {
      const Count* const entering = group(next_);
      for (int tone = 0; tone < kToneCount; ++tone) {
        window_[tone] = static_cast<Count>(window_[tone] + entering[tone]);
      }
      columns_ += std::min(kTileSide, width_ - next_);
    }
    next_ += kTileSide;
  }

  const Tones& tones_;
  std::uint32_t width_;
  std::uint32_t height_;
  ImgArray<Count> groups_;
  Count window_[kToneCount] = {};
  std::uint32_t next_ = 0;     // the column that enters next
  std::uint32_t columns_ = 0;  // of the image in the window
};

#endif  // ORVO_IMAGINGLIB_WINDOW_HISTOGRAM_H
