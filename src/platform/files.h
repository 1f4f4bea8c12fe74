// Questions about files.
#ifndef ORVO_PLATFORM_FILES_H
#define ORVO_PLATFORM_FILES_H

#include <orvo/platform.h>

// Non-zero when something stands at the path. Takes no memory.
extern "C" ORVO_PLATFORM_API int PlatformIsThere(const char* path) noexcept;

#endif  // ORVO_PLATFORM_FILES_H
