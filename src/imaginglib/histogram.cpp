#include "imaginglib/histogram.h"

#include "imaginglib/results.h"
#include "imaginglib/tone_map.h"

namespace {

constexpr int kMostCut = 25;  // tones at each end

struct Counts {
  std::uint32_t of[kToneCount] = {};
};

// Several tables take turns, so that neighbours of one tone do not wait for each other's count.
Counts CountTones(const Tones& tones, std::uint32_t width, std::uint32_t height) {
  constexpr std::size_t kTables = 4;
  Counts tables[kTables];
  for (std::uint32_t y = 0; y < height; ++y) {
    const std::uint8_t* const row = tones.row(y);
    std::size_t x = 0;
    for (; x + kTables <= width; x += kTables) {
      for (std::size_t t = 0; t < kTables; ++t) ++tables[t].of[row[x + t]];
    }
    for (; x < width; ++x) ++tables[0].of[row[x]];
  }
  for (int tone = 0; tone < kToneCount; ++tone) {
    for (std::size_t t = 1; t < kTables; ++t) tables[0].of[tone] += tables[t].of[tone];
  }
  return tables[0];
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

template <class Tone>
void Apply(const ToneMap<Tone>& map, const std::uint8_t* tones, std::uint32_t width, Tone* mapped) {
  for (std::uint32_t x = 0; x < width; ++x) mapped[x] = map.of[tones[x]];
}

}  // namespace

int ImgHistogramAdjust(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                       std::uint32_t height, std::uint8_t depth, std::uint8_t level) noexcept {
  if (depth != kGrayDepth && depth != kColorDepth) return kImgUnsuitable;
  const std::size_t stride = WorkingStride(width, depth);
  ImgCopy(target, source, stride * height);
  Tones tones;
  if (!tones.take(source, width, height, depth)) return kImgNoMemory;
  const auto luma = ImgAllocArray<double>(width);
  if (luma == nullptr) return kImgNoMemory;
  const std::uint32_t clipped = ((width / 10) * (height / 10) * level) / 2;
  const Counts counts = CountTones(tones, width, height);
  if (depth == kGrayDepth) {
    const auto map = StretchFor<std::uint8_t>(counts, clipped);
    for (std::uint32_t y = 0; y < height; ++y) {
      Apply(map, tones.row(y), width, target + stride * y);
    }
  } else {
    const auto map = StretchFor<double>(counts, clipped);
    for (std::uint32_t y = 0; y < height; ++y) {
      Apply(map, tones.row(y), width, luma.get());
      StoreColors(luma.get(), width, source + stride * y, target + stride * y);
    }
  }
  return kImgDone;
}
