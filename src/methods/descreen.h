// What follows the descreening of an image: its sharpening by the imaging module.
#ifndef ORVO_METHODS_DESCREEN_H
#define ORVO_METHODS_DESCREEN_H

#include <cstdint>

#include <orvo/dib.h>

namespace orvo {

// The change that a sharpening by this amount, 1..100, asks of the module. Amounts beyond the range
// stay beyond it.
[[nodiscard]] int SharpenChange(std::uint32_t amount) noexcept;

// Moves the sharpened image into a block of the same measures, whose handle stays; its own block is
// freed.
void MoveImage(DibHandle target, DibHandle image) noexcept;

}  // namespace orvo

#endif  // ORVO_METHODS_DESCREEN_H
