// What PNG files hold that the library passes over, or does not give as it is.
#ifndef MODULES_PICTURES_PNG_TAGS_H
#define MODULES_PICTURES_PNG_TAGS_H

#include <cstdio>
#include <vector>

#include "pictures/picture.h"

namespace modules {

// The orientation by the camera's tags, in a chunk of their own or in a text, or, when there are
// none, by those of an editor, wherever in the file they stand. Leaves the file where it was.
int ReadPngOrientation(std::FILE* file);

// Where the deflated pixels lie. Leaves the file where it was.
std::vector<CodedParts::Stretch> FindPngPixels(std::FILE* file);

}  // namespace modules

#endif  // MODULES_PICTURES_PNG_TAGS_H
