// Colour profiles: what a picture's numbers look like.
#ifndef APPS_ORVO_METADATA_ICC_PROFILE_H
#define APPS_ORVO_METADATA_ICC_PROFILE_H

#include <string>

#include "jpeg_head.h"

namespace client {

// The numbers that a profile explains: "RGB", "GRAY", "CMYK" ...; empty for what is no profile.
std::string ColorsOfProfile(View profile);

// A JPEG file tells it in several segments. Empty when one of them is missing.
bool IsProfile(const JpegSegment& segment);
Bytes JoinProfile(const JpegHead& head);
std::vector<JpegSegment> SplitProfile(View profile);

}  // namespace client

#endif  // APPS_ORVO_METADATA_ICC_PROFILE_H
