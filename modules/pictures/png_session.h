// What reading and writing PNG share: the library silent, within limits, its errors as codes.
#ifndef MODULES_PICTURES_PNG_SESSION_H
#define MODULES_PICTURES_PNG_SESSION_H

#include <png.h>

#include <csetjmp>

#include "common/guard.h"

namespace modules {

// The error pointer is the std::jmp_buf to leave to.
[[noreturn]] inline void OnPngError(png_structp png, png_const_charp /*message*/) {
  std::longjmp(*static_cast<std::jmp_buf*>(png_get_error_ptr(png)), 1);
}
inline void OnPngWarning(png_structp /*png*/, png_const_charp /*message*/) {}

inline void LimitPng(png_structp png) {
  constexpr png_uint_32 kMostChunks = 1000;
  constexpr png_alloc_size_t kMostChunkBytes = png_alloc_size_t{16} << 20;
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_chunk_cache_max(png, kMostChunks);
  png_set_chunk_malloc_max(png, kMostChunkBytes);
}

}  // namespace modules

#endif  // MODULES_PICTURES_PNG_SESSION_H
