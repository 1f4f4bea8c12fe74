#ifndef ORVO_METHODS_REGIONS_H
#define ORVO_METHODS_REGIONS_H

#include <orvo/dib.h>
#include <orvo/records.h>

namespace orvo {

// Lists the items that lie on a page in a block of records for the caller. With nothing found the
// count is 0 and the list stays as it was; without memory for the list it is null.
void FindRegions(DibHandle page, int reach, int level, RegionRecord*& list, int& count) noexcept;

}  // namespace orvo

#endif  // ORVO_METHODS_REGIONS_H
