// Corrections written into a JPEG file without coding the rest of it anew.
#ifndef APPS_ORVO_JPEG_JPEG_PATCH_H
#define APPS_ORVO_JPEG_JPEG_PATCH_H

#include <string>

#include <orvo/dib.h>

#include "outcome.h"

namespace client {

// Writes to `target`, which may be the source, the JPEG file `source` with the picture `after` in
// place of `before`, the one that was loaded from it, upright. Only blocks in which a pixel differs
// are coded anew, with the file's own tables; where colours are sampled coarser than tones, all
// blocks that share such a coarse one. The coefficients of all others stay, and so do tables,
// sampling, restart interval, the segments of applications, comments and what follows the end of
// the picture; segments that stood behind tables move before them, and Huffman tables are new.
// Decoders that blend coarse colours may show pixels beside such blocks a trace different.
//
// The orientation stays as it is told. So does a preview in the EXIF block: it shows the old
// picture, and dropping it is left to whoever writes metadata.
//
// Not possible: pictures of inks, arithmetic or lossless coding, 12 bits, damaged files, pictures
// that differ in shape from each other or from the file. The target is then left as it was.
Outcome PatchJpeg(const std::string& source, DibHandle before, DibHandle after,
                  const std::string& target);

}  // namespace client

#endif  // APPS_ORVO_JPEG_JPEG_PATCH_H
