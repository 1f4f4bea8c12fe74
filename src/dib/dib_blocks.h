// Blocks as the COrvoCS methods make, read and fill them.
#ifndef ORVO_DIB_DIB_BLOCKS_H
#define ORVO_DIB_DIB_BLOCKS_H

#include <orvo/dib_block.h>

namespace orvo {

// A new movable block with all bytes of the source's; null on any failure.
[[nodiscard]] DibHandle CopyDIB(DibHandle source) noexcept;
// A new movable block of the source's size, all zero; null on any failure or for a null source.
[[nodiscard]] DibHandle CreateDIBOfSameSize(DibHandle source) noexcept;

// Overwrites an image with the palette and pixels, or with the header alone, of another of the same
// measures. Nothing happens when the measures differ or a block cannot be locked.
void TakeImage(DibHandle target, DibHandle source) noexcept;
void TakeHeader(DibHandle target, DibHandle source) noexcept;

// The frames of the pixel functions take the low byte of biBitCount as the depth.
inline constexpr DibReading kLowByteOfDepth{.depthMask = 0xFF};

}  // namespace orvo

#endif  // ORVO_DIB_DIB_BLOCKS_H
