#include "imaging/regions/near_pairs.h"

#include <numeric>
#include <utility>

namespace orvo {

namespace {

std::size_t At(int region) {
  return static_cast<std::size_t>(region);
}

}  // namespace

NearPairs::NearPairs(Segments& segments, int reach)
    : segments_(segments), links_(segments.regions.size()), owners_(segments.regions.size()) {
  std::iota(owners_.begin(), owners_.end(), 0);
  const std::size_t width = At(segments.width);
  const std::size_t distance = At(reach);
  for (std::size_t row = 0; row < segments.labels.size(); row += width) {
    for (std::size_t x = distance; x < width; ++x) link(row + x - distance, row + x);
  }
  if (reach >= segments.height) return;
  for (std::size_t below = distance * width; below < segments.labels.size(); ++below) {
    link(below - distance * width, below);
  }
}

void NearPairs::link(std::size_t a, std::size_t b) {
  const int one = segments_.labels[a];
  const int other = segments_.labels[b];
  if (one == Segments::kNone || other == Segments::kNone || one == other) return;
  std::vector<int>& links = links_[At(one)];
  if (!links.empty() && links.back() == other) return;
  links.push_back(other);
  links_[At(other)].push_back(one);
}

void NearPairs::begin(int j, int from) {
  j_ = j;
  from_ = from;
  partners_ = {};
  addPartners(links_[At(j)]);
}

int NearPairs::next() {
  while (!partners_.empty()) {
    const int partner = partners_.top();
    partners_.pop();
    if (owners_[At(partner)] != partner) continue;
    from_ = partner + 1;
    return partner;
  }
  return kNone;
}

void NearPairs::merge(int j, int i) {
  segments_.regions[At(j)].Absorb(std::move(segments_.regions[At(i)]));
  owners_[At(i)] = j;
  const std::vector<int> taken = std::exchange(links_[At(i)], {});
  addPartners(taken);
  std::vector<int>& links = links_[At(j)];
  links.insert(links.end(), taken.begin(), taken.end());
}

void NearPairs::addPartners(const std::vector<int>& links) {
  for (const int part : links) {
    const int owner = ownerOf(part);
    if (owner != j_ && owner >= from_) partners_.push(owner);
  }
}

// Shortens the way for the next one who asks.
int NearPairs::ownerOf(int part) {
  while (owners_[At(part)] != part) part = owners_[At(part)] = owners_[At(owners_[At(part)])];
  return part;
}

}  // namespace orvo
