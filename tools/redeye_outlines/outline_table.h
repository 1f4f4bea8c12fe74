// The whole table of outlines: measured rows as they are, the others drawn between them.
#ifndef TOOLS_REDEYE_OUTLINES_OUTLINE_TABLE_H
#define TOOLS_REDEYE_OUTLINES_OUTLINE_TABLE_H

#include "polygon.h"

using OutlineTable = std::array<Polygon, kLumaCount>;

[[nodiscard]] OutlineTable MakeOutlines();

#endif  // TOOLS_REDEYE_OUTLINES_OUTLINE_TABLE_H
