// A map from old tones to new ones, and its use on rows of a working image.
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

inline void MapTones(const ToneMap& map, const std::uint8_t* tones, std::size_t count,
                     std::uint8_t* target) {
  for (std::size_t i = 0; i < count; ++i) target[i] = map.truncated[tones[i]];
}

// Pixels of 24 bits get the mapped luma and keep their chroma. source and target may be equal.
inline void MapColors(const ToneMap& map, const std::uint8_t* tones, std::size_t count,
                      const std::uint8_t* source, std::uint8_t* target) {
  constexpr std::size_t kRun = 256;
  double luma[kRun];
  for (std::size_t done = 0; done < count; done += kRun) {
    const std::size_t run = count - done < kRun ? count - done : kRun;
    for (std::size_t i = 0; i < run; ++i) luma[i] = map.value[tones[done + i]];
    StoreColors(luma, run, source + 3 * done, target + 3 * done);
  }
}

#endif  // ORVO_IMAGINGLIB_TONE_MAP_H
