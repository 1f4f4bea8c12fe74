// The few camera tags that matter for showing a picture rightly.
#ifndef MODULES_PICTURES_EXIF_H
#define MODULES_PICTURES_EXIF_H

#include <span>

#include "pictures/picture.h"

namespace modules {

// Takes orientation and resolution from a block of tags that begins with its byte order ("II" or
// "MM"). Tags that are damaged change nothing.
void ReadExif(std::span<const std::uint8_t> block, Picture& picture);

// Tells in place that the picture stands upright and measures so many pixels; with `sidesSwapped`
// the resolutions change places. Tags that are not there stay away.
void SetExifShape(std::span<std::uint8_t> block, int width, int height, bool sidesSwapped);

// The tags in a block as HEIF and JPEG XL hold it: their place comes first, counted from behind
// itself. Empty when that lies outside.
std::vector<std::uint8_t> TagsBehindPlace(std::span<const std::uint8_t> block);

}  // namespace modules

#endif  // MODULES_PICTURES_EXIF_H
