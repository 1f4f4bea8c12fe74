#include "ltkrn13n/dithering.h"

#include <array>
#include <cmath>
#include <cstdlib>

#include "common/palette_search.h"
#include "ltkrn13n/dithering_tables.h"

namespace modules {
namespace {

constexpr std::size_t kChannels = 3;
using Channels = std::array<int, kChannels>;

Channels ChannelsOf(Color color) {
  return {color.blue, color.green, color.red};
}
Color ClampedColor(const Channels& values) {
  return {ClampedTone(values[0]), ClampedTone(values[1]), ClampedTone(values[2])};
}

// The mean step from a palette's colour to its nearest neighbour, in the channel where they lie
// farthest apart: 255 for black and white, 51 for a cube of six levels.
int StepOf(std::span<const Color> palette) {
  int sum = 0;
  for (const Color& one : palette) {
    int nearest = 255;
    for (const Color& other : palette) {
      const int step = std::max({std::abs(one.blue - other.blue), std::abs(one.green - other.green),
                                 std::abs(one.red - other.red)});
      if (step != 0) nearest = std::min(nearest, step);
    }
    sum += nearest;
  }
  return sum / static_cast<int>(palette.size());
}

// --- No dithering --------------------------------------------------------------------------------

class Nearest : public Ditherer {
 public:
  explicit Nearest(std::span<const Color> palette) : search_(palette) {}

  void nextRow(std::span<const Color> colors, std::uint8_t* indexes) override {
    for (std::size_t x = 0; x < colors.size(); ++x) indexes[x] = search_.nearest(colors[x]);
  }

 private:
  PaletteSearch search_;
};

// --- By a matrix of thresholds -------------------------------------------------------------------

// Moves each colour by up to half a step of the palette, as its place in the matrix says.
class Ordered : public Ditherer {
 public:
  Ordered(std::span<const Color> palette, const Matrix& matrix) : search_(palette) {
    const int step = StepOf(palette);
    for (std::size_t y = 0; y < kMatrixSide; ++y) {
      for (std::size_t x = 0; x < kMatrixSide; ++x) {
        const int place = 2 * matrix.thresholds[y][x] + 1 - matrix.levels;
        moves_[y][x] = static_cast<int>(std::lround(place * step / (2.0 * matrix.levels)));
      }
    }
  }

  void nextRow(std::span<const Color> colors, std::uint8_t* indexes) override {
    const auto& moves = moves_[y_++ % kMatrixSide];
    for (std::size_t x = 0; x < colors.size(); ++x) {
      const int move = moves[x % kMatrixSide];
      const Channels values = ChannelsOf(colors[x]);
      indexes[x] =
          search_.nearest(ClampedColor({values[0] + move, values[1] + move, values[2] + move}));
    }
  }

 private:
  PaletteSearch search_;
  std::array<std::array<int, kMatrixSide>, kMatrixSide> moves_{};
  std::size_t y_ = 0;
};

// --- By spreading each pixel's error over pixels to come -----------------------------------------

class ErrorDiffusion : public Ditherer {
 public:
  ErrorDiffusion(std::span<const Color> palette, int divisor, std::span<const Tap> taps,
                 std::size_t width)
      : search_(palette), mostError_(static_cast<float>(StepOf(palette))) {
    for (const Tap& tap : taps) {
      shares_.push_back({tap.right, static_cast<std::size_t>(tap.down),
                         static_cast<float>(tap.weight) / static_cast<float>(divisor)});
    }
    for (Errors& row : rows_) row.assign(width + 2 * kReach, {});
  }

  void nextRow(std::span<const Color> colors, std::uint8_t* indexes) override {
    for (std::size_t x = 0; x < colors.size(); ++x) {
      const Channels pixel = ChannelsOf(colors[x]);
      const Error& inherited = rows_[0][x + kReach];
      Error wanted;
      Channels rounded;
      for (std::size_t c = 0; c < kChannels; ++c) {
        wanted[c] = static_cast<float>(pixel[c]) + inherited[c];
        rounded[c] = static_cast<int>(wanted[c] + kLift) - static_cast<int>(kLift);
      }
      indexes[x] = search_.nearest(ClampedColor(rounded));
      spread(x, wanted, ChannelsOf(search_.color(indexes[x])));
    }
    rows_[0].assign(rows_[0].size(), {});
    std::rotate(rows_.begin(), rows_.begin() + 1, rows_.end());
  }

 private:
  using Error = std::array<float, kChannels>;
  using Errors = std::vector<Error>;
  struct Share {
    int right;
    std::size_t down;
    float part;
  };
  // Makes values positive, so that cutting off their fraction rounds all of them alike to nearest.
  static constexpr float kLift = 1024.5F;

  // An error larger than a step comes from a colour outside the palette's reach. Passed on in full
  // it would pile up and smear over what follows.
  void spread(std::size_t x, const Error& wanted, const Channels& shown) {
    Error error;
    for (std::size_t c = 0; c < kChannels; ++c) {
      error[c] = std::clamp(wanted[c] - static_cast<float>(shown[c]), -mostError_, mostError_);
    }
    for (const Share& share : shares_) {
      Error& target = rows_[share.down][x + kReach + static_cast<std::size_t>(share.right)];
      for (std::size_t c = 0; c < kChannels; ++c) target[c] += error[c] * share.part;
    }
  }

  PaletteSearch search_;
  float mostError_;
  std::vector<Share> shares_;
  std::array<Errors, kReach + 1> rows_;  // errors that this row and the next ones inherit
};

}  // namespace

std::unique_ptr<Ditherer> MakeDitherer(DitheringMode mode, std::span<const Color> palette,
                                       std::size_t width) {
  const auto diffusion = [&](int divisor, std::span<const Tap> taps) {
    return std::make_unique<ErrorDiffusion>(palette, divisor, taps, width);
  };
  switch (mode) {
    case DitheringMode::kFloydSteinberg:
      return diffusion(16, kFloydSteinbergTaps);
    case DitheringMode::kStucki:
      return diffusion(42, kStuckiTaps);
    case DitheringMode::kBurkes:
      return diffusion(32, kBurkesTaps);
    case DitheringMode::kSierra:
      return diffusion(32, kSierraTaps);
    case DitheringMode::kStevensonArce:
      return diffusion(200, kStevensonArceTaps);
    case DitheringMode::kJarvisJudiceNinke:
      return diffusion(48, kJarvisJudiceNinkeTaps);
    case DitheringMode::kOrdered:
      return std::make_unique<Ordered>(palette, kDispersed);
    case DitheringMode::kClustered:
      return std::make_unique<Ordered>(palette, kClusteredDots);
    default:
      return std::make_unique<Nearest>(palette);
  }
}

}  // namespace modules
