// The chunks of a PNG file, as they are.
#ifndef APPS_ORVO_METADATA_PNG_CHUNKS_H
#define APPS_ORVO_METADATA_PNG_CHUNKS_H

#include <string>
#include <vector>

#include "bytes.h"

namespace client {

struct PngChunk {
  std::string type;  // four letters
  Bytes data;
};

struct PngChunks {
  std::vector<PngChunk> list;       // all but those of the pixels
  std::size_t beforePixels = 0;     // how many of them stand before the pixels
  std::uint64_t pixelsAt = 0;       // where the pixels begin in the file
  std::vector<std::string> broken;  // types of chunks left out, since their sums are wrong
};

// Throws MetadataFault when the chain is broken before the pixels.
PngChunks ReadPngChunks(const std::string& path);
// Gives the file other chunks before the pixels; what follows stays.
void ReplacePngChunks(const std::string& path, std::span<const PngChunk> chunks,
                      std::uint64_t pixelsAt);

}  // namespace client

#endif  // APPS_ORVO_METADATA_PNG_CHUNKS_H
