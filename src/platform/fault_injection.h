// For tests: counts what is left, and, in builds with ORVO_FAULT_INJECTION, makes the memory calls
// of this process fail on purpose.
#ifndef ORVO_PLATFORM_FAULT_INJECTION_H
#define ORVO_PLATFORM_FAULT_INJECTION_H

#include <cstddef>

#include <orvo/platform.h>

extern "C" {

// Blocks of GlobalAlloc and LocalAlloc that were not freed yet, and locks not yet ended.
ORVO_PLATFORM_API std::size_t PlatformLiveBlocks() noexcept;
ORVO_PLATFORM_API std::size_t PlatformHeldLocks() noexcept;

#if defined(ORVO_FAULT_INJECTION)
// The n-th allocation (GlobalAlloc and LocalAlloc) or lock from now on fails, once; 1 is the next,
// 0 lets all succeed.
ORVO_PLATFORM_API void PlatformFailAllocation(int n) noexcept;
ORVO_PLATFORM_API void PlatformFailLock(int n) noexcept;
#endif

}  // extern "C"

#endif  // ORVO_PLATFORM_FAULT_INJECTION_H
