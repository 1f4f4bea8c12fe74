#ifndef ORVO_METHODS_AUTO_TRIM_H
#define ORVO_METHODS_AUTO_TRIM_H

#include <cstdint>

#include <orvo/dib.h>

class COrvoCS;

namespace orvo {

// The rectangle of the highest threshold that finds one of real size, from the caller's downward;
// the whole image when none does. A failing measurement ends the search with its code.
[[nodiscard]] int FindAutoTrimRect(COrvoCS& toolkit, DibHandle source, std::uint8_t threshold,
                                   RECT* rect) noexcept;

}  // namespace orvo

#endif  // ORVO_METHODS_AUTO_TRIM_H
