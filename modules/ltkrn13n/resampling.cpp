#include "ltkrn13n/resampling.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace modules {
namespace {

// Where the middle of a new sample lies between the middles of old ones.
struct Place {
  long long index;  // of the old sample at its left
  double fraction;  // of the way to the next one, below 1
};

Place PlaceOf(int target, int from, int to) {
  const double place = (target + 0.5) * from / to - 0.5;
  const double index = std::floor(place);
  return {static_cast<long long>(index), place - index};
}

// Weights of the four samples round a place in a cubic convolution with slope -1/2, which gives
// straight lines and parabolas back as they are.
std::array<double, 4> CubicWeights(double t) {
  return {((-0.5 * t + 1) * t - 0.5) * t, (1.5 * t - 2.5) * t * t + 1,
          ((-1.5 * t + 2) * t + 0.5) * t, (0.5 * t - 0.5) * t * t};
}

}  // namespace

Resampling Resampling::Bilinear(int from, int to) {
  Resampling result;
  for (int i = 0; i < to; ++i) {
    const Place place = PlaceOf(i, from, to);
    const std::array<double, 2> weights{1 - place.fraction, place.fraction};
    result.append(place.index, weights, from);
  }
  return result;
}

Resampling Resampling::Best(int from, int to) {
  return to < from ? Covering(from, to) : Cubic(from, to);
}

// Counted in parts of 1/to of an old sample, so that all edges are whole numbers.
Resampling Resampling::Covering(int from, int to) {
  Resampling result;
  std::vector<double> weights;
  for (long long i = 0; i < to; ++i) {
    const long long begin = i * from;
    const long long end = begin + from;
    const long long first = begin / to;
    weights.clear();
    for (long long j = first; j * to < end; ++j) {
      const long long shared = std::min(end, (j + 1) * to) - std::max(begin, j * to);
      weights.push_back(static_cast<double>(shared) / from);
    }
    result.append(first, weights, from);
  }
  return result;
}

Resampling Resampling::Cubic(int from, int to) {
  Resampling result;
  for (int i = 0; i < to; ++i) {
    const Place place = PlaceOf(i, from, to);
    result.append(place.index - 1, CubicWeights(place.fraction), from);
  }
  return result;
}

void Resampling::append(long long first, std::span<const double> weights, int from) {
  const long long last = first + static_cast<long long>(weights.size()) - 1;
  const long long begin = std::clamp(first, 0LL, from - 1LL);
  const long long end = std::clamp(last, 0LL, from - 1LL);
  const Entry entry{static_cast<std::size_t>(begin), weights_.size(),
                    static_cast<std::size_t>(end - begin + 1)};
  weights_.resize(entry.offset + entry.count);
  for (long long i = first; i <= last; ++i) {
    const auto target = static_cast<std::size_t>(std::clamp(i, begin, end) - begin);
    weights_[entry.offset + target] +=
        static_cast<float>(weights[static_cast<std::size_t>(i - first)]);
  }
  entries_.push_back(entry);
}

}  // namespace modules
