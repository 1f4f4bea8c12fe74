// The rows of a picture on their way into a bitmap.
#ifndef MODULES_PICTURES_PICTURE_ROWS_H
#define MODULES_PICTURES_PICTURE_ROWS_H

#include <vector>

#include "common/dib_image.h"
#include "pictures/picture.h"

namespace modules {

// A new bitmap with the picture's depth, resolution and palette.
OwnedBlock BitmapFor(const Picture& picture, int width, int height);

// The bitmap turned as the orientation says.
OwnedBlock UprightBlock(OwnedBlock block, int orientation);

// Reads a started picture's rows as such a bitmap has them. They go straight there where they are
// as it has them; else by way of another row.
class PictureRows {
 public:
  explicit PictureRows(PictureReader& reader);
  // The next row.
  void read(std::uint8_t* row);

 private:
  PictureReader& reader_;
  const Picture& picture_;
  std::vector<std::uint8_t> other_;
};

}  // namespace modules

#endif  // MODULES_PICTURES_PICTURE_ROWS_H
