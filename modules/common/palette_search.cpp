#include "common/palette_search.h"

#include <cstdlib>
#include <new>

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
    : entryCount_(entries.size()), cells_(std::size_t{1} << 3 * kCellBits) {
  for (std::size_t i = 0; i < entryCount_; ++i) {
    candidates_.push_back({entries[i], static_cast<std::uint8_t>(i)});
  }
}

void PaletteSearch::fill(Cell& cell, Color color) noexcept {
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
  const auto entryAt = [this](std::size_t i) { return candidates_[i].color; };
  for (std::size_t i = 0; i < entryCount_; ++i) {
    bound = std::min(bound, reachOf(entryAt(i)).farthest);
  }
  const std::size_t first = candidates_.size();
  try {
    for (std::size_t i = 0; i < entryCount_; ++i) {
      if (reachOf(entryAt(i)).nearest <= bound) candidates_.push_back(candidates_[i]);
    }
    cell = {first, candidates_.size() - first};
  } catch (const std::bad_alloc&) {
    candidates_.resize(first);
    cell = {0, entryCount_};
  }
}

}  // namespace modules
