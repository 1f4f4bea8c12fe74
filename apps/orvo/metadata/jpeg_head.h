// What stands before the picture in a JPEG file: a chain of segments.
#ifndef APPS_ORVO_METADATA_JPEG_HEAD_H
#define APPS_ORVO_METADATA_JPEG_HEAD_H

#include <string>
#include <vector>

#include "bytes.h"

namespace client {

constexpr std::size_t kMostSegmentBytes = 65533;
// Marks, which follow a byte of 0xFF.
constexpr std::uint8_t kJpegStart = 0xD8;
constexpr std::uint8_t kJpegEnd = 0xD9;
constexpr std::uint8_t kJpegScan = 0xDA;
constexpr std::uint8_t kJpegApp0 = 0xE0;
constexpr std::uint8_t kJpegComment = 0xFE;

// Whether it begins what describes the coded picture; the others of that row are tables and
// extensions.
constexpr bool BeginsJpegFrame(std::uint8_t mark) {
  return (mark & 0xF0) == 0xC0 && mark != 0xC4 && mark != 0xC8 && mark != 0xCC;
}

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
