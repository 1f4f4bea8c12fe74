#ifndef ORVO_IMAGING_TRIM_DARK_BYTES_H
#define ORVO_IMAGING_TRIM_DARK_BYTES_H

#include <cstddef>
#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

ORVO_EACH_LEVEL(
    // Whether any byte is at most the limit.
    bool HasDarkByte(const std::uint8_t* bytes, std::size_t count, std::uint8_t limit);)

}  // namespace orvo

#endif  // ORVO_IMAGING_TRIM_DARK_BYTES_H
