// How finely a file tells its pixels.
#ifndef APPS_ORVO_SAMPLE_DEPTH_H
#define APPS_ORVO_SAMPLE_DEPTH_H

#include <string>

namespace client {

// Bits of a sample in the file, when they are more than the toolkit's 8; else 8.
int SampleBits(const std::string& path, int page);

}  // namespace client

#endif  // APPS_ORVO_SAMPLE_DEPTH_H
