// The few operating-system calls that the toolkit and its callers share: memory blocks behind
// handles, loadable modules, files, rectangles and multibyte strings.
//
//   void* block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 1000);
//   if (void* bytes = GlobalLock(block)) {
//     ...                       // the bytes stay put until the lock ends
//     GlobalUnlock(block);
//   }
//   GlobalFree(block);
//
// On Windows these are the system's own; elsewhere liborvo_platform gives calls of the same names
// and manners. All of them may be called from any thread.
#ifndef ORVO_PLATFORM_H
#define ORVO_PLATFORM_H

#if defined(_WIN32)
#include <mbstring.h>
#include <stdlib.h>
#include <windows.h>
#else

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define ORVO_PLATFORM_API __attribute__((visibility("default")))
#else
#define ORVO_PLATFORM_API
#endif

// --- Records -------------------------------------------------------------------------------------

// Header of a packed device-independent bitmap: 40 bytes, little-endian. Resolutions are in pixels
// per metre; biCompression 0 means plain rows.
#pragma pack(push, 2)
typedef struct tagBITMAPINFOHEADER {
  uint32_t biSize;
  int32_t biWidth;
  int32_t biHeight;
  uint16_t biPlanes;
  uint16_t biBitCount;
  uint32_t biCompression;
  uint32_t biSizeImage;
  int32_t biXPelsPerMeter;
  int32_t biYPelsPerMeter;
  uint32_t biClrUsed;
  uint32_t biClrImportant;
} BITMAPINFOHEADER;
#pragma pack(pop)

// One palette entry of a bitmap.
typedef struct tagRGBQUAD {
  uint8_t rgbBlue;
  uint8_t rgbGreen;
  uint8_t rgbRed;
  uint8_t rgbReserved;
} RGBQUAD;

// A rectangle in pixels; right and bottom are exclusive.
typedef struct tagRECT {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
} RECT;

typedef struct tagPOINT {
  int32_t x;
  int32_t y;
} POINT;

enum { BI_RGB = 0, BI_RLE8 = 1, BI_RLE4 = 2, BI_BITFIELDS = 3 };

// Flags of GlobalAlloc and LocalAlloc.
enum { GMEM_FIXED = 0, GMEM_MOVEABLE = 2, GMEM_ZEROINIT = 64, LMEM_ZEROINIT = 64 };

// Buffer sizes that _splitpath writes to at most, the closing NUL included, and the longest path.
enum { _MAX_DRIVE = 3, _MAX_DIR = 256, _MAX_FNAME = 256, _MAX_EXT = 256, MAX_PATH = 260 };

#ifdef __cplusplus
extern "C" {
#endif

// --- Memory blocks -------------------------------------------------------------------------------
// A handle is dead when it is null, was freed, or never came from GlobalAlloc. Dead handles are
// told by looking the handle up, never by touching memory.

// A new block of at least `bytes` bytes; null when out of memory. With GMEM_MOVEABLE the result is
// an opaque handle for GlobalLock, without it the handle is the pointer itself. GMEM_ZEROINIT asks
// for zeros. A size of 0 gives a block of size 0.
ORVO_PLATFORM_API void* GlobalAlloc(unsigned flags, size_t bytes);
// Pointer to the block's first byte, null for a dead handle. Locks count: one GlobalUnlock for
// each.
ORVO_PLATFORM_API void* GlobalLock(void* handle);
// Ends one lock. Non-zero while more locks hold; 0 when none is left or the handle is dead.
ORVO_PLATFORM_API int GlobalUnlock(void* handle);
// The block's size in bytes, which may exceed what was asked; 0 for a dead handle.
ORVO_PLATFORM_API size_t GlobalSize(void* handle);
// The handle of the block whose memory begins there; null for none.
ORVO_PLATFORM_API void* GlobalHandle(const void* memory);
// Releases the block, locked or not, and gives null; a dead handle is given back.
ORVO_PLATFORM_API void* GlobalFree(void* handle);

// Working memory addressed by pointer; LMEM_ZEROINIT asks for zeros. Null when out of memory.
ORVO_PLATFORM_API void* LocalAlloc(unsigned flags, size_t bytes);
// Releases a block of LocalAlloc and gives null; any other pointer is given back untouched.
ORVO_PLATFORM_API void* LocalFree(void* memory);

// --- Modules -------------------------------------------------------------------------------------

// Loads a shared library; null on failure. A name that holds a directory is taken from there only.
ORVO_PLATFORM_API void* LoadLibraryA(const char* path);
// Address of an exported function, null when the module lacks it.
ORVO_PLATFORM_API void* GetProcAddress(void* module, const char* name);
// Ends one LoadLibraryA. Non-zero on success; 0 for null.
ORVO_PLATFORM_API int FreeLibrary(void* module);
// Writes the module's absolute path, NUL-terminated and cut to `size` bytes; null means the
// process's main program. Gives the length without the NUL, `size` when cut, 0 on failure.
ORVO_PLATFORM_API unsigned GetModuleFileNameA(void* module, char* path, unsigned size);

// --- Files and paths -----------------------------------------------------------------------------
// Directories may be separated by / or \ everywhere; paths are NUL-terminated narrow strings.

// Deletes a file. Non-zero on success; a directory is never deleted.
ORVO_PLATFORM_API int DeleteFileA(const char* path);
// Splits a path into drive ("c:"), directory (with its last separator), name and extension (with
// its dot). Each part may be null; what does not fit its _MAX_ size is cut.
ORVO_PLATFORM_API void _splitpath(const char* path, char* drive, char* dir, char* name, char* ext);

// --- Multibyte strings (UTF-8) -------------------------------------------------------------------

// Compares without regard to the case of ASCII letters: below 0, 0 or above 0.
ORVO_PLATFORM_API int _mbsicmp(const unsigned char* a, const unsigned char* b);
// Compares byte by byte: below 0, 0 or above 0.
ORVO_PLATFORM_API int _mbscmp(const unsigned char* a, const unsigned char* b);
// Last occurrence of a character below 128, null when there is none.
ORVO_PLATFORM_API unsigned char* _mbsrchr(const unsigned char* text, unsigned character);

// --- Rectangles ----------------------------------------------------------------------------------

ORVO_PLATFORM_API int CopyRect(RECT* target, const RECT* source);
ORVO_PLATFORM_API int SetRect(RECT* rect, int left, int top, int right, int bottom);
// Non-zero when the point lies inside; left and top belong to the rectangle, right and bottom do
// not.
ORVO_PLATFORM_API int PtInRect(const RECT* rect, POINT point);
// Stores what both share and gives non-zero; all zeros and 0 when they share nothing.
ORVO_PLATFORM_API int IntersectRect(RECT* target, const RECT* a, const RECT* b);
// Non-zero when the rectangle has no area: right not beyond left, or bottom not beyond top.
ORVO_PLATFORM_API int IsRectEmpty(const RECT* rect);

#ifdef __cplusplus
}
#endif

#endif  // _WIN32
#endif  // ORVO_PLATFORM_H
