// The windows of descreen: exponents of two, one table a level. Their ridges run along the main
// diagonal, and an exponent of 0 still weighs 1.
#ifndef ORVO_IMAGING_DESCREEN_DESCREEN_WEIGHTS_H
#define ORVO_IMAGING_DESCREEN_DESCREEN_WEIGHTS_H

#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

// Side of a level's window.
ORVO_ALWAYS_INLINE constexpr int DescreenSide(std::uint32_t level) {
  return 3 + 2 * static_cast<int>(level);
}

// clang-format off
inline constexpr std::uint8_t kDescreenExponents0[] = {
    1, 0, 0,
    1, 2, 1,
    0, 0, 1};

inline constexpr std::uint8_t kDescreenExponents1[] = {
    2, 1, 0, 0, 0,
    1, 0, 1, 1, 0,
    0, 2, 3, 2, 0,
    0, 1, 1, 0, 1,
    0, 0, 0, 1, 2};

inline constexpr std::uint8_t kDescreenExponents2[] = {
    3, 2, 1, 0, 0, 0, 0,
    2, 1, 0, 1, 1, 1, 0,
    1, 0, 2, 3, 2, 1, 0,
    0, 2, 3, 4, 3, 2, 0,
    0, 1, 2, 3, 2, 0, 1,
    0, 1, 1, 1, 0, 1, 2,
    0, 0, 0, 0, 1, 2, 3};

// Not quite the same after a half turn: row 5, column 6 is 1 and its partner 0.
inline constexpr std::uint8_t kDescreenExponents3[] = {
    3, 2, 1, 0, 0, 0, 0, 0, 0,
    2, 2, 1, 0, 0, 1, 1, 1, 0,
    1, 1, 0, 0, 2, 2, 2, 1, 0,
    0, 0, 0, 3, 4, 3, 2, 1, 0,
    0, 2, 3, 4, 5, 4, 3, 2, 0,
    0, 1, 2, 3, 4, 3, 1, 0, 0,
    0, 1, 2, 2, 2, 0, 0, 1, 1,
    0, 1, 1, 1, 0, 0, 1, 2, 2,
    0, 0, 0, 0, 0, 0, 1, 2, 3};
// clang-format on

// A level's table, row by row.
ORVO_ALWAYS_INLINE constexpr const std::uint8_t* DescreenExponents(std::uint32_t level) {
  constexpr const std::uint8_t* kTables[] = {kDescreenExponents0, kDescreenExponents1,
                                             kDescreenExponents2, kDescreenExponents3};
  return kTables[level];
}

ORVO_ALWAYS_INLINE constexpr std::uint32_t DescreenWeightSum(std::uint32_t level) {
  std::uint32_t sum = 0;
  for (int i = 0; i < DescreenSide(level) * DescreenSide(level); ++i) {
    sum += 1U << DescreenExponents(level)[i];
  }
  return sum;
}
static_assert(DescreenWeightSum(0) == 16 && DescreenWeightSum(1) == 52 &&
              DescreenWeightSum(2) == 150 && DescreenWeightSum(3) == 295);

}  // namespace orvo

#endif  // ORVO_IMAGING_DESCREEN_DESCREEN_WEIGHTS_H
