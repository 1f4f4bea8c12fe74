// The camera's tags as JPEG, PNG and Photoshop files hold them: a block that begins with its byte
// order. It is changed where it lies, so that everything else in it stays where it was: makers'
// notes tell positions in the block.
#ifndef APPS_ORVO_METADATA_EXIF_BLOCK_H
#define APPS_ORVO_METADATA_EXIF_BLOCK_H

#include "bytes.h"
#include "tag_directory.h"

namespace client {

// What the tags tell of the picture that they come with.
struct PictureFacts {
  int width;
  int height;
  // 0 leaves what the tags say.
  double xDotsPerInch = 0;
  double yDotsPerInch = 0;
  bool inSrgb = false;  // the pixels became sRGB
};

// The picture is upright now; the preview, which shows it as it was, is wiped out. False when the
// block is damaged; then nothing is changed.
bool BringUpToDate(Bytes& exif, const PictureFacts& facts);

// Wipes out the preview alone. False when there is none.
bool WipePreview(Bytes& exif);

// How the camera was held, 1 to 8, before that is brought up to date.
int OrientationOf(View exif);

// Whether the camera's numbers are Adobe RGB, which it tells without a profile.
bool TellsAdobeRgb(View exif);

// The block's directories, and a block of directories.
TagDirectory TagsOf(View exif, ByteOrder& order);
Bytes BlockOf(const TagDirectory& directory, ByteOrder order);

}  // namespace client

#endif  // APPS_ORVO_METADATA_EXIF_BLOCK_H
