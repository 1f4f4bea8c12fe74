#include "pictures/orientation.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace modules {
namespace {

// Where the pixels of a turned image come from: `turned` exchanges columns and lines, the mirrors
// then count the source's columns or lines from the other end. Lines count from the top.
struct Turn {
  bool turned;
  bool mirrorsColumns;
  bool mirrorsLines;
};

Turn TurnOf(int orientation) {
  const bool columns = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
  const bool lines = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
  return {SwapsSides(orientation), columns, lines};
}

template <int bytes>
struct WholeBytes {
  static void copy(const std::uint8_t* from, int fromX, std::uint8_t* to, int toX) {
    std::memcpy(to + std::ptrdiff_t{toX} * bytes, from + std::ptrdiff_t{fromX} * bytes, bytes);
  }
};

// The target's rows are zero, so bits only need setting.
template <unsigned bits>
struct PartsOfBytes {
  static std::size_t bitOf(int x) { return static_cast<std::size_t>(x) * bits; }
  static unsigned shift(int x) { return static_cast<unsigned>(8 - bits - bitOf(x) % 8); }
  static void copy(const std::uint8_t* from, int fromX, std::uint8_t* to, int toX) {
    const unsigned value = from[bitOf(fromX) / 8] >> shift(fromX) & ((1U << bits) - 1U);
    const std::size_t byte = bitOf(toX) / 8;
    to[byte] = static_cast<std::uint8_t>(to[byte] | value << shift(toX));
  }
};

// In squares, so that the source's rows stay in the cache while its columns become lines.
template <class Pixel>
void CopyTurned(const Pixels& from, const Pixels& to, Turn turn, Pixel /*kind*/) {
  constexpr int kSquare = 64;
  const auto copySquare = [&](int left, int top) {
    const int right = std::min(left + kSquare, to.width);
    const int bottom = std::min(top + kSquare, to.height);
    for (int y = top; y < bottom; ++y) {
      std::uint8_t* const line = to.row(to.height - 1 - y);
      for (int x = left; x < right; ++x) {
        const int column = turn.turned ? y : x;
        const int fromX = turn.mirrorsColumns ? from.width - 1 - column : column;
        const int fromTop = turn.turned ? x : y;
        const int fromY = turn.mirrorsLines ? fromTop : from.height - 1 - fromTop;
        Pixel::copy(from.row(fromY), fromX, line, x);
      }
    }
  };
  for (int top = 0; top < to.height; top += kSquare) {
    for (int left = 0; left < to.width; left += kSquare) copySquare(left, top);
  }
}

void CopyTurned(const Pixels& from, const Pixels& to, Turn turn) {
  switch (from.depth) {
    case 1:
      return CopyTurned(from, to, turn, PartsOfBytes<1>());
    case 4:
      return CopyTurned(from, to, turn, PartsOfBytes<4>());
    case 8:
      return CopyTurned(from, to, turn, WholeBytes<1>());
    case 16:
      return CopyTurned(from, to, turn, WholeBytes<2>());
    case 24:
      return CopyTurned(from, to, turn, WholeBytes<3>());
    default:
      return CopyTurned(from, to, turn, WholeBytes<4>());
  }
}

}  // namespace

OwnedBlock TurnedUpright(OwnedBlock block, int orientation) {
  const LockedDib source(block.get());
  if (!source) return OwnedBlock();
  BITMAPINFOHEADER header = source.header();
  const Turn turn = TurnOf(orientation);
  if (turn.turned) {
    std::swap(header.biWidth, header.biHeight);
    std::swap(header.biXPelsPerMeter, header.biYPelsPerMeter);
  }
  OwnedBlock result = NewDibOf(header);
  const LockedDib target(result.get());
  if (!target) return OwnedBlock();
  if (source->palette != nullptr) {
    std::memcpy(target->palette, source->palette, orvo::DibPaletteBytes(source->depth));
  }
  CopyTurned(*source, *target, turn);
  return result;
}

}  // namespace modules
