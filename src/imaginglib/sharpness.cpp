// Sharpness: a 5x5 convolution on tones, or on the luma of colour images, whose chroma stays.
//
// The kernel has only three different weights: `outer` in the ring of sixteen, `near` beside, above
// and below the centre, 1 in the centre; the four diagonal neighbours weigh nothing. So each row of
// values is multiplied once by each weight, and a pixel of the result is a sum of 21 ready
// products. The sum runs row by row from the top left in double precision; that order is part of
// the result.
#include "imaginglib/sharpness.h"

#include <algorithm>

#include "imaginglib/luma.h"
#include "imaginglib/results.h"
#include "imaginglib/utilities.h"
#include "imaginglib/vector_clones.h"
#include "imaginglib/working_image.h"

namespace {

constexpr std::uint32_t kBorder = 2;
constexpr std::uint32_t kWindow = 5;

struct Weights {
  double outer;
  double near;
};

// Images with a larger side below 1536 pixels are sharpened less.
double SizeFactor(std::uint32_t width, std::uint32_t height) {
  const std::uint32_t steps = std::max(width, height) >> 9;
  return steps < 4 ? 1.0 / (4 - steps) : 1.0;
}

Weights WeightsFor(std::uint32_t width, std::uint32_t height, std::uint8_t level) {
  const double factor = SizeFactor(width, height);
  const double strength = level;
  return {(-strength * factor) * 0.01, (factor * strength) * 0.04};
}

// One row of values with its products.
struct ProductRow {
  double* value;
  double* outer;
  double* near;
};

// The rows round the one in work, taken in turns. All of them are read from the source before the
// row in their middle is written, which is what lets source and target be one buffer.
class ProductRing {
 public:
  [[nodiscard]] bool allocate(std::size_t width) {
    width_ = width;
    memory_ = ImgAllocArray<double>(width * 3 * kWindow);
    return memory_ != nullptr;
  }
  [[nodiscard]] ProductRow row(std::uint32_t y) const {
    double* const first = memory_.get() + width_ * 3 * (y % kWindow);
    return {first, first + width_, first + width_ * 2};
  }

 private:
  std::size_t width_ = 0;
  ImgArray<double> memory_;
};

ORVO_VECTOR_CLONES
void FillFromTones(const std::uint8_t* tones, std::size_t width, Weights weights, ProductRow row) {
  for (std::size_t x = 0; x < width; ++x) {
    const double value = tones[x];
    row.value[x] = value;
    row.outer[x] = weights.outer * value;
    row.near[x] = weights.near * value;
  }
}

ORVO_VECTOR_CLONES
void FillFromLuma(const std::uint8_t* pixels, std::size_t width, Weights weights, ProductRow row) {
  for (std::size_t x = 0; x < width; ++x) {
    const double blue = pixels[3 * x];
    const double green = pixels[3 * x + 1];
    const double red = pixels[3 * x + 2];
    const double value = LumaOf(red, green, blue);
    row.value[x] = value;
    row.outer[x] = weights.outer * value;
    row.near[x] = weights.near * value;
  }
}

// Filtered values of columns 2 to width - 3; sums[i] belongs to column i + 2.
ORVO_VECTOR_CLONES
void SumRow(const ProductRing& ring, std::uint32_t y, std::size_t count, double* __restrict sums) {
  const double* const above2 = ring.row(y - 2).outer;
  const double* const above1 = ring.row(y - 1).outer;
  const double* const above1Near = ring.row(y - 1).near;
  const double* const here = ring.row(y).outer;
  const double* const hereNear = ring.row(y).near;
  const double* const centre = ring.row(y).value;
  const double* const below1 = ring.row(y + 1).outer;
  const double* const below1Near = ring.row(y + 1).near;
  const double* const below2 = ring.row(y + 2).outer;
  for (std::size_t i = 0; i < count; ++i) {
    sums[i] = above2[i] + above2[i + 1] + above2[i + 2] + above2[i + 3] + above2[i + 4] +
              above1[i] + above1Near[i + 2] + above1[i + 4] + here[i] + hereNear[i + 1] +
              centre[i + 2] + hereNear[i + 3] + here[i + 4] + below1[i] + below1Near[i + 2] +
              below1[i + 4] + below2[i] + below2[i + 1] + below2[i + 2] + below2[i + 3] +
              below2[i + 4];
  }
}

// A tone is limited first and truncated after.
inline std::uint8_t ToneByte(double sum) {
  const double low = sum < 0.0 ? 0.0 : sum;
  return static_cast<std::uint8_t>(static_cast<int>(low > 255.0 ? 255.0 : low));
}

ORVO_VECTOR_CLONES
void StoreTones(const double* sums, std::size_t count, std::uint8_t* tones) {
  for (std::size_t i = 0; i < count; ++i) tones[i] = ToneByte(sums[i]);
}

// Filters all rows through a ring; the source's rows are never read after they were written.
int FilterRows(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
               std::uint32_t height, std::uint8_t depth, Weights weights) {
  ProductRing ring;
  const std::size_t count = width - 2 * kBorder;
  const auto sums = ImgAllocArray<double>(count);
  if (!ring.allocate(width) || sums == nullptr) return kImgNoMemory;
  const std::size_t stride = WorkingStride(width, depth);
  const std::size_t skip = kBorder * (depth / 8U);
  const auto fill = [&](std::uint32_t y) {
    const std::uint8_t* const row = source + stride * y;
    depth == kGrayDepth ? FillFromTones(row, width, weights, ring.row(y))
                        : FillFromLuma(row, width, weights, ring.row(y));
  };
  for (std::uint32_t y = 0; y < kWindow - 1; ++y) fill(y);
  for (std::uint32_t y = kBorder; y < height - kBorder; ++y) {
    fill(y + kBorder);
    SumRow(ring, y, count, sums.get());
    const std::size_t first = stride * y + skip;
    if (depth == kGrayDepth) {
      StoreTones(sums.get(), count, target + first);
    } else {
      StoreColors(sums.get(), count, source + first, target + first);
    }
  }
  return kImgDone;
}

// Tones in place: each neighbourhood is read afresh, so that it holds what was just written. A
// pixel waits for the one to its left; so several rows run together, each far enough behind the row
// above to find that row's part of its neighbourhood written, and its own part of the rows below
// not.
class TonesInPlace {
 public:
  TonesInPlace(std::uint8_t* tones, std::uint32_t width, std::uint32_t height, Weights weights)
      : tones_(tones),
        columns_(width - 2 * kBorder),
        lastRow_(height - kBorder),
        stride_(WorkingStride(width, kGrayDepth)) {
    for (int tone = 0; tone < 256; ++tone) {
      outer_[tone] = weights.outer * tone;
      near_[tone] = weights.near * tone;
    }
  }

