// Colours that a file tells by other means than a profile.
#ifndef APPS_ORVO_METADATA_TOLD_COLORS_H
#define APPS_ORVO_METADATA_TOLD_COLORS_H

#include "carried.h"

namespace client {

// Whether a PNG file says that its colours are sRGB, or as good as that.
bool TellsSrgb(const Carried& carried);

// The profile, or one made of what only some files can tell; empty for sRGB.
Bytes ProfileIn(const Carried& carried);

}  // namespace client

#endif  // APPS_ORVO_METADATA_TOLD_COLORS_H
