#include "imaging/redeye/color_tests.h"

#include <array>

namespace orvo {

namespace {

constexpr int kDarkestSkin = 50;
constexpr int kFullSkin = 125;  // luma from which the ellipse stays in place

struct Step {
  int from;  // luma
  int offset;
};

// How far the ellipse of dark skin lies off, by steps that fall to 0.
constexpr Step kCbSteps[] = {{50, 72}, {51, 66}, {55, 59}, {60, 54},  {64, 49},  {66, 48},
                             {69, 43}, {73, 39}, {76, 38}, {78, 34},  {82, 30},  {87, 25},
                             {92, 22}, {96, 19}, {98, 18}, {101, 15}, {105, 12}, {109, 11},
                             {110, 8}, {114, 5}, {119, 3}, {120, 2},  {123, 0}};
constexpr Step kCrSteps[] = {{50, 66},  {54, 58}, {55, 59}, {60, 52},  {66, 46},
                             {72, 39},  {76, 41}, {78, 34}, {83, 28},  {87, 30},
                             {89, 24},  {95, 19}, {98, 20}, {101, 15}, {107, 10},
                             {109, 11}, {112, 7}, {118, 3}, {120, 4},  {124, 0}};

using SkinOffsets = std::array<std::uint8_t, kLumaCount>;

template <std::size_t N>
constexpr SkinOffsets OffsetsOf(const Step (&steps)[N]) {
  SkinOffsets offsets{};
  for (std::size_t i = 0; i < N; ++i) {
    const int end = i + 1 < N ? steps[i + 1].from : kFullSkin;
    for (int y = steps[i].from; y < end; ++y) {
      offsets[static_cast<std::size_t>(y)] = static_cast<std::uint8_t>(steps[i].offset);
    }
  }
  return offsets;
}

constexpr SkinOffsets SkinCbOffset = OffsetsOf(kCbSteps);
constexpr SkinOffsets SkinCrOffset = OffsetsOf(kCrSteps);

}  // namespace

bool ImgIsSkinColor(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) noexcept {
  if (y < kDarkestSkin) return false;
  // From the middle of the ellipse, whose axes are turned by the cosine 0.82 and the sine 0.57.
  const int a = cb - SkinCbOffset[y] - 109;
  const int b = cr - SkinCrOffset[y] - 152;
  const int p = 57 * b - 82 * a - 160;
  const int q = -57 * a - 82 * b - 241;
  return p * p / 645 + q * q / 197 < 10000;
}

}  // namespace orvo
