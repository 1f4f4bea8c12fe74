// How finely and how tightly a target is coded: what --compression, --quality and --png-level say.
#ifndef APPS_ORVO_COMPRESSION_H
#define APPS_ORVO_COMPRESSION_H

#include <cstdint>
#include <string_view>

#include "operations.h"
#include "pictures/tiff_writer.h"

namespace client {

// The words that --compression takes.
inline constexpr std::string_view kCompressions[] = {"none", "lzw",  "deflate",  "packbits",
                                                     "g4",   "jpeg", "lossless", "lossy"};

// Refuses a compression that the target's kind has not, or that does not take the picture.
int MindCompression(Job& job);

// Of a TIFF page; usual: where no option tells.
modules::TiffCoding TiffCodingFor(const Job& job, std::uint16_t usual);

// Write job.image. Result codes of the toolkit.
int SaveAsNewJpeg(const Job& job, const std::string& path);
int SaveAsPng(const Job& job, const std::string& path);
// Keeps every pixel where the option, a source of that kind that does, or a picture of few colours
// asks for it.
int SaveAsWebp(Job& job, const std::string& path);

}  // namespace client

#endif  // APPS_ORVO_COMPRESSION_H
