#include "pictures/orientation.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "common/pixel_formats.h"

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

// In squares, so that the source's rows stay in the cache while its columns become lines.
template <class Format>
void CopyTurned(const Pixels& from, const Pixels& to, Turn turn, Format format) {
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
        const auto pixel = format.read(from.row(fromY), static_cast<std::size_t>(fromX));
        format.write(line, static_cast<std::size_t>(x), pixel);
      }
    }
  };
  for (int top = 0; top < to.height; top += kSquare) {
    for (int left = 0; left < to.width; left += kSquare) copySquare(left, top);
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
  WithFormat(source->depth, [&](auto format) { CopyTurned(*source, *target, turn, format); });
  return result;
}

}  // namespace modules
