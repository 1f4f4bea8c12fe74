// Pixel loops are plain code, one lane a pixel, and compiled once for each level of the processor's
// vector instructions: `plain` for every processor, `v3` for those with AVX2, `v4` for those with
// AVX-512. All levels give the same bits: nothing is fused and no sum is reordered.
//
//   loops.h     ORVO_EACH_LEVEL(void Add(const int* terms, int* sums);)
//   loops.cpp   namespace orvo::ORVO_LEVEL { void Add(const int* terms, int* sums) { ... } }
//   elsewhere   ORVO_BEST(Add)(terms, sums);
//
// CMake's orvo_vectorised names such a file. It leaves no function to the linker but those of its
// level's namespace: of an inline function the linker keeps one copy for the whole library, which
// may be the one whose instructions this processor has not. So what it calls is always inline, and
// nothing is called of the standard library.
#ifndef ORVO_PLATFORM_VECTOR_LEVELS_H
#define ORVO_PLATFORM_VECTOR_LEVELS_H

#include "platform/vector_level.h"

#if !defined(ORVO_LEVEL)
#define ORVO_LEVEL plain
#endif

// For functions of namespace orvo.
#if defined(ORVO_VECTOR_LEVELS)
#define ORVO_EACH_LEVEL(...) \
  namespace plain {          \
  __VA_ARGS__                \
  }                          \
  namespace v3 {             \
  __VA_ARGS__                \
  }                          \
  namespace v4 {             \
  __VA_ARGS__                \
  }
#define ORVO_BEST(function)                        \
  (PlatformVectorLevel >= 4   ? orvo::v4::function \
   : PlatformVectorLevel >= 3 ? orvo::v3::function \
                              : orvo::plain::function)
#else
#define ORVO_EACH_LEVEL(...) \
  namespace plain {          \
  __VA_ARGS__                \
  }
#define ORVO_BEST(function) orvo::plain::function
#endif

#if defined(__GNUC__)
#define ORVO_ALWAYS_INLINE __attribute__((always_inline)) inline
#elif defined(_MSC_VER)
#define ORVO_ALWAYS_INLINE __forceinline
#else
#define ORVO_ALWAYS_INLINE inline
#endif

namespace orvo {

template <class Number>
ORVO_ALWAYS_INLINE constexpr Number Least(Number a, Number b) {
  return b < a ? b : a;
}
template <class Number>
ORVO_ALWAYS_INLINE constexpr Number Most(Number a, Number b) {
  return a < b ? b : a;
}

}  // namespace orvo

#endif  // ORVO_PLATFORM_VECTOR_LEVELS_H
