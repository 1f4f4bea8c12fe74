// How finely a file tells its pixels.
#ifndef APPS_ORVO_SAMPLE_DEPTH_H
#define APPS_ORVO_SAMPLE_DEPTH_H

#include <string>

#include "tag_directory.h"

namespace client {

// Bits of a sample in the file, when they are more than the toolkit's 8; else 8.
// `last`, if any, is where a walk through the pages of a TIFF file goes on from.
int SampleBits(const std::string& path, int page, PagePlace* last = nullptr);

}  // namespace client

#endif  // APPS_ORVO_SAMPLE_DEPTH_H
