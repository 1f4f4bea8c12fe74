// Sharpness: a 5x5 convolution on tones, or on the luma of colour images, whose chroma stays.
// Each row of values is multiplied once by each weight of the kernel.
#include "imaginglib/sharpness.h"

#include <algorithm>

#include "imaginglib/luma.h"
#include "imaginglib/results.h"
#include "imaginglib/sharpness_in_place.h"
#include "imaginglib/sharpness_kernel.h"
#include "imaginglib/utilities.h"
#include "imaginglib/vector_clones.h"
#include "imaginglib/working_image.h"

namespace {

constexpr std::uint32_t kBorder = kKernelBorder;

// Images with a larger side below 1536 pixels are sharpened less.
double SizeFactor(std::uint32_t width, std::uint32_t height) {
  const std::uint32_t steps = std::max(width, height) >> 9;
  return steps < 4 ? 1.0 / (4 - steps) : 1.0;
}

KernelWeights WeightsFor(std::uint32_t width, std::uint32_t height, std::uint8_t level) {
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
    memory_ = ImgAllocArray<double>(width * 3 * kKernelRows);
    return memory_ != nullptr;
  }
  [[nodiscard]] ProductRow row(std::uint32_t y) const {
    double* const first = memory_.get() + width_ * 3 * (y % kKernelRows);
    return {first, first + width_, first + width_ * 2};
  }

 private:
  std::size_t width_ = 0;
  ImgArray<double> memory_;
};

ORVO_VECTOR_CLONES
void FillFromTones(const std::uint8_t* tones, std::size_t width, KernelWeights weights,
                   ProductRow row) {
  for (std::size_t x = 0; x < width; ++x) {
    const double value = tones[x];
    row.value[x] = value;
    row.outer[x] = weights.outer * value;
    row.near[x] = weights.near * value;
  }
}

ORVO_VECTOR_CLONES
void FillFromLuma(const std::uint8_t* pixels, std::size_t width, KernelWeights weights,
                  ProductRow row) {
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
  const double* outer[kKernelRows];
  for (std::uint32_t row = 0; row < kKernelRows; ++row)
    outer[row] = ring.row(y - kBorder + row).outer;
  const double* const near[] = {nullptr, ring.row(y - 1).near, ring.row(y).near,
                                ring.row(y + 1).near};
  const double* const centre = ring.row(y).value + kBorder;
  for (std::size_t i = 0; i < count; ++i) {
    sums[i] = KernelSum([&](std::size_t row, std::size_t column) { return outer[row][i + column]; },
                        [&](std::size_t row, std::size_t column) { return near[row][i + column]; },
                        centre[i]);
  }
}

ORVO_VECTOR_CLONES
void StoreTones(const double* sums, std::size_t count, std::uint8_t* tones) {
  for (std::size_t i = 0; i < count; ++i) {
    tones[i] = static_cast<std::uint8_t>(ToneOfSum(sums[i]));
  }
}

// Filters all rows through a ring; the source's rows are never read after they were written.
int FilterRows(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
               std::uint32_t height, std::uint8_t depth, KernelWeights weights) {
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
  for (std::uint32_t y = 0; y < kKernelRows - 1; ++y) fill(y);
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

}  // namespace

int ImgSharpnessAdjust(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                       std::uint32_t height, std::uint8_t depth, std::uint8_t level) noexcept {
  if (depth != kGrayDepth && depth != kColorDepth) return kImgUnsuitable;
  ImgCopy(target, source, WorkingStride(width, depth) * height);
  if (width < kKernelRows || height < kKernelRows) return kImgDone;
  const KernelWeights weights = WeightsFor(width, height, level);
  if (depth == kGrayDepth && source == target) {
    SharpenTonesInPlace(target, width, height, weights);
    return kImgDone;
  }
  return FilterRows(source, target, width, height, depth, weights);
}
