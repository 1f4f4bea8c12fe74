// The order in which regions of a table are paired and merged.
//
// Every region j looks through the whole table, from its first region on, for partners i and takes
// them over. The order is part of the result, and so are two properties of it: j counts places of
// the table, so when a partner from before j leaves the table, the next region becomes j and looks
// on from where the last one stood; and the last region of the table never has a turn of its own.
#ifndef ORVO_IMAGING_REGIONS_PAIR_WALK_H
#define ORVO_IMAGING_REGIONS_PAIR_WALK_H

#include <vector>

namespace orvo {

// Regions keep their numbers here while others leave the table.
class LiveRegions {
 public:
  explicit LiveRegions(int count)
      : live_(static_cast<std::size_t>(count), true), last_(count - 1) {}

  [[nodiscard]] int last() const { return last_; }
  // The next live region, beyond last() when there is none.
  [[nodiscard]] int after(int region) const {
    do ++region;
    while (region <= last_ && !live_[static_cast<std::size_t>(region)]);
    return region;
  }
  // At least one region has to stay.
  void remove(int region) {
    live_[static_cast<std::size_t>(region)] = false;
    while (!live_[static_cast<std::size_t>(last_)]) --last_;
  }

 private:
  std::vector<bool> live_;
  int last_;
};

// pairing.begin(j, from)   region j looks for partners from region `from` on
// pairing.next()           its next partner, Pairing::kNone when there is none
// pairing.merge(j, i)      region i goes into j and is no partner any more
// onTurn(j)                region j begins a turn of its own
template <class Pairing, class OnTurn>
void WalkPairs(int count, Pairing& pairing, OnTurn onTurn) {
  if (count < 2) return;
  LiveRegions live(count);
  for (int j = 0; j < live.last(); j = live.after(j)) {
    onTurn(j);
    pairing.begin(j, 0);
    for (int i = pairing.next(); i != Pairing::kNone; i = pairing.next()) {
      pairing.merge(j, i);
      live.remove(i);
      if (i < j && j != live.last()) {
        j = live.after(j);
        pairing.begin(j, i + 1);
      }
    }
  }
}

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_PAIR_WALK_H
