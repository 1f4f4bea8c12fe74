#ifndef ORVO_METHODS_DESKEW_H
#define ORVO_METHODS_DESKEW_H

#include <orvo/dib.h>
#include <orvo/records.h>

class CLeadTools;

namespace orvo {

// Turns a crooked page upright, as LTRotate to a new handle does, and gives the angle in hundredths
// of a degree. A page without a region, one that cannot be read, and one for which memory runs out
// are turned by 0.
int AutoDeskew(CLeadTools& tools, DibHandle page, DibHandle* result,
               StatusCallback callback) noexcept;

}  // namespace orvo

#endif  // ORVO_METHODS_DESKEW_H
