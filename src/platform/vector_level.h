#ifndef ORVO_PLATFORM_VECTOR_LEVEL_H
#define ORVO_PLATFORM_VECTOR_LEVEL_H

#include <orvo/platform.h>

// The highest level of vector instructions that the processor and the system support: 1 for what
// every processor has, 3 with AVX2 and what came with it, 4 with AVX-512; 0 before this library is
// set up. Where faults can be injected, ORVO_VECTOR_LEVEL in the environment lowers it, and so does
// a test that sets it between two calls.
#if defined(ORVO_FAULT_INJECTION)
extern "C" ORVO_PLATFORM_API int PlatformVectorLevel;
#else
extern "C" ORVO_PLATFORM_API const int PlatformVectorLevel;
#endif

#endif  // ORVO_PLATFORM_VECTOR_LEVEL_H
