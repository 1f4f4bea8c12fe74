// Profiles of colours that files tell in other ways.
#ifndef APPS_ORVO_COLOR_MADE_PROFILE_H
#define APPS_ORVO_COLOR_MADE_PROFILE_H

#include <cstdint>
#include <vector>

namespace client {

// Each empty without the colour library.
std::vector<std::uint8_t> AdobeRgbProfile();
// By the code points of video: of the primaries, and of the curve from light to number. Empty for
// sRGB, for what tells nothing, and for curves of more light than a screen shows.
std::vector<std::uint8_t> ProfileOfCodes(int primaries, int transfer);

}  // namespace client

#endif  // APPS_ORVO_COLOR_MADE_PROFILE_H
