// The density of JPEG files that give it only as an aspect ratio.
#ifndef ORVO_BINDING_JFIF_DENSITY_H
#define ORVO_BINDING_JFIF_DENSITY_H

#include <optional>

namespace orvo {

struct JfifDensity {
  int x;
  int y;
};

// The two densities of a JFIF 1.01 file without units whose name ends in "jpg" or "jpeg", in lower
// case; nothing for any other file. Such densities are taken as multiples of 72 dots per inch.
[[nodiscard]] std::optional<JfifDensity> UnitlessJfifDensity(const char* path) noexcept;

}  // namespace orvo

#endif  // ORVO_BINDING_JFIF_DENSITY_H
