// What one file may cost. A file that states more is refused when its first bytes are read, before
// memory is set aside for it, by the same numbers whether it is loaded, looked at, made into a
// thumbnail or put into a document.
//
//   OrvoFileLimits limits = *OrvoLimitFiles(nullptr);
//   limits.pixels = 100 * 1000 * 1000;
//   OrvoLimitFiles(&limits);
#ifndef ORVO_FILE_LIMITS_H
#define ORVO_FILE_LIMITS_H

#include <orvo/platform.h>

#ifdef __cplusplus
extern "C" {
#endif

// All of them may be reached, none exceeded. The defaults let pass what a block can hold: a
// picture of 1 GiB, a 1-bit page of 60,000 by 60,000 pixels.
typedef struct OrvoFileLimits {
  uint64_t side;    // of a picture's width and of its height, pixels; 1,000,000
  uint64_t pixels;  // of a picture; 2^32
  uint64_t memory;  // bytes that decoding takes: the picture and what its decoder holds beside it,
                    // as far as the header tells that; 2^32
  uint64_t scans;   // of a progressive JPEG file, each of which goes over the whole picture; 100
  uint64_t pieces;  // of a PNG file beside its picture, such as texts; 1,000
  uint64_t pages;   // of a TIFF file; 65,535
} OrvoFileLimits;

// Takes new limits for the whole process, unless they are null; gives those that hold, which live
// as long as the process. To be called while no file is being read.
ORVO_PLATFORM_API const OrvoFileLimits* OrvoLimitFiles(const OrvoFileLimits* limits);

#ifdef __cplusplus
}
#endif

#endif  // ORVO_FILE_LIMITS_H
