// The few camera tags that matter for showing a picture rightly.
#ifndef MODULES_PICTURES_EXIF_H
#define MODULES_PICTURES_EXIF_H

#include <cstdint>
#include <span>

#include "pictures/orientation.h"

namespace modules {

struct Exif {
  int orientation = kUpright;
  std::int32_t xPixelsPerMetre = 0;
  std::int32_t yPixelsPerMetre = 0;
};

// Reads a block of tags that begins with its byte order ("II" or "MM"). Tags that are damaged keep
// their defaults.
Exif ReadExif(std::span<const std::uint8_t> block);

}  // namespace modules

#endif  // MODULES_PICTURES_EXIF_H
