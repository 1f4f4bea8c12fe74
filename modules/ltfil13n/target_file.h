// A file to be written: under a temporary name beside its target until it is whole.
#ifndef MODULES_LTFIL13N_TARGET_FILE_H
#define MODULES_LTFIL13N_TARGET_FILE_H

#include <string>

#include "binding/module_contract.h"

namespace modules {

struct SaveOptions {
  int format;       // a FileFormat
  int quality;      // 1 to 100; 0 or below: the default, above 100: 100
  bool appendPage;  // as a further page when the target exists
};

// Writes a bitmap's image. On any failure, a stop by the status callback included, the target is
// as it was before, or still absent.
void WriteImage(const char* path, struct_LEAD_Bitmap& bitmap, const SaveOptions& options);

}  // namespace modules

#endif  // MODULES_LTFIL13N_TARGET_FILE_H
