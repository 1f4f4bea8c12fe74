#include "imaging/adjust/exposure_curve.h"

namespace orvo::ORVO_LEVEL {

namespace {

constexpr double kSharePerLevel = 0.05;  // of the way to the equalising curve

template <class Tone>
ORVO_ALWAYS_INLINE void Fill(const ExposureCurve& exposure, ToneMap<Tone>& map) {
  const double level = exposure.level;
  const double variety = exposure.variety;
  const double scale = 256.0 / exposure.pixels;
  // Running sums of quarters, side by side, since each count waits for the one before.
  constexpr int kPart = kToneCount / 4;
  std::int32_t reached[kToneCount];
  std::int32_t sums[4] = {};
  for (int i = 0; i < kPart; ++i) {
    for (int part = 0; part < 4; ++part) {
      const int tone = part * kPart + i;
      reached[tone] = sums[part] += exposure.counts[tone];
    }
  }
  std::int32_t below = 0;
  for (int part = 0; part < 4; ++part) {
    for (int tone = part * kPart; tone < (part + 1) * kPart; ++tone) {
      const double curve = (below + reached[tone]) * scale - 1.0;
      SetMapped(tone + (((curve - tone) * level) * variety) * kSharePerLevel, map.of[tone]);
    }
    below += sums[part];
  }
}

}  // namespace

void FillToneMap(const ExposureCurve& curve, ToneMap<std::uint8_t>& map) {
  Fill(curve, map);
}

void FillLumaMap(const ExposureCurve& curve, ToneMap<double>& map) {
  Fill(curve, map);
}

}  // namespace orvo::ORVO_LEVEL
