// Opacity: the fourth byte of 32-bit pixels, 255 opaque. Kept through commands that know none, and
// laid on a colour where the result cannot hold it.
#ifndef APPS_ORVO_OPACITY_H
#define APPS_ORVO_OPACITY_H

#include <string_view>

#include <orvo/dib_block.h>

namespace client {

// Whether files of this kind, as KindOfName tells it, hold opacity that others read.
bool HoldsOpacity(std::string_view kind);

// Whether anything shows through. Fourth bytes that are all 0 are padding.
bool HasOpacity(DibHandle picture);

// The pixels' colours with the opacity of another picture of the same size, as 32 bits; empty when
// the picture has not 24 or 32 bits, when the sizes differ, or when out of memory.
orvo::OwnedDib WithOpacityOf(DibHandle opacity, DibHandle colors);

// The 32-bit picture laid on a colour, as 24 bits; empty when out of memory.
orvo::OwnedDib LaidOn(const RGBQUAD& ground, DibHandle picture);

}  // namespace client

#endif  // APPS_ORVO_OPACITY_H
