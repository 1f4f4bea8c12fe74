// A map from old tones to new ones.
#ifndef ORVO_IMAGINGLIB_TONE_MAP_H
#define ORVO_IMAGINGLIB_TONE_MAP_H

#include "imaginglib/tones.h"

struct ToneMap {
  double value[kToneCount];  // new tone, 0.0 .. 255.0
  std::uint8_t truncated[kToneCount];

  // Stores a new tone, limited first and truncated after.
  void set(int tone, double mapped) {
    const double low = mapped < 0.0 ? 0.0 : mapped;
    value[tone] = low > 255.0 ? 255.0 : low;
    truncated[tone] = static_cast<std::uint8_t>(static_cast<int>(value[tone]));
  }
};

#endif  // ORVO_IMAGINGLIB_TONE_MAP_H
