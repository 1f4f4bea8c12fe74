// What reading and writing PNG share: the library silent, within limits, its errors as codes.
#ifndef MODULES_PICTURES_PNG_SESSION_H
#define MODULES_PICTURES_PNG_SESSION_H

#include <png.h>

#include <csetjmp>

#include <orvo/file_limits.h>

#include "common/guard.h"

namespace modules {

// The error pointer is the std::jmp_buf to leave to.
[[noreturn]] inline void OnPngError(png_structp png, png_const_charp /*message*/) {
  std::longjmp(*static_cast<std::jmp_buf*>(png_get_error_ptr(png)), 1);
}
inline void OnPngWarning(png_structp /*png*/, png_const_charp /*message*/) {}

inline void LimitPng(png_structp png) {
  constexpr png_alloc_size_t kMostChunkBytes = png_alloc_size_t{16} << 20;
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_chunk_cache_max(png, static_cast<png_uint_32>(OrvoLimitFiles(nullptr)->pieces));
  png_set_chunk_malloc_max(png, kMostChunkBytes);
}

// Passes over what no picture needs, unread: it may be compressed a thousand times.
inline void SkipPngPieces(png_structp png) {
  static constexpr png_byte kNames[] =
      "iCCP\0tEXt\0zTXt\0iTXt\0eXIf\0sPLT\0hIST\0sCAL\0pCAL\0tIME\0oFFs";
  constexpr int kCount = sizeof kNames / 5;
  png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, kNames, kCount);
}

}  // namespace modules

#endif  // MODULES_PICTURES_PNG_SESSION_H
