// The whole table of outlines: measured rows as they are, the others drawn between them.
#ifndef TOOLS_REDEYE_OUTLINES_OUTLINE_TABLE_H
#define TOOLS_REDEYE_OUTLINES_OUTLINE_TABLE_H

#include "polygon.h"

namespace orvo {

using OutlineTable = std::array<Polygon, kLumaCount>;

[[nodiscard]] OutlineTable MakeOutlines();

}  // namespace orvo

#endif  // TOOLS_REDEYE_OUTLINES_OUTLINE_TABLE_H
