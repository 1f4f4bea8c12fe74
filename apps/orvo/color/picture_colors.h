// The colours of a loaded picture, from those of a profile to sRGB and back.
#ifndef APPS_ORVO_COLOR_PICTURE_COLORS_H
#define APPS_ORVO_COLOR_PICTURE_COLORS_H

#include <cstdint>
#include <span>
#include <string>

#include <orvo/dib_block.h>

namespace client {

// Brings a picture to sRGB where it lies: pixels of 24 and 32 bits, whose opacity stays, palettes,
// and the tones of a gray picture, whose palette stays. False, with nothing changed, when the
// profile is damaged or explains other pixels.
bool BringToSrgb(DibHandle picture, std::span<const std::uint8_t> profile);

// Where `after` differs from `before`, both in sRGB, the picture gets the colours of `after` in its
// own profile's numbers. All three have one shape, of 24 or 32 bits.
bool BringChangesBack(DibHandle before, DibHandle after, std::span<const std::uint8_t> profile,
                      DibHandle picture);

// Loads a page of a JPEG, TIFF or Photoshop file of inks in sRGB, by way of the profile of its
// inks. Empty when the file holds no inks, when the profile is damaged, and when the file cannot be
// read.
orvo::OwnedDib LoadedFromInks(const std::string& path, int page,
                              std::span<const std::uint8_t> profile);

}  // namespace client

#endif  // APPS_ORVO_COLOR_PICTURE_COLORS_H
