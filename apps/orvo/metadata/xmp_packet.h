// XMP: a text of marks and names. It is changed where it tells of the picture's shape; all else,
// names that nobody here knows among it, stays to the letter.
#ifndef APPS_ORVO_METADATA_XMP_PACKET_H
#define APPS_ORVO_METADATA_XMP_PACKET_H

#include <string>

#include "exif_block.h"

namespace client {

// False when the packet is not UTF-8 text; then nothing is changed.
bool BringUpToDate(std::string& xmp, const PictureFacts& facts);

}  // namespace client

#endif  // APPS_ORVO_METADATA_XMP_PACKET_H
