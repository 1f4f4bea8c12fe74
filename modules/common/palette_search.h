// Finds the palette entry that shows a colour best.
#ifndef MODULES_COMMON_PALETTE_SEARCH_H
#define MODULES_COMMON_PALETTE_SEARCH_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "common/color.h"

namespace modules {

// The cube of colours is cut into cells. Each lists the few entries that can be the nearest one to
// any of its colours, from the first time that it is asked. Nothing fails while colours are looked
// for: a cell whose list there is no memory for searches all entries.
class PaletteSearch {
 public:
  // 1 to 256 entries.
  explicit PaletteSearch(std::span<const Color> entries);

  [[nodiscard]] Color color(std::uint8_t index) const { return candidates_[index].color; }
  // The first entry of the least squared distance.
  std::uint8_t nearest(Color color) noexcept {
    Cell& cell = cells_[CellOf(color)];
    if (cell.count == 0) fill(cell, color);
    const std::span<const Candidate> candidates(candidates_.data() + cell.first, cell.count);
    int least = std::numeric_limits<int>::max();
    std::uint8_t best = 0;
    for (const Candidate& candidate : candidates) {
      const int blue = candidate.color.blue - color.blue;
      const int green = candidate.color.green - color.green;
      const int red = candidate.color.red - color.red;
      const int distance = blue * blue + green * green + red * red;
      if (distance < least) {
        least = distance;
        best = candidate.index;
      }
    }
    return best;
  }

 private:
  static constexpr int kCellBits = 4;  // of a channel: 16 cells each way
  static constexpr int kCellShift = 8 - kCellBits;

  struct Candidate {
    Color color;
    std::uint8_t index;
  };
  struct Cell {
    std::size_t first = 0;  // into candidates_
    std::size_t count = 0;  // 0 until the cell is asked
  };

  static std::size_t CellOf(Color color) {
    const auto part = [](std::uint8_t tone) {
      return static_cast<std::size_t>(tone >> kCellShift);
    };
    return (part(color.red) << kCellBits | part(color.green)) << kCellBits | part(color.blue);
  }
  void fill(Cell& cell, Color color) noexcept;

  std::size_t entryCount_;
  std::vector<Cell> cells_;
  std::vector<Candidate> candidates_;  // all entries, then those of each cell in the same order
};

}  // namespace modules

#endif  // MODULES_COMMON_PALETTE_SEARCH_H
