// What PNG chunks say in words, and what programs pack into such words.
#ifndef APPS_ORVO_METADATA_PNG_TEXT_H
#define APPS_ORVO_METADATA_PNG_TEXT_H

#include <optional>

#include "png_chunks.h"

namespace client {

struct PngText {
  std::string keyword;
  std::string text;  // UTF-8
};

// Nothing for a chunk of another kind and for one that is damaged or has more bytes than there is
// room for; what it has is taken from the room.
std::optional<PngText> ReadPngText(const PngChunk& chunk, std::size_t& room);
PngChunk WritePngText(const PngText& text);

// Blocks of bytes in hexadecimal under a keyword "Raw profile type exif" and the like. PNG has no
// chunk of its own for IPTC, so programs agreed on this.
constexpr std::string_view kRawKeyword = "Raw profile type ";
std::optional<Bytes> ReadRawProfile(const PngText& text);
PngText WriteRawProfile(std::string_view kind, View block);

// The colour profile; empty when the chunk is damaged, or too long.
Bytes ReadPngProfile(const PngChunk& chunk, std::size_t& room);
PngChunk WritePngProfile(View profile);

}  // namespace client

#endif  // APPS_ORVO_METADATA_PNG_TEXT_H
