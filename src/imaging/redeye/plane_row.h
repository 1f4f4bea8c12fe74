#ifndef ORVO_IMAGING_REDEYE_PLANE_ROW_H
#define ORVO_IMAGING_REDEYE_PLANE_ROW_H

#include <cstddef>
#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

ORVO_EACH_LEVEL(
    // Colours in byte form of every step-th pixel (blue, green, red), `count` of them.
    void FillPlaneRow(const std::uint8_t* pixels, std::size_t count, std::size_t step,
                      std::uint8_t* __restrict y, std::uint8_t* __restrict cb,
                      std::uint8_t* __restrict cr);)

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_PLANE_ROW_H
