#ifndef ORVO_IMAGING_ADJUST_EXPOSURE_CURVE_H
#define ORVO_IMAGING_ADJUST_EXPOSURE_CURVE_H

#include "imaging/adjust/tone_map.h"
#include "platform/vector_levels.h"

namespace orvo {

// How a window's histogram changes the tones of its tile.
struct ExposureCurve {
  const std::uint16_t* counts;  // of each tone
  std::uint32_t pixels;         // all counts together
  double level;                 // 0..10
  double variety;               // of the tile's tones
};

ORVO_EACH_LEVEL(
    // The blend of each tone with the equalising curve of the window.
    void FillToneMap(const ExposureCurve& curve, ToneMap<std::uint8_t>& map);
    void FillLumaMap(const ExposureCurve& curve, ToneMap<double>& map);)

}  // namespace orvo

#endif  // ORVO_IMAGING_ADJUST_EXPOSURE_CURVE_H
