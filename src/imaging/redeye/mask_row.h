#ifndef ORVO_IMAGING_REDEYE_MASK_ROW_H
#define ORVO_IMAGING_REDEYE_MASK_ROW_H

#include <cstddef>
#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

// How a pixel is combined with its neighbours, of the cross or of the square: kErase asks that all
// are set, kGrow that one is.
enum class MaskStep { kErase, kGrow };
enum class MaskShape { kCross, kSquare };

ORVO_EACH_LEVEL(
    // Each pixel of a row but the first and the last. `width` bytes lie between rows of `from`.
    void CombineMaskRow(MaskStep step, MaskShape shape, const std::uint8_t* from, std::size_t width,
                        std::uint8_t* to);)

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_MASK_ROW_H
