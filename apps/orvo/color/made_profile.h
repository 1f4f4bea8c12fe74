// Profiles of colours that files tell in other ways.
#ifndef APPS_ORVO_COLOR_MADE_PROFILE_H
#define APPS_ORVO_COLOR_MADE_PROFILE_H

#include <array>
#include <cstdint>
#include <vector>

namespace client {

// Where white, red, green and blue lie among the colours: x and y of each.
using Primaries = std::array<double, 8>;
inline constexpr Primaries kScreenPrimaries{0.3127, 0.3290, 0.64, 0.33, 0.30, 0.60, 0.15, 0.06};

// Each empty without the colour library, and for colours that cannot be.
// The numbers are light to the power of 1 / gamma; of gamma 0 they follow sRGB's curve.
std::vector<std::uint8_t> ProfileOf(const Primaries& primaries, double gamma);
std::vector<std::uint8_t> AdobeRgbProfile();
// By the code points of video: of the primaries, and of the curve from light to number. Empty for
// sRGB, for what tells nothing, and for curves of more light than a screen shows.
std::vector<std::uint8_t> ProfileOfCodes(int primaries, int transfer);

}  // namespace client

#endif  // APPS_ORVO_COLOR_MADE_PROFILE_H
