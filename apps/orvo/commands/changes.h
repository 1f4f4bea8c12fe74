// Where two pictures of the same shape differ.
#ifndef APPS_ORVO_COMMANDS_CHANGES_H
#define APPS_ORVO_COMMANDS_CHANGES_H

#include "marks.h"

namespace client {

// The rectangles round what differs, from left to right; parts that lie within a few pixels of each
// other share one. Pictures of 16, 24 or 32 bits; opacity does not count. Pictures of different
// shapes have no such rectangles.
Rects ChangedParts(DibHandle before, DibHandle after);

}  // namespace client

#endif  // APPS_ORVO_COMMANDS_CHANGES_H
