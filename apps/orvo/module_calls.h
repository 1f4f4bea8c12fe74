// Calls of the file module's readers and writers, which throw codes of their own.
#ifndef APPS_ORVO_MODULE_CALLS_H
#define APPS_ORVO_MODULE_CALLS_H

#include <orvo/result_codes.h>

#include "common/guard.h"
#include "progress.h"

namespace client {

// A report of theirs; false stops them.
inline bool ReportPercent(int percent) {
  return ReportProgress(percent, nullptr) != ORVO_ERR_CANCELLED;
}

// The toolkit's code for a module's.
inline int ResultOf(int code) {
  switch (code) {
    case kModuleSuccess:
      return ORVO_OK;
    case kModuleAborted:
      return ORVO_ERR_CANCELLED;
    case kModuleNoMemory:
      return ORVO_ERR_NO_MEMORY;
    case kFileFormatNotRead:
    case kFileFormatNotWritten:
      return ORVO_ERR_BAD_FORMAT;
    default:
      return ORVO_ERR_FILE_IO;
  }
}

// Runs what may throw a module's code; the toolkit's code for it.
template <class Work>
int ModuleCall(const Work& work) {
  return ResultOf(modules::Guarded([&] {
    work();
    return kModuleSuccess;
  }));
}

}  // namespace client

#endif  // APPS_ORVO_MODULE_CALLS_H
