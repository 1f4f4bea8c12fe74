// Sums of tone counts, of all tones at once: kToneCount counts each, and twice as many in a pair of
// neighbouring blocks.
#ifndef ORVO_IMAGING_ADJUST_COUNT_SUMS_H
#define ORVO_IMAGING_ADJUST_COUNT_SUMS_H

#include <cstdint>

#include "platform/vector_levels.h"

namespace orvo {

ORVO_EACH_LEVEL(void AddCounts(const std::uint16_t* counts, std::uint16_t* sum);
                void SubtractCounts(const std::uint16_t* counts, std::uint16_t* sum);

                void AddPair(const std::uint8_t* pair, std::uint16_t* sum);
                void SubtractPair(const std::uint8_t* pair, std::uint16_t* sum);

                // The sum of the squared counts of two pairs together.
                std::uint32_t SquaresOfPairs(const std::uint8_t* upper, const std::uint8_t* lower);)

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_COUNT_SUMS_H
