// What a JPEG file is told that others say of it.
#ifndef APPS_ORVO_METADATA_JPEG_AMENDMENT_H
#define APPS_ORVO_METADATA_JPEG_AMENDMENT_H

#include <string>
#include <string_view>

namespace client {

// Makes the file tell how it has to be turned, 1 to 8 as cameras do, and the profile of its
// colours unless it has one. A file that tells the same already stays as it is. Throws
// MetadataFault when it could not be written anew.
void AmendJpeg(const std::string& path, int orientation, std::string_view profile);

}  // namespace client

#endif  // APPS_ORVO_METADATA_JPEG_AMENDMENT_H
