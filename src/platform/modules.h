// The module that a piece of code belongs to.
#ifndef ORVO_PLATFORM_MODULES_H
#define ORVO_PLATFORM_MODULES_H

#include <orvo/platform.h>

extern "C" {

// Handle of the loaded module that holds the address, for GetModuleFileNameA. Its path is made
// absolute here and kept: the loader may know a module by a relative path, which means another file
// once the process has changed its directory. So it is called while the module is being loaded.
ORVO_PLATFORM_API void* PlatformModuleOf(const void* address) noexcept;

}  // extern "C"

#endif  // ORVO_PLATFORM_MODULES_H
