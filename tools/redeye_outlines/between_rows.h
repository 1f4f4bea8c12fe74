// The shape of an outline at a luma that was not measured.
#ifndef TOOLS_REDEYE_OUTLINES_BETWEEN_ROWS_H
#define TOOLS_REDEYE_OUTLINES_BETWEEN_ROWS_H

#include "polygon.h"

namespace orvo {

// luma: between the first and the last measured row.
[[nodiscard]] Extents ShapeAt(int luma);

}  // namespace orvo

#endif  // TOOLS_REDEYE_OUTLINES_BETWEEN_ROWS_H
