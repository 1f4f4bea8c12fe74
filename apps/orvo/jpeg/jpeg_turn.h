// JPEG files turned, mirrored and cut without loss: their coefficients change places, nothing is
// coded anew.
//
// The picture is taken as it is shown. The result is stored as it is shown and says so in its EXIF
// block, whose measures follow; a preview in there stays as it was, and dropping it is left to
// whoever writes metadata. All other segments of applications, the comments, and what follows the
// end of the picture stay byte for byte.
//
// Not possible: sampling factors that hardly any encoder uses, and damaged files. The target, which
// may be the source, is then left as it was.
#ifndef APPS_ORVO_JPEG_JPEG_TURN_H
#define APPS_ORVO_JPEG_JPEG_TURN_H

#include <cstdint>
#include <string>

#include <orvo/platform.h>

#include "outcome.h"

namespace client {

// A picture can begin with whole blocks only: what becomes of one that ends within a block, at an
// edge that would come to lie at the left or at the top.
enum class OddEdge : std::uint8_t {
  kKeep,  // not possible; what needs no such edge is
  kTrim,  // the pixels of that block are dropped
};

struct Turn {
  int quarterTurnsClockwise = 0;  // below 0 for the other way round
  bool mirrored = false;          // left to right, before it is turned
};

Outcome TurnJpeg(const std::string& source, const Turn& turn, OddEdge edge,
                 const std::string& target);

// Keeps a part, in pixels from the top left as shown, right and bottom exclusive. Possible when its
// left and top are borders between blocks, which lie 8 or, where colours are coarser, 16 pixels
// apart.
Outcome CutJpeg(const std::string& source, const RECT& part, const std::string& target);

}  // namespace client

#endif  // APPS_ORVO_JPEG_JPEG_TURN_H
