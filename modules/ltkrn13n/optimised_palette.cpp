// Median cut by variance: the box of colours that its mean stands for worst is cut in two across
// its longest extent, where the two means then stand for the halves best, until there are enough
// boxes.
#include "ltkrn13n/optimised_palette.h"

#include <algorithm>
#include <span>
#include <utility>

namespace modules {
namespace {

constexpr std::size_t kChannels = 3;
constexpr std::size_t kTones = 256;

// Pixels of a stretch of bins, and sums of their values in one channel.
struct Moments {
  double pixels = 0;
  double sum = 0;
  double squares = 0;

  void add(const ColorBin& bin, std::size_t channel) {
    const auto weight = static_cast<double>(bin.pixels);
    const double mean = bin.mean(channel);
    pixels += weight;
    sum += weight * mean;
    squares += weight * mean * mean;
  }
  // Sum of the squared distances from the mean.
  [[nodiscard]] double error() const { return squares - sum * sum / pixels; }
};

struct Box {
  std::span<ColorBin> bins;
  std::size_t longest = 0;  // the channel of the largest error
  double error = 0;         // of all channels

  explicit Box(std::span<ColorBin> content) : bins(content) {
    double most = -1;
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      Moments moments;
      for (const ColorBin& bin : bins) moments.add(bin, channel);
      error += moments.error();
      if (moments.error() > most) {
        most = moments.error();
        longest = channel;
      }
    }
    // Sums round, so that a box of one colour may seem to have a trace of an error.
    if (bins.size() == 1) error = 0;
  }
};

// The number of bins, sorted along the channel, that make the first half.
std::size_t BestCut(std::span<const ColorBin> bins, std::size_t channel) {
  Moments whole;
  for (const ColorBin& bin : bins) whole.add(bin, channel);
  Moments first;
  std::size_t best = 1;
  double most = -1;
  for (std::size_t i = 0; i + 1 < bins.size(); ++i) {
    first.add(bins[i], channel);
    const double restSum = whole.sum - first.sum;
    // The larger, the less error the two halves leave: the squares' sum is the same for every cut.
    const double explained =
        first.sum * first.sum / first.pixels + restSum * restSum / (whole.pixels - first.pixels);
    if (explained > most) {
      most = explained;
      best = i + 1;
    }
  }
  return best;
}

std::vector<Box> Cut(std::vector<ColorBin>& bins, std::size_t most) {
  std::vector<Box> boxes{Box(bins)};
  while (boxes.size() < most) {
    const auto worst = std::ranges::max_element(boxes, {}, &Box::error);
    if (worst->error <= 0) break;
    const std::span<ColorBin> content = worst->bins;
    const std::size_t channel = worst->longest;
    std::ranges::sort(content, {}, [channel](const ColorBin& bin) { return bin.mean(channel); });
    const std::size_t cut = BestCut(content, channel);
    *worst = Box(content.first(cut));
    boxes.emplace_back(content.subspan(cut));
  }
  return boxes;
}

Color MeanOf(std::span<const ColorBin> bins) {
  std::uint64_t pixels = 0;
  std::array<std::uint64_t, kChannels> sums{};
  for (const ColorBin& bin : bins) {
    pixels += bin.pixels;
    for (std::size_t channel = 0; channel < kChannels; ++channel)
      sums[channel] += bin.sums[channel];
  }
  const auto mean = [&](std::size_t channel) {
    return static_cast<std::uint8_t>((sums[channel] + pixels / 2) / pixels);
  };
  return {mean(0), mean(1), mean(2)};
}

std::vector<Color> AllTones() {
  std::vector<Color> tones;
  for (std::size_t tone = 0; tone < kTones; ++tone) {
    tones.push_back(GrayOf(static_cast<std::uint8_t>(tone)));
  }
  return tones;
}

}  // namespace

ChosenPalette OptimisedPalette(const ColorHistogram& histogram, std::size_t most) {
  std::vector<ColorBin> bins = histogram.bins();
  const bool holdsAll = histogram.isExact() && bins.size() <= most;
  std::ranges::sort(bins, {}, &ColorBin::key);
  if (holdsAll && most == kTones && std::ranges::all_of(bins, [](const ColorBin& bin) {
        return IsGray(MeanOf({&bin, 1}));
      })) {
    return {AllTones(), true};
  }
  std::vector<Color> colors;
  if (holdsAll) {
    for (const ColorBin& bin : bins) colors.push_back(MeanOf({&bin, 1}));
  } else {
    for (const Box& box : Cut(bins, most)) colors.push_back(MeanOf(box.bins));
  }
  return {std::move(colors), holdsAll};
}

}  // namespace modules
