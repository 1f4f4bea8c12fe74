// What becomes of colours that a source's profile explains: sRGB, where the result cannot keep the
// profile, or where work needs to know what the numbers look like.
#ifndef APPS_ORVO_SOURCE_COLORS_H
#define APPS_ORVO_SOURCE_COLORS_H

#include "operations.h"

namespace client {

// Of a picture just loaded: inks that have a profile are mixed as that says.
void TakeInksByProfile(Job& job);

// Brings the picture to sRGB, if it is not there: its profile goes no further.
void BringToSrgb(Job& job);
// The same to a picture of colours that is to turn gray: its profile would not explain the tones.
void BringToSrgbBeforeGray(Job& job);

// Whether the target can keep the source's colours only as sRGB, in which they are not.
bool NeedsSrgb(const Job& job);
// Brings the picture to sRGB if that is so, before it is saved.
void BringToSrgbIfNeeded(Job& job);

// The profile of a picture whose colours, of red, green and blue, are not sRGB; else empty.
std::vector<std::uint8_t> OtherColorsOf(const Job& job);

}  // namespace client

#endif  // APPS_ORVO_SOURCE_COLORS_H
