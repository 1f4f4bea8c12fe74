// Weights for resampling a line of samples to another length.
#ifndef MODULES_LTKRN13N_RESAMPLING_H
#define MODULES_LTKRN13N_RESAMPLING_H

#include <cstddef>
#include <span>
#include <vector>

namespace modules {

// How every new sample is made from a few neighbouring old ones.
class Resampling {
 public:
  // The mean of two neighbours, by distance.
  static Resampling Bilinear(int from, int to);
  // What each new sample covers when there are fewer of them, else a cubic through four neighbours.
  static Resampling Best(int from, int to);

  // Old samples first, first + 1 ... with their weights, whose sum is 1.
  struct Mix {
    std::size_t first;
    std::span<const float> weights;
  };
  [[nodiscard]] Mix mix(std::size_t target) const {
    const Entry& entry = entries_[target];
    return {entry.first, {weights_.data() + entry.offset, entry.count}};
  }
  [[nodiscard]] std::size_t size() const { return entries_.size(); }

 private:
  struct Entry {
    std::size_t first;
    std::size_t offset;  // into weights_
    std::size_t count;
  };

  static Resampling Covering(int from, int to);
  static Resampling Cubic(int from, int to);
  // Adds the next new sample; weights that fall outside 0..from - 1 go to the sample at that end.
  void append(long long first, std::span<const double> weights, int from);

  std::vector<Entry> entries_;
  std::vector<float> weights_;
};

}  // namespace modules

#endif  // MODULES_LTKRN13N_RESAMPLING_H
