// The codecs of the module, each in its own file.
#ifndef MODULES_PICTURES_CODECS_H
#define MODULES_PICTURES_CODECS_H

#include <string>

#include "pictures/formats.h"

namespace modules {

extern const Codec kBmpCodec;
extern const Codec kJpegCodec;
extern const Codec kPngCodec;
extern const Codec kTiffCodec;
extern const Codec kPsdCodec;
extern const Codec kMagickCodec;

// Name and version of each library in use, separated by ", ".
std::string CodecNames();

}  // namespace modules

#endif  // MODULES_PICTURES_CODECS_H
