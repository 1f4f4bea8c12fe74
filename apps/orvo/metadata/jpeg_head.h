// What stands before the picture in a JPEG file: a chain of segments.
#ifndef APPS_ORVO_METADATA_JPEG_HEAD_H
#define APPS_ORVO_METADATA_JPEG_HEAD_H

#include <string>
#include <vector>

#include "bytes.h"

namespace client {

constexpr std::size_t kMostSegmentBytes = 65533;
constexpr std::uint8_t kJpegApp0 = 0xE0;
constexpr std::uint8_t kJpegComment = 0xFE;

struct JpegSegment {
  std::uint8_t marker;  // 0xE0 to 0xEF are the applications' own
  Bytes data;           // without marker and length

  bool operator==(const JpegSegment&) const = default;
};

struct JpegHead {
  std::vector<JpegSegment> segments;  // up to the first scan
  std::uint64_t scanAt = 0;           // where that begins in the file
};

// Throws MetadataFault when the chain is broken.
JpegHead ReadJpegHead(const std::string& path);
// Gives the file other segments; the scans stay.
void ReplaceJpegHead(const std::string& path, const JpegHead& head);

// 1 for gray, 3, or 4 for inks; 0 when the head does not say.
int JpegChannels(const JpegHead& head);

}  // namespace client

#endif  // APPS_ORVO_METADATA_JPEG_HEAD_H
