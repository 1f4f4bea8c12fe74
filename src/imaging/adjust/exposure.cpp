#include "imaging/adjust/exposure.h"

#include <type_traits>

#include "imaging/adjust/exposure_curve.h"
#include "imaging/adjust/window_histogram.h"
#include "imaging/results.h"

namespace orvo {

namespace {

constexpr std::uint32_t kBorder = 2;
// The tile that a window decides about lies in its middle.
constexpr std::uint32_t kCentre = 56;
constexpr double kFullBlock = 256.0;  // pixels of a tile

// How much the tones of a block vary: 1/16 when all 256 are one, 1 when all differ, more for blocks
// that the edge cuts short.
double VarietyOf(std::uint32_t squaredCounts) {
  return ImgSqrt(kFullBlock / squaredCounts);
}

struct Span {
  std::uint32_t first;
  std::uint32_t end;
};

// The rows or columns that a tile writes. The first tile serves the margin before it too.
Span TileSpan(std::uint32_t origin, std::uint32_t side) {
  const std::uint32_t first = origin == 0 ? kBorder : origin + kCentre;
  return {first, std::min(origin + kCentre + kTileSide, side - kBorder)};
}

// Tone: what a map gives, a byte of the target at 8 bits, luma of colours.
template <class Tone>
class Equalizer {
 public:
  Equalizer(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
            std::uint32_t height, std::uint8_t level)
      : source_(source),
        target_(target),
        width_(width),
        height_(height),
        level_(level),
        stride_(WorkingStride(width, kDepth)),
        window_(tones_, width, height) {}

  int run() {
    maps_ = ImgAllocArray<ToneMap<Tone>>(width_ / kTileSide + 1);
    luma_ = ImgAllocArray<double>(width_);
    if (maps_ == nullptr || luma_ == nullptr || !window_.allocate() ||
        !tones_.take(source_, width_, height_, kDepth)) {
      return kImgNoMemory;
    }
    // At 8 bits the tones are the source's own bytes, which an in-place call changes on the way.
    const bool tonesChange = kDepth == kGrayDepth && source_ == target_;
    window_.start();
    for (std::uint32_t top = 0; top + kCentre < height_; top += kTileSide) {
      makeMaps(top);
      const Span rows = TileSpan(top, height_);
      for (std::uint32_t y = rows.first; y < rows.end; ++y) applyMaps(y);
      if (tonesChange) window_.recount(rows.first, rows.end);
      window_.moveDown();
    }
    return kImgDone;
  }

 private:
  static constexpr int kDepth = std::is_same_v<Tone, double> ? kColorDepth : kGrayDepth;

  // The maps of a row of tiles, which can all be made before the first is applied: what a tile
  // writes lies neither in the centre of a later tile nor in columns that are still to enter the
  // window.
  void makeMaps(std::uint32_t top) {
    window_.moveToStart();
    ToneMap<Tone>* map = maps_.get();
    for (std::uint32_t left = 0; left + kCentre < width_; left += kTileSide) {
      const double variety = VarietyOf(window_.squaredCounts(left + kCentre, top + kCentre));
      fillMap({window_.counts(), window_.pixels(), level_, variety}, *map++);
      window_.moveRight();
    }
  }

  static void fillMap(const ExposureCurve& curve, ToneMap<Tone>& map) {
    if constexpr (kDepth == kColorDepth) {
      ORVO_BEST(FillLumaMap)(curve, map);
    } else {
      ORVO_BEST(FillToneMap)(curve, map);
    }
  }

  void applyMaps(std::uint32_t y) {
    const std::uint8_t* const tones = tones_.row(y);
    const ToneMap<Tone>* map = maps_.get();
    Tone* const mapped = mappedRow(y);
    for (std::uint32_t left = 0; left + kCentre < width_; left += kTileSide, ++map) {
      const Span columns = TileSpan(left, width_);
      for (std::uint32_t x = columns.first; x < columns.end; ++x) mapped[x] = map->of[tones[x]];
    }
    if constexpr (kDepth == kColorDepth) {
      const std::size_t at = stride_ * y + std::size_t{kBorder} * 3;
      ORVO_BEST(StoreColors)(mapped + kBorder, width_ - 2 * kBorder, source_ + at, target_ + at);
    }
  }
  Tone* mappedRow(std::uint32_t y) const {
    if constexpr (kDepth == kColorDepth) {
      return luma_.get();
    } else {
      return target_ + stride_ * y;
    }
  }

  const std::uint8_t* source_;
  std::uint8_t* target_;
  std::uint32_t width_;
  std::uint32_t height_;
  double level_;
  std::size_t stride_;
  Tones tones_;
  WindowHistogram window_;
  ImgArray<ToneMap<Tone>> maps_;  // one for each tile of a row
  ImgArray<double> luma_;         // of one row, mapped
};

}  // namespace

int ImgExposureAdjust(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                      std::uint32_t height, std::uint8_t depth, std::uint8_t level) noexcept {
  if (depth != kGrayDepth && depth != kColorDepth) return kImgUnsuitable;
  ImgCopy(target, source, WorkingStride(width, depth) * height);
  if (width < kWindowSide || height < kWindowSide) return kImgNotFound;
  return depth == kGrayDepth ? Equalizer<std::uint8_t>(source, target, width, height, level).run()
                             : Equalizer<double>(source, target, width, height, level).run();
}

}  // namespace orvo
