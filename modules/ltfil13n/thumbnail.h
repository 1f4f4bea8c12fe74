// Small pictures of large files.
#ifndef MODULES_LTFIL13N_THUMBNAIL_H
#define MODULES_LTFIL13N_THUMBNAIL_H

#include "binding/module_contract.h"

namespace modules {

// The first page, shrunk or enlarged to the options' measures. The bitmap, which holds nothing,
// holds the thumbnail afterwards; after a failure it may hold what was made until then.
void MakeThumbnail(const char* path, const LTTHUMBNAILOPTIONS& options, struct_LEAD_Bitmap& bitmap);

}  // namespace modules

#endif  // MODULES_LTFIL13N_THUMBNAIL_H
