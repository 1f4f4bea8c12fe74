// Writers that are called by name stand in for those whose library is not in this build.
#include "pictures/codecs.h"

namespace modules {

#if !defined(ORVO_HAVE_PNG)
void SavePng(const SaveRequest& /*request*/, const LockedDib& /*image*/) {
  throw ModuleError{kFileFormatNotWritten};
}
#endif

#if !defined(ORVO_HAVE_WEBP)
void SaveWebp(const SaveRequest& /*request*/, const LockedDib& /*image*/) {
  throw ModuleError{kFileFormatNotWritten};
}
#endif

}  // namespace modules
