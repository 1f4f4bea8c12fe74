#include "jpeg_head.h"

#include "file_access.h"

namespace client {
namespace {

constexpr std::uint8_t kMark = 0xFF;
constexpr std::size_t kLengthBytes = 2;  // of a segment, counted in its length

}  // namespace

JpegHead ReadJpegHead(const std::string& path) {
  FileReader file(path);
  if (file.read(2) != Bytes{kMark, kJpegStart}) throw MetadataFault("no JPEG file");
  JpegHead head;
  for (;;) {
    head.scanAt = file.position();
    if (file.read(1).front() != kMark) throw MetadataFault("the chain of segments is broken");
    std::uint8_t marker = kMark;
    while (marker == kMark) marker = file.read(1).front();  // filled up with marks
    if (marker == kJpegScan) return head;
    const std::uint64_t length = NumberIn(file.read(kLengthBytes), kLengthBytes);
    if (length < kLengthBytes) throw MetadataFault("the chain of segments is broken");
    head.segments.push_back({marker, file.read(length - kLengthBytes)});
  }
}

void ReplaceJpegHead(const std::string& path, const JpegHead& head) {
  Bytes bytes{kMark, kJpegStart};
  for (const JpegSegment& segment : head.segments) {
    Append(bytes, Bytes{kMark, segment.marker});
    AppendNumber(bytes, segment.data.size() + kLengthBytes, kLengthBytes);
    Append(bytes, segment.data);
  }
  ReplaceHead(path, bytes, head.scanAt);
}

int JpegChannels(const JpegHead& head) {
  constexpr std::size_t kChannelsAt = 5;  // behind bits, height and width
  for (const JpegSegment& segment : head.segments) {
    if (BeginsJpegFrame(segment.marker) && segment.data.size() > kChannelsAt) {
      return segment.data[kChannelsAt];
    }
  }
  return 0;
}

}  // namespace client
