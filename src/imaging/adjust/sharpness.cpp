// Sharpness: a 5x5 convolution on tones, or on the luma of colour images, whose chroma stays.
#include "imaging/adjust/sharpness.h"

#include <algorithm>

#include "imaging/adjust/luma.h"
#include "imaging/adjust/sharpness_kernel.h"
#include "imaging/adjust/sharpness_tones.h"
#include "imaging/results.h"
#include "imaging/utilities.h"
#include "imaging/vector_clones.h"
#include "imaging/working_image.h"

namespace orvo {

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

// Rows of luma with their products, taken in turns. All of them are read from the source before the
// row in their middle is written, which is what lets source and target be one buffer.
class LumaRing {
 public:
  struct Row {
    double* value;
    double* outer;
  };

  [[nodiscard]] bool allocate(std::size_t width) {
    width_ = width;
    memory_ = ImgAllocArray<double>(width * 2 * kKernelRows);
    return memory_ != nullptr;
  }
  [[nodiscard]] Row row(std::uint32_t y) const {
    double* const first = memory_.get() + width_ * 2 * (y % kKernelRows);
    return {first, first + width_};
  }

 private:
  std::size_t width_ = 0;
  ImgArray<double> memory_;
};

ORVO_VECTOR_CLONES
void FillRow(const std::uint8_t* pixels, std::size_t width, KernelWeights weights,
             LumaRing::Row row) {
  for (std::size_t x = 0; x < width; ++x) {
    const double blue = pixels[3 * x];
    const double green = pixels[3 * x + 1];
    const double red = pixels[3 * x + 2];
    const double value = LumaOf(red, green, blue);
    row.value[x] = value;
    row.outer[x] = weights.outer * value;
  }
}

// Filtered luma of columns 2 to width - 3; sums[i] belongs to column i + 2.
ORVO_VECTOR_CLONES
void SumRow(const LumaRing& ring, std::uint32_t y, std::size_t count, KernelWeights weights,
            double* __restrict sums) {
  const double* values[kKernelRows];
  const double* outers[kKernelRows];
  for (std::uint32_t i = 0; i < kKernelRows; ++i) {
    values[i] = ring.row(y - kBorder + i).value;
    outers[i] = ring.row(y - kBorder + i).outer;
  }
  for (std::size_t i = 0; i < count; ++i) {
    sums[i] = KernelSum(
        [&](std::size_t row, std::size_t column) { return outers[row][i + column]; },
        [&](std::size_t row, std::size_t column) { return weights.near * values[row][i + column]; },
        values[kBorder][i + kBorder]);
  }
}

int SharpenColors(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                  std::uint32_t height, KernelWeights weights) {
  LumaRing ring;
  const std::size_t count = width - 2 * kBorder;
  const auto sums = ImgAllocArray<double>(count);
  if (!ring.allocate(width) || sums == nullptr) return kImgNoMemory;
  const std::size_t stride = WorkingStride(width, kColorDepth);
  const auto fill = [&](std::uint32_t y) {
    FillRow(source + stride * y, width, weights, ring.row(y));
  };
  for (std::uint32_t y = 0; y < kKernelRows - 1; ++y) fill(y);
  for (std::uint32_t y = kBorder; y < height - kBorder; ++y) {
    fill(y + kBorder);
    SumRow(ring, y, count, weights, sums.get());
    const std::size_t first = stride * y + 3 * kBorder;
    StoreColors(sums.get(), count, source + first, target + first);
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
  if (depth == kColorDepth) return SharpenColors(source, target, width, height, weights);
  if (source == target) {
    SharpenTonesInPlace(target, width, height, weights);
  } else {
    SharpenTones(source, target, width, height, weights);
  }
  return kImgDone;
}

}  // namespace orvo
