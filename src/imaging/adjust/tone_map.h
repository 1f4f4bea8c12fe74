// A map from old tones to new ones: to tones for images of 8 bits, to luma for colours.
#ifndef ORVO_IMAGING_ADJUST_TONE_MAP_H
#define ORVO_IMAGING_ADJUST_TONE_MAP_H

#include "imaging/adjust/tones.h"
#include "platform/vector_levels.h"

namespace orvo {

template <class Tone>
struct ToneMap {
  Tone of[kToneCount];
};

// Limited to 0..255 and, for a tone, truncated. What is mapped lies far inside the range of int, so
// it is all the same which of the two comes first; limits of integers are what compilers make
// vectors of.
ORVO_ALWAYS_INLINE void SetMapped(double mapped, std::uint8_t& tone) {
  tone = static_cast<std::uint8_t>(Least(Most(static_cast<int>(mapped), 0), 255));
}
ORVO_ALWAYS_INLINE void SetMapped(double mapped, double& luma) {
  luma = Least(Most(mapped, 0.0), 255.0);
}

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_TONE_MAP_H
