// Pictures on their way out of a file into a bitmap.
#ifndef MODULES_PICTURES_LOADING_H
#define MODULES_PICTURES_LOADING_H

#include "common/dib_image.h"
#include "pictures/picture.h"

namespace modules {

// Describes the page at hand as it is when loaded; fields of the file as a whole stay.
void DescribePicture(const Picture& picture, LTFILEINFO& info);

// Reads the rows of the page at hand and turns them upright.
OwnedBlock LoadPicture(PictureReader& reader);

}  // namespace modules

#endif  // MODULES_PICTURES_LOADING_H
