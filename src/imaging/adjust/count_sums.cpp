#include "imaging/adjust/count_sums.h"

#include "imaging/adjust/tones.h"

namespace orvo::ORVO_LEVEL {

void AddCounts(const std::uint16_t* counts, std::uint16_t* sum) {
  for (int tone = 0; tone < kToneCount; ++tone) {
    sum[tone] = static_cast<std::uint16_t>(sum[tone] + counts[tone]);
  }
}

void SubtractCounts(const std::uint16_t* counts, std::uint16_t* sum) {
  for (int tone = 0; tone < kToneCount; ++tone) {
    sum[tone] = static_cast<std::uint16_t>(sum[tone] - counts[tone]);
  }
}

void AddPair(const std::uint8_t* pair, std::uint16_t* sum) {
  for (int tone = 0; tone < kToneCount; ++tone) {
    sum[tone] = static_cast<std::uint16_t>(sum[tone] + pair[tone] + pair[tone + kToneCount]);
  }
}

void SubtractPair(const std::uint8_t* pair, std::uint16_t* sum) {
  for (int tone = 0; tone < kToneCount; ++tone) {
    sum[tone] = static_cast<std::uint16_t>(sum[tone] - pair[tone] - pair[tone + kToneCount]);
  }
}

std::uint32_t SquaresOfPairs(const std::uint8_t* upper, const std::uint8_t* lower) {
  std::uint32_t squares = 0;
  for (int tone = 0; tone < kToneCount; ++tone) {
    const std::uint32_t count =
        upper[tone] + upper[tone + kToneCount] + lower[tone] + lower[tone + kToneCount];
    squares += count * count;
  }
  return squares;
}

}  // namespace orvo::ORVO_LEVEL
