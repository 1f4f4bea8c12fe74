#ifndef ORVO_IMAGING_REGIONS_AND_ROW_H
#define ORVO_IMAGING_REGIONS_AND_ROW_H

#include <cstddef>
#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

ORVO_EACH_LEVEL(
    // target[i] = a[i] & b[i]. target may be a; otherwise it is apart from both.
    void AndBytes(std::uint8_t* target, const std::uint8_t* a, const std::uint8_t* b,
                  std::size_t count);

    // target[i] &= colors[indices[i]].
    void AndColors(std::uint32_t* target, const std::uint32_t* colors, const std::uint8_t* indices,
                   std::size_t count);)

}  // namespace orvo

#endif  // ORVO_IMAGING_REGIONS_AND_ROW_H
