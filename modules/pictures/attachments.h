// What stands beside the picture in files that only their libraries take apart.
#ifndef MODULES_PICTURES_ATTACHMENTS_H
#define MODULES_PICTURES_ATTACHMENTS_H

#include "pictures/picture.h"

namespace modules {

// Of HEIC, AVIF and JPEG XL files; empty for files of other kinds, and where the library is
// missing. Throws a ModuleError for files that cannot be read.
Attachments ReadAttachments(const char* path);

}  // namespace modules

#endif  // MODULES_PICTURES_ATTACHMENTS_H
