// Sharpness: a 5x5 convolution on tones, or on the luma of colour images, whose chroma stays.
#include "imaging/adjust/sharpness.h"

#include <algorithm>

#include "imaging/adjust/luma.h"
#include "imaging/adjust/sharpness_luma.h"
#include "imaging/adjust/sharpness_tones.h"
#include "imaging/results.h"
#include "imaging/utilities.h"
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
  [[nodiscard]] bool allocate(std::size_t width) {
    width_ = width;
    memory_ = ImgAllocArray<double>(width * 2 * kKernelRows);
    return memory_ != nullptr;
  }
  [[nodiscard]] LumaRow row(std::uint32_t y) const {
    double* const first = memory_.get() + width_ * 2 * (y % kKernelRows);
    return {first, first + width_};
  }

 private:
  std::size_t width_ = 0;
  ImgArray<double> memory_;
};

int SharpenColors(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                  std::uint32_t height, KernelWeights weights) {
  LumaRing ring;
  const std::size_t count = width - 2 * kBorder;
  const auto sums = ImgAllocArray<double>(count);
  if (!ring.allocate(width) || sums == nullptr) return kImgNoMemory;
  const std::size_t stride = WorkingStride(width, kColorDepth);
  const auto fill = [&](std::uint32_t y) {
    ORVO_BEST(FillLumaRow)(source + stride * y, width, weights, ring.row(y));
  };
  for (std::uint32_t y = 0; y < kKernelRows - 1; ++y) fill(y);
  for (std::uint32_t y = kBorder; y < height - kBorder; ++y) {
    fill(y + kBorder);
    const LumaRow rows[] = {ring.row(y - 2), ring.row(y - 1), ring.row(y), ring.row(y + 1),
                            ring.row(y + 2)};
    ORVO_BEST(SumLumaRows)(rows, count, weights, sums.get());
    const std::size_t first = stride * y + 3 * kBorder;
    ORVO_BEST(StoreColors)(sums.get(), count, source + first, target + first);
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
    ORVO_BEST(SharpenTonesInPlace)(target, width, height, WorkingStride(width, depth), weights);
  } else {
    ORVO_BEST(SharpenTones)(source, target, width, height, WorkingStride(width, depth), weights);
  }
  return kImgDone;
}

}  // namespace orvo
