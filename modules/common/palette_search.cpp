#include "common/palette_search.h"

#include <cstdlib>

namespace modules {
namespace {

// Squared distances from an entry to the nearest and the farthest colour of a cell, summed up
// channel by channel.
struct Reach {
  int nearest = 0;
  int farthest = 0;

  void add(int tone, int from, int to) {
    const int outside = std::max({from - tone, tone - to, 0});
    const int across = std::max(std::abs(tone - from), std::abs(tone - to));
    nearest += outside * outside;
    farthest += across * across;
  }
};

}  // namespace

PaletteSearch::PaletteSearch(std::span<const Color> entries)
    : entries_(entries.begin(), entries.end()), cells_(std::size_t{1} << 3 * kCellBits) {}

void PaletteSearch::fill(Cell& cell, Color color) {
  constexpr int kSide = 1 << kCellShift;
  const auto reachOf = [&](Color entry) {
    Reach reach;
    const auto add = [&](int tone, int inside) {
      const int from = inside / kSide * kSide;
      reach.add(tone, from, from + kSide - 1);
    };
    add(entry.blue, color.blue);
    add(entry.green, color.green);
    add(entry.red, color.red);
    return reach;
  };
  // Some entry lies at most this far from every colour of the cell.
  int bound = std::numeric_limits<int>::max();
  for (const Color& entry : entries_) bound = std::min(bound, reachOf(entry).farthest);
  cell.first = candidates_.size();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (reachOf(entries_[i]).nearest > bound) continue;
    candidates_.push_back({entries_[i], static_cast<std::uint8_t>(i)});
  }
  cell.count = candidates_.size() - cell.first;
}

}  // namespace modules
