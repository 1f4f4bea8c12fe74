// The three questions of all red-eye work, asked of one colour in byte form.
#ifndef ORVO_IMAGING_REDEYE_COLOR_TESTS_H
#define ORVO_IMAGING_REDEYE_COLOR_TESTS_H

#include <cstdint>

#include "imaging/redeye/red_eye_outlines.h"

namespace orvo {

// For each luma and Cb the Cr values, one after the other, that a red pupil can have.
struct CrRange {
  std::uint8_t first;
  std::uint8_t count;
};
extern const CrRange kRedEyeCrRanges[kLumaCount][256];

// The colour of a red pupil: inside or on the outline of its luma, or very close to it.
inline bool ImgIsRedEyeColor(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) noexcept {
  const CrRange range = kRedEyeCrRanges[y][cb];
  return static_cast<std::uint8_t>(cr - range.first) < range.count;
}

// Bright and near neutral: the white of an eye, a catch-light. Eyes are warmer than they are blue,
// so the two bands are neither equal nor centred on 128.
constexpr bool ImgIsBrightNeutral(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) noexcept {
  return y >= 129 && cb >= 119 && cb < 138 && cr >= 116 && cr < 140;
}

// The colour of skin: an ellipse in chroma, turned against the axes, that moves as skin gets dark.
[[nodiscard]] bool ImgIsSkinColor(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) noexcept;

}  // namespace orvo

#endif  // ORVO_IMAGING_REDEYE_COLOR_TESTS_H
