#include "imaginglib/exposure.h"

#include "imaginglib/results.h"
#include "imaginglib/tone_map.h"
#include "imaginglib/vector_clones.h"
#include "imaginglib/window_histogram.h"

namespace {

constexpr std::uint32_t kBorder = 2;
// The tile that a window decides about lies in its middle.
constexpr std::uint32_t kCentre = 56;
constexpr double kFullBlock = 256.0;     // pixels of a tile
constexpr double kSharePerLevel = 0.05;  // of the way to the equalising curve

using Count = WindowHistogram::Count;

// How much the tones of a block vary: 1/16 when all 256 are one, 1 when all differ, more for blocks
// that the edge cuts short.
ORVO_VECTOR_CLONES
double VarietyOf(const Count* counts) {
  std::uint32_t squares = 0;  // at most 65536
  for (int tone = 0; tone < kToneCount; ++tone) {
    squares += std::uint32_t{counts[tone]} * counts[tone];
  }
  return ImgSqrt(kFullBlock / squares);
}

// The blend of each tone with the equalising curve of a window of `pixels` pixels.
ORVO_VECTOR_CLONES
void FillMap(const Count* window, std::uint32_t pixels, double level, double variety,
             ToneMap& map) {
  const double scale = 256.0 / pixels;
  std::int32_t reached[kToneCount];
  std::int32_t count = 0;
  for (int tone = 0; tone < kToneCount; ++tone) {
    count += window[tone];
    reached[tone] = count;
  }
  for (int tone = 0; tone < kToneCount; ++tone) {
    map.set(tone,
            tone + ((((reached[tone] * scale - 1.0) - tone) * level) * variety) * kSharePerLevel);
  }
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

class Equalizer {
 public:
  Equalizer(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
            std::uint32_t height, std::uint8_t depth, std::uint8_t level)
      : source_(source),
        target_(target),
        width_(width),
        height_(height),
        depth_(depth),
        level_(level),
        stride_(WorkingStride(width, depth)),
        window_(tones_, width, height) {}

  int run() {
    maps_ = ImgAllocArray<ToneMap>(width_ / kTileSide + 1);
    luma_ = ImgAllocArray<double>(width_);
    if (maps_ == nullptr || luma_ == nullptr || !window_.allocate() ||
        !tones_.take(source_, width_, height_, depth_)) {
      return kImgNoMemory;
    }
    // At 8 bits the tones are the source's own bytes, which an in-place call changes on the way.
    const bool tonesChange = depth_ == kGrayDepth && source_ == target_;
    for (std::uint32_t top = 0; top + kCentre < height_; top += kTileSide) {
      if (top == 0 || tonesChange) {
        window_.countRows(top);
      } else {
        window_.moveDown(top);
      }
      makeMaps(top);
      const Span rows = TileSpan(top, height_);
      for (std::uint32_t y = rows.first; y < rows.end; ++y) applyMaps(y);
    }
    return kImgDone;
  }

 private:
  // The maps of a row of tiles, which can all be made before the first is applied: what a tile
  // writes lies neither in the centre of a later tile nor in columns that are still to enter the
  // window.
  void makeMaps(std::uint32_t top) {
    window_.moveToStart();
    ToneMap* map = maps_.get();
    for (std::uint32_t left = 0; left + kCentre < width_; left += kTileSide) {
      makeMap(left, top, *map++);
      window_.moveRight();
    }
  }

  void makeMap(std::uint32_t left, std::uint32_t top, ToneMap& map) {
    Count centre[kToneCount] = {};
    const std::uint32_t bottom = std::min(top + kCentre + kTileSide, height_);
    const std::uint32_t right = std::min(left + kCentre + kTileSide, width_);
    for (std::uint32_t y = top + kCentre; y < bottom; ++y) {
      const std::uint8_t* const row = tones_.row(y);
      for (std::uint32_t x = left + kCentre; x < right; ++x) ++centre[row[x]];
    }
    const std::uint32_t rows = window_.bottomOf(top) - top;
    FillMap(window_.counts(), rows * window_.columns(), level_, VarietyOf(centre), map);
  }

  void applyMaps(std::uint32_t y) {
    const std::uint8_t* const tones = tones_.row(y);
    const ToneMap* map = maps_.get();
    for (std::uint32_t left = 0; left + kCentre < width_; left += kTileSide, ++map) {
      const Span columns = TileSpan(left, width_);
      if (depth_ == kGrayDepth) {
        std::uint8_t* const target = target_ + stride_ * y;
        for (std::uint32_t x = columns.first; x < columns.end; ++x) {
          target[x] = map->truncated[tones[x]];
        }
      } else {
        for (std::uint32_t x = columns.first; x < columns.end; ++x) {
          luma_[x] = map->value[tones[x]];
        }
      }
    }
    if (depth_ == kColorDepth) {
      const std::size_t at = stride_ * y + std::size_t{kBorder} * 3;
      StoreColors(luma_.get() + kBorder, width_ - 2 * kBorder, source_ + at, target_ + at);
    }
  }

  const std::uint8_t* source_;
  std::uint8_t* target_;
  std::uint32_t width_;
  std::uint32_t height_;
  std::uint8_t depth_;
  double level_;
  std::size_t stride_;
  Tones tones_;
  WindowHistogram window_;
  ImgArray<ToneMap> maps_;  // one for each tile of a row
  ImgArray<double> luma_;   // of one row, mapped
};

}  // namespace

int ImgExposureAdjust(const std::uint8_t* source, std::uint8_t* target, std::uint32_t width,
                      std::uint32_t height, std::uint8_t depth, std::uint8_t level) noexcept {
  if (depth != kGrayDepth && depth != kColorDepth) return kImgUnsuitable;
  ImgCopy(target, source, WorkingStride(width, depth) * height);
  if (width < kWindowSide || height < kWindowSide) return kImgNotFound;
  return Equalizer(source, target, width, height, depth, level).run();
}
