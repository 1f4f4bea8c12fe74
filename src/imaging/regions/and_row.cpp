#include "imaging/regions/and_row.h"

namespace orvo::ORVO_LEVEL {

void AndBytes(std::uint8_t* target, const std::uint8_t* a, const std::uint8_t* b,
              std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) target[i] = a[i] & b[i];
}

void AndColors(std::uint32_t* target, const std::uint32_t* colors, const std::uint8_t* indices,
               std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) target[i] &= colors[indices[i]];
}

}  // namespace orvo::ORVO_LEVEL
