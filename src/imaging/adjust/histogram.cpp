#include "imaging/adjust/histogram.h"

#include <cstring>

#include "imaging/adjust/tone_map.h"
#include "imaging/results.h"

namespace orvo {

namespace {

constexpr int kMostCut = 25;  // tones at each end

struct Counts {
  std::uint32_t of[kToneCount] = {};
};

// Pairs of neighbouring bytes, so that one step counts or maps two pixels. Which of the two comes
// first in a pair does not matter.
using Pair = std::uint16_t;
constexpr std::size_t kPairCount = 65536;
constexpr std::uint32_t kStep = 8;  // pixels

// False when there is no memory.
bool CountTones(const Tones& tones, std::uint32_t width, std::uint32_t height, Counts& counts) {
  // Two tables take turns, so that equal pairs do not wait for each other's count.
  const auto tables = ImgAllocArray<std::uint32_t>(2 * kPairCount);
  if (tables == nullptr) return false;
  std::uint32_t* const even = tables.get();
  std::uint32_t* const odd = even + kPairCount;
  for (std::uint32_t y = 0; y < height; ++y) {
    const std::uint8_t* const row = tones.row(y);
    std::uint32_t x = 0;
    for (; x + kStep <= width; x += kStep) {
      Pair pairs[kStep / 2];
      std::memcpy(pairs, row + x, kStep);
      for (std::uint32_t i = 0; i < kStep / 2; i += 2) {
        ++even[pairs[i]];
        ++odd[pairs[i + 1]];
      }
    }
    for (; x < width; ++x) ++counts.of[row[x]];
  }
  for (std::size_t pair = 0; pair < kPairCount; ++pair) {
    const std::uint32_t count = even[pair] + odd[pair];
    counts.of[pair % kToneCount] += count;
    counts.of[pair / kToneCount] += count;
  }
  return true;
}

// How many tones may go at one end before more than `target` pixels are cut; from tone `first` on
// in steps of `step`.
int CutAt(const Counts& counts, int first, int step, std::uint32_t target) {
  std::uint32_t sum = 0;
  int cut = 0;
  while (cut < kMostCut) {
    sum += counts.of[first + step * cut];
    if (sum > target) break;
    ++cut;
  }
  return cut;
}

template <class Tone>
ToneMap<Tone> StretchFor(const Counts& counts, std::uint32_t target) {
  const int low = CutAt(counts, 0, 1, target);
  const int high = CutAt(counts, kToneCount - 1, -1, target);
  const int range = 255 - high - low;
  ToneMap<Tone> map;
  for (int tone = 0; tone < kToneCount; ++tone) {
    SetMapped(((tone - low) * 255.0) / range, map.of[tone]);
  }
  return map;
}

// False when there is no memory.
bool MapTones(const ToneMap<std::uint8_t>& map, const std::uint8_t* source, std::uint8_t* target,
              std::uint32_t width, std::uint32_t height) {
  const auto pairMap = ImgAllocArray<Pair>(kPairCount);
  if (pairMap == nullptr) return false;
  for (std::size_t pair = 0; pair < kPairCount; ++pair) {
    pairMap[pair] = static_cast<Pair>(map.of[pair % kToneCount] | map.of[pair / kToneCount] << 8);
  }
  const std::size_t stride = WorkingStride(width, kGrayDepth);
  for (std::size_t y = 0; y < height; ++y) {
    const std::uint8_t* const from = source + stride * y;
    std::uint8_t* const to = target + stride * y;
    std::uint32_t x = 0;
    for (; x + kStep <= width; x += kStep) {
      Pair pairs[kStep / 2];
      std::memcpy(pairs, from + x, kStep);
      for (Pair& pair : pairs) pair = pairMap[pair];
      std::memcpy(to + x, pairs, kStep);
    }
    for (; x < width; ++x) to[x] = map.of[from[x]];
  }
  return true;
}

// False when there is no memory.
bool MapLuma(const ToneMap<double>& map, const Tones& tones, const std::uint8_t* source,
             std::uint8_t* target, std::uint32_t width, std::uint32_t height) {
  const auto luma = ImgAllocArray<double>(width);
  if (luma == nullptr) return false;
  const std::size_t stride = WorkingStride(width, kColorDepth);
  for (std::uint32_t y = 0; y < height; ++y) {
    const std::uint8_t* const row = tones.row(y);
    for (std::uint32_t x = 0; x < width; ++x) luma[x] = map.of[row[x]];
    ORVO_BEST(StoreColors)(luma.get(), width, source + stride * y, target + stride * y);
  }
  return true;
}

}  // namespace

int ImgHistogramAdjust(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                       std::uint32_t height, std::uint8_t depth, std::uint8_t level) noexcept {
  if (depth != kGrayDepth && depth != kColorDepth) return kImgUnsuitable;
  ImgCopy(target, source, WorkingStride(width, depth) * height);
  Tones tones;
  Counts counts;
  if (!tones.take(source, width, height, depth) || !CountTones(tones, width, height, counts)) {
    return kImgNoMemory;
  }
  const std::uint32_t clipped = ((width / 10) * (height / 10) * level) / 2;
  const bool done =
      depth == kGrayDepth
          ? MapTones(StretchFor<std::uint8_t>(counts, clipped), source, target, width, height)
          : MapLuma(StretchFor<double>(counts, clipped), tones, source, target, width, height);
  return done ? kImgDone : kImgNoMemory;
}

}  // namespace orvo
