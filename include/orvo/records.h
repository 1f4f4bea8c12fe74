// The records and the callback that cross the library's boundary.
#ifndef ORVO_RECORDS_H
#define ORVO_RECORDS_H

#include <stdint.h>

// Reports progress: percent rises from 0 to 100, userData is always null. Runs on the thread of the
// call that it watches. A result of 16 (ORVO_ERR_CANCELLED) asks the operation to stop, any other
// result lets it go on.
//
// The imaging modules keep a callback that they were given: it stays installed after the call until
// another one replaces it, and serves later loads and saves too. Whoever passes a callback keeps it
// callable for the life of the instance.
typedef int (*StatusCallback)(int percent, void* userData);

// Filled by the imaging module. The texts are NUL-terminated.
typedef struct LTVERSIONINFO {
  int32_t size;      // of this record in bytes, set by the caller
  char product[64];  // name of the module
  char version[16];  // its version
  char codecs[256];  // name and version of each library in use, separated by ", "
} LTVERSIONINFO;

// The record of GetVersion.
typedef struct ORVOVERSIONINFO {
  char version[12];           // receives the toolkit's version, "1.0"
  LTVERSIONINFO* vendorInfo;  // set by the caller; what it points to is filled
} ORVOVERSIONINFO;

// The record of ImageFileInfo.
typedef struct ORVOIMAGEFILEINFO {
  int32_t width;         // pixels
  int32_t height;        // pixels
  int32_t bitsPerPixel;  // depth that the image has when loaded
  int32_t order;         // order of the colour bytes: 1 blue first
  int32_t xResolution;   // dots per inch, 0 when the file gives none
  int32_t yResolution;   // dots per inch, 0 when the file gives none
  int32_t sizeInMemory;  // bytes that the image takes when loaded
  int32_t sizeOnDisk;    // bytes of the file
} ORVOIMAGEFILEINFO;

// One item of the list of FindRegions: source pixels from the top left of the image as shown, right
// and bottom exclusive.
typedef struct RegionRecord {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
  uint8_t reserved[20];  // zero
} RegionRecord;

#endif  // ORVO_RECORDS_H
