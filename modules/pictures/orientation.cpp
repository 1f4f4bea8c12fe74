#include "pictures/orientation.h"

#include <cstring>
#include <utility>

#include "common/pixel_turns.h"

namespace modules {
namespace {

// Lines count from the top and rows from the bottom: what is exchanged with columns is mirrored by
// that alone.
PixelTurn TurnOf(int orientation) {
  const bool columns = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
  const bool lines = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
  const bool swaps = SwapsSides(orientation);
  return {swaps, columns != swaps, lines != swaps};
}

}  // namespace

OwnedBlock TurnedUpright(OwnedBlock block, int orientation) {
  const LockedDib source(block.get());
  if (!source) return OwnedBlock();
  BITMAPINFOHEADER header = source.header();
  const PixelTurn turn = TurnOf(orientation);
  if (turn.swapsSides) {
    std::swap(header.biWidth, header.biHeight);
    std::swap(header.biXPelsPerMeter, header.biYPelsPerMeter);
  }
  OwnedBlock result = NewDibOf(header);
  const LockedDib target(result.get());
  if (!target) return OwnedBlock();
  if (source->palette != nullptr) {
    std::memcpy(target->palette, source->palette, orvo::DibPaletteBytes(source->depth));
  }
  for (int y = 0; y < target->height; y += kTurnedBand) DrawTurnedBand(*source, *target, turn, y);
  return result;
}

}  // namespace modules
