// Each pixel waits for the one to its left and for the row above, so a row cannot be filtered many
// pixels at a time. But rows can run together, each a few pixels behind the one above: far enough
// to find that row's part of its neighbourhood written, and its own part of the rows below not.
// Sixteen rows make the lanes of a vector; a window of them, skewed so that what is worked on at
// one time lies side by side, moves along the band.

#include <cstring>

#include "imaging/adjust/sharpness_tones.h"

namespace orvo::ORVO_LEVEL {

namespace {

constexpr int kBorder = kKernelBorder;
constexpr int kLanes = 16;
constexpr int kRows = kLanes + 2 * kBorder;  // those of the band and round it
constexpr int kSlice = 24;                   // of all rows at one time, a multiple of 8 values
static_assert(kRows <= kSlice);
// Three would do; with four no sum needs what the step before has written above.
constexpr int kLag = 4;

// Slices that one step looks back at and ahead to.
constexpr int kPast = kLag * kBorder;
constexpr int kAhead = kLag * kBorder + static_cast<int>(kKernelRows) - 1;
constexpr int kSteps = 128;  // between two moves of the window

ORVO_ALWAYS_INLINE int Within(int low, int value, int high) {
  return Least(Most(value, low), high);
}

// At time t row r of the band's surroundings shows its column t - kLag * (r - 2).
constexpr int ColumnAt(int time, int row) {
  return time - kLag * (row - kBorder);
}

// at: the slice of the step, where the window of lane 0 begins in row 2.
ORVO_ALWAYS_INLINE int FilteredTone(const double* at, int lane, KernelWeights weights) {
  const auto value = [&](int row, int column) {
    return at[(kLag * (row - kBorder) + column) * kSlice + row + lane];
  };
  return ToneOfSum(KernelSum([&](int r, int c) { return weights.outer * value(r, c); },
                             [&](int r, int c) { return weights.near * value(r, c); },
                             value(kBorder, kBorder)));
}

// Centre of the window of a lane.
ORVO_ALWAYS_INLINE double& Centre(double* at, int lane) {
  return at[kBorder * kSlice + kBorder + lane];
}

void FilterAllLanes(double* at, int steps, KernelWeights weights) {
  for (int step = 0; step < steps; ++step, at += kSlice) {
    int tones[kLanes];
    for (int lane = 0; lane < kLanes; ++lane) tones[lane] = FilteredTone(at, lane, weights);
    for (int lane = 0; lane < kLanes; ++lane) Centre(at, lane) = tones[lane];
  }
}

// Up to sixteen rows of an image.
class Band {
 public:
  // first: the top row that is written.
  Band(std::uint8_t* tones, std::uint32_t width, std::uint32_t height, std::size_t stride,
       std::uint32_t first)
      : top_(tones + stride * (first - kBorder)),
        stride_(stride),
        width_(static_cast<int>(width)),
        columns_(width_ - 2 * kBorder),
        lanes_(static_cast<int>(Least<std::uint32_t>(height - kBorder - first, kLanes))) {}

  void filter(KernelWeights weights) {
    const int end = columns_ + kLag * (lanes_ - 1);
    load(-kPast, kAhead, 0);
    for (int time = 0; time < end; time += kSteps) {
      const int steps = Least(kSteps, end - time);
      load(time + kAhead, time + kAhead + steps, time);
      run(time, steps, weights);
      store(time, steps);
      std::memmove(slice(-kPast), slice(steps - kPast),
                   (kPast + kAhead) * kSlice * sizeof *slices_);
    }
  }

 private:
  [[nodiscard]] double* slice(int time) { return slices_ + (time + kPast) * kSlice; }

  // Shows the image from one time to another; the window begins at `begin`.
  void load(int from, int to, int begin) {
    for (int row = 0; row < lanes_ + 2 * kBorder; ++row) {
      const std::uint8_t* const bytes = top_ + stride_ * static_cast<std::size_t>(row);
      for (int time = from; time < to; ++time) {
        const int column = ColumnAt(time, row);
        slice(time - begin)[row] = column >= 0 && column < width_ ? bytes[column] : 0;
      }
    }
  }

  // Not all lanes have work where a band begins and ends.
  void run(int time, int steps, KernelWeights weights) {
    const int first = lanes_ < kLanes ? steps : Within(0, kLag * (kLanes - 1) - time, steps);
    const int last = Within(first, columns_ - time, steps);
    runSome(time, 0, first, weights);
    FilterAllLanes(slice(first), last - first, weights);
    runSome(time, last, steps, weights);
  }
  void runSome(int time, int from, int to, KernelWeights weights) {
    for (int step = from; step < to; ++step) {
      for (int lane = 0; lane < lanes_; ++lane) {
        const int column = time + step - kLag * lane;
        if (column < 0 || column >= columns_) continue;
        Centre(slice(step), lane) = FilteredTone(slice(step), lane, weights);
      }
    }
  }

  void store(int time, int steps) {
    for (int lane = 0; lane < lanes_; ++lane) {
      std::uint8_t* const bytes =
          top_ + stride_ * static_cast<std::size_t>(lane + kBorder) + kBorder;
      const int from = Most(time, kLag * lane);
      const int to = Least(time + steps, columns_ + kLag * lane);
      for (int t = from; t < to; ++t) {
        bytes[t - kLag * lane] = static_cast<std::uint8_t>(Centre(slice(t - time), lane));
      }
    }
  }

  std::uint8_t* top_;
  std::size_t stride_;
  int width_;
  int columns_;
  int lanes_;
  alignas(64) double slices_[(kPast + kSteps + kAhead) * kSlice] = {};
};

}  // namespace

void SharpenTonesInPlace(std::uint8_t* tones, std::uint32_t width, std::uint32_t height,
                         std::size_t stride, KernelWeights weights) {
  for (std::uint32_t y = kBorder; y < height - kBorder; y += kLanes) {
    Band(tones, width, height, stride, y).filter(weights);
  }
}

}  // namespace orvo::ORVO_LEVEL
