// Small pictures of large files.
#ifndef MODULES_LTFIL13N_THUMBNAIL_H
#define MODULES_LTFIL13N_THUMBNAIL_H

#include "binding/module_contract.h"

namespace provider {

// The first page, shrunk or enlarged to the options' measures. The bitmap, which holds nothing,
// holds the thumbnail afterwards, or still nothing. Vendor code.
int MakeThumbnail(const char* path, const LTTHUMBNAILOPTIONS& options, struct_LEAD_Bitmap& bitmap);

}  // namespace provider

#endif  // MODULES_LTFIL13N_THUMBNAIL_H
