// Files to read, and what the module's entries do with them.
#ifndef MODULES_LTFIL13N_SOURCE_FILE_H
#define MODULES_LTFIL13N_SOURCE_FILE_H

#include <string>

#include "pictures/formats.h"

namespace modules {

// Checks a caller's path and gives it with the system's own separators.
std::string TakePath(const char* path);

struct Size {
  int width;
  int height;
};
// Reads the first page into a bitmap that holds nothing. When frame is not null the picture may be
// shrunk, as long as it stays at least that large, and then has 8 bits or more. Gives the depth of
// the page.
int LoadFile(const char* path, struct_LEAD_Bitmap& bitmap, const Size* frame = nullptr);

// Describes a page, counted from 1.
LTFILEINFO DescribeFile(const char* path, int page);

// Change a bitmap's depth, by the flags of L_ColorResBitmap or as files do: 0 and its own depth
// then leave it alone. On failure the bitmap is as it was.
void ChangeDepth(struct_LEAD_Bitmap& bitmap, int bits, unsigned flags);
void BringToDepth(struct_LEAD_Bitmap& bitmap, int bits);

}  // namespace modules

#endif  // MODULES_LTFIL13N_SOURCE_FILE_H
