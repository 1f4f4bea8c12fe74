#include "common/pixel_turns.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "common/pixel_formats.h"

namespace modules {
namespace {

// One band of a target, and where it comes from.
class Band {
 public:
  Band(const Pixels& source, const Pixels& target, PixelTurn turn, int first)
      : source_(source),
        target_(target),
        turn_(turn),
        first_(first),
        rows_(std::min(kTurnedBand, target.height - first)) {}

  // In squares, so that both images' rows stay in the nearest cache.
  template <class Format>
  void drawSwapped(Format format) const {
    std::array<std::uint8_t*, kTurnedBand> to{};
    for (int i = 0; i < rows_; ++i) to[static_cast<std::size_t>(i)] = target_.row(first_ + i);
    for (int left = 0; left < target_.width; left += kTurnedBand) {
      const int right = std::min(left + kTurnedBand, target_.width);
      for (int x = left; x < right; ++x) {
        const std::uint8_t* const from = sourceRow(x);
        for (int i = 0; i < rows_; ++i) {
          format.write(to[static_cast<std::size_t>(i)], static_cast<std::size_t>(x),
                       format.read(from, static_cast<std::size_t>(sourceColumn(first_ + i))));
        }
      }
    }
  }

  template <class Format>
  void drawStraight(Format format) const {
    for (int y = first_; y < first_ + rows_; ++y) {
      const std::uint8_t* const from = sourceRow(y);
      std::uint8_t* const to = target_.row(y);
      if (!turn_.mirrorsColumns) {
        copyRow(from, to);
        continue;
      }
      for (int x = 0; x < target_.width; ++x) {
        format.write(to, static_cast<std::size_t>(x),
                     format.read(from, static_cast<std::size_t>(sourceColumn(x))));
      }
    }
  }

  // Eight rows of eight bits at a time.
  void drawSwappedBits() const {
    for (int top = first_; top < first_ + rows_; top += 8) {
      const int rows = std::min(8, first_ + rows_ - top);
      const int column = turn_.mirrorsColumns ? source_.width - 8 - top : top;
      for (int left = 0; left < target_.width; left += 8) {
        std::uint64_t square = 0;
        for (int x = left; x < left + 8; ++x) {
          square = square << 8 | (x < target_.width ? eightBits(sourceRow(x), column) : 0);
        }
        square = Transposed(square);
        for (int i = 0; i < rows; ++i) {
          const int line = turn_.mirrorsColumns ? i : 7 - i;
          target_.row(top + i)[left / 8] = static_cast<std::uint8_t>(square >> 8 * line);
        }
      }
    }
  }

 private:
  void copyRow(const std::uint8_t* from, std::uint8_t* to) const {
    const std::size_t bytes = source_.rowBytes();
    std::memcpy(to, from, bytes);
    // What fills the last byte up is no pixel.
    const std::size_t unused =
        8 * bytes - static_cast<std::size_t>(source_.width) * static_cast<unsigned>(source_.depth);
    to[bytes - 1] = static_cast<std::uint8_t>(to[bytes - 1] >> unused << unused);
  }
  [[nodiscard]] int sourceColumn(int i) const {
    return turn_.mirrorsColumns ? source_.width - 1 - i : i;
  }
  [[nodiscard]] const std::uint8_t* sourceRow(int i) const {
    return source_.row(turn_.mirrorsRows ? source_.height - 1 - i : i);
  }
  // From a column on, the first in the highest; columns that the row has not are 0.
  [[nodiscard]] unsigned eightBits(const std::uint8_t* row, int column) const {
    const int byte = (column + 8) / 8 - 1;  // column is -7 or more
    const auto at = [&](int i) {
      return i >= 0 && static_cast<std::size_t>(i) < source_.rowBytes() ? unsigned{row[i]} : 0U;
    };
    const unsigned both = at(byte) << 8 | at(byte + 1);
    return both >> (8 - (column - 8 * byte)) & 0xFFU;
  }
  // Of a square of 8 x 8 bits, the first row and column in the highest: halves, quarters and
  // eighths beside the diagonal change places.
  static std::uint64_t Transposed(std::uint64_t square) {
    constexpr struct {
      int shift;
      std::uint64_t mask;
    } kSteps[] = {{7, 0x00AA00AA00AA00AA}, {14, 0x0000CCCC0000CCCC}, {28, 0x00000000F0F0F0F0}};
    for (const auto& [shift, mask] : kSteps) {
      const std::uint64_t changed = (square ^ square >> shift) & mask;
      square ^= changed ^ changed << shift;
    }
    return square;
  }

  const Pixels& source_;
  const Pixels& target_;
  PixelTurn turn_;
  int first_;
  int rows_;
};

}  // namespace

void DrawTurnedBand(const Pixels& source, const Pixels& target, PixelTurn turn, int firstRow) {
  const Band band(source, target, turn, firstRow);
  if (turn.swapsSides && source.depth == 1) return band.drawSwappedBits();
  WithFormat(source.depth, [&](auto format) {
    turn.swapsSides ? band.drawSwapped(format) : band.drawStraight(format);
  });
}

}  // namespace modules
