#ifndef ORVO_IMAGING_DESCREEN_DESCREEN_ROW_H
#define ORVO_IMAGING_DESCREEN_DESCREEN_ROW_H

#include <cstddef>
#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

ORVO_EACH_LEVEL(
    // A row of `count` bytes whose windows lie inside the image.
    //
    // rows: those of the window, each from the first column of the first pixel's window on. sums:
    // room for as many. When target is in the middle row, each pixel sees those to its left as they
    // were just written.
    void DescreenRow(std::uint32_t level, std::int32_t channels, const std::uint8_t* const* rows,
                     std::size_t count, std::uint16_t* sums, std::uint8_t* target);)

}  // namespace orvo

#endif  // ORVO_IMAGING_DESCREEN_DESCREEN_ROW_H
