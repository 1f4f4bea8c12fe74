// What PNG files tell about showing them that the library passes over.
#ifndef MODULES_PICTURES_PNG_TAGS_H
#define MODULES_PICTURES_PNG_TAGS_H

#include <cstdio>

namespace modules {

// The orientation by the camera's tags, in a chunk of their own or in a text, or, when there are
// none, by those of an editor, wherever in the file they stand. Leaves the file where it was.
int ReadPngOrientation(std::FILE* file);

}  // namespace modules

#endif  // MODULES_PICTURES_PNG_TAGS_H
