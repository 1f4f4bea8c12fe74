// How many pictures a file holds of which the readers take one, told without decoding any. Without
// its library, or of a damaged file, 1.
#ifndef MODULES_PICTURES_FRAME_COUNTS_H
#define MODULES_PICTURES_FRAME_COUNTS_H

namespace modules {

// Pictures of a HEIC or AVIF file that stand for themselves: no thumbnails, no tiles.
int CountHeifPictures(const char* path);
// Frames of a JPEG XL animation.
int CountJxlFrames(const char* path);

}  // namespace modules

#endif  // MODULES_PICTURES_FRAME_COUNTS_H