  void run() {
    constexpr std::uint32_t kRows = 4;
    constexpr std::uint32_t kLag = 3;
    std::uint32_t y = kBorder;
    for (; y + kRows <= lastRow_; y += kRows) {
      for (std::uint32_t step = 0; step < columns_ + kLag * (kRows - 1); ++step) {
        for (std::uint32_t row = 0; row < kRows; ++row) {
          // Wraps to a large number where the row has not begun.
          const std::uint32_t column = step - kLag * row;
          if (column < columns_) filter(column, y + row);
        }
      }
    }
    for (; y < lastRow_; ++y) {
      for (std::uint32_t column = 0; column < columns_; ++column) filter(column, y);
    }
  }

 private:
  // column: of the window's left edge.
  void filter(std::uint32_t column, std::uint32_t y) {
    const std::uint8_t* const above2 = tones_ + stride_ * (y - 2) + column;
    const std::uint8_t* const above1 = above2 + stride_;
    std::uint8_t* const here = tones_ + stride_ * y + column;
    const std::uint8_t* const below1 = here + stride_;
    const std::uint8_t* const below2 = below1 + stride_;
    const double sum =
        outer_[above2[0]] + outer_[above2[1]] + outer_[above2[2]] + outer_[above2[3]] +
        outer_[above2[4]] + outer_[above1[0]] + near_[above1[2]] + outer_[above1[4]] +
        outer_[here[0]] + near_[here[1]] + here[2] + near_[here[3]] + outer_[here[4]] +
        outer_[below1[0]] + near_[below1[2]] + outer_[below1[4]] + outer_[below2[0]] +
        outer_[below2[1]] + outer_[below2[2]] + outer_[below2[3]] + outer_[below2[4]];
    here[kBorder] = ToneByte(sum);
  }

  std::uint8_t* tones_;
  std::uint32_t columns_;
  std::uint32_t lastRow_;
  std::size_t stride_;
  double outer_[256];
  double near_[256];
};

}  // namespace

int ImgSharpnessAdjust(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                       std::uint32_t height, std::uint8_t depth, std::uint8_t level) noexcept {
  if (depth != kGrayDepth && depth != kColorDepth) return kImgUnsuitable;
  ImgCopy(target, source, WorkingStride(width, depth) * height);
  if (width < kWindow || height < kWindow) return kImgDone;
  const Weights weights = WeightsFor(width, height, level);
  if (depth == kGrayDepth && source == target) {
    TonesInPlace(target, width, height, weights).run();
    return kImgDone;
  }
  return FilterRows(source, target, width, height, depth, weights);
}
