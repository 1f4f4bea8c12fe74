#include "imaging/redeye/mask_row.h"

namespace orvo::ORVO_LEVEL {

namespace {

template <MaskStep step>
ORVO_ALWAYS_INLINE std::uint8_t Both(std::uint8_t a, std::uint8_t b) {
  return step == MaskStep::kErase ? a & b : a | b;
}

template <MaskStep step, MaskShape shape>
ORVO_ALWAYS_INLINE void Combine(const std::uint8_t* from, std::size_t width, std::uint8_t* to) {
  const std::uint8_t* const above = from - width;
  const std::uint8_t* const below = from + width;
  const auto column = [&](std::size_t x) {
    return Both<step>(from[x], Both<step>(above[x], below[x]));
  };
  const auto side = [&](std::size_t x) {
    return shape == MaskShape::kSquare ? column(x) : from[x];
  };
  for (std::size_t x = 1; x + 1 < width; ++x) {
    to[x] = Both<step>(column(x), Both<step>(side(x - 1), side(x + 1)));
  }
}

}  // namespace

void CombineMaskRow(MaskStep step, MaskShape shape, const std::uint8_t* from, std::size_t width,
                    std::uint8_t* to) {
  if (shape == MaskShape::kCross) {
    step == MaskStep::kErase ? Combine<MaskStep::kErase, MaskShape::kCross>(from, width, to)
                             : Combine<MaskStep::kGrow, MaskShape::kCross>(from, width, to);
  } else {
    step == MaskStep::kErase ? Combine<MaskStep::kErase, MaskShape::kSquare>(from, width, to)
                             : Combine<MaskStep::kGrow, MaskShape::kSquare>(from, width, to);
  }
}

}  // namespace orvo::ORVO_LEVEL
