#include "jpeg_amendment.h"

#include <algorithm>

#include "exif_block.h"
#include "file_access.h"
#include "icc_profile.h"

namespace client {
namespace {

constexpr std::uint8_t kApp1 = kJpegApp0 + 1;
constexpr std::string_view kExif{"Exif\0\0", 6};

using Segments = std::vector<JpegSegment>;

// Behind the segment that has to come first.
Segments::iterator PlaceIn(Segments& segments) {
  const bool hasFirst = !segments.empty() && segments.front().marker == kJpegApp0;
  return segments.begin() + (hasFirst ? 1 : 0);
}

void TellOrientation(Segments& segments, int orientation) {
  auto found = std::find_if(segments.begin(), segments.end(), [](const JpegSegment& segment) {
    return segment.marker == kApp1 && StartsWith(segment.data, TextOf(ViewOf(kExif)));
  });
  ByteOrder order = ByteOrder::kLittle;
  TagDirectory tags;
  if (found != segments.end()) {
    const View block = View(found->data).subspan(kExif.size());
    if (OrientationOf(block) == orientation) return;
    tags = TagsOf(block, order);
  } else if (orientation == 1) {
    return;
  }
  Bytes number(2);
  PutNumber(number, static_cast<std::uint64_t>(orientation), order);
  tags.tags[kTagOrientation] = {kTypeShort, number};
  Bytes data(kExif.begin(), kExif.end());
  Append(data, BlockOf(tags, order));
  if (found == segments.end()) {
    found = segments.insert(PlaceIn(segments), {kApp1, {}});
  }
  found->data = std::move(data);
}

}  // namespace

void AmendJpeg(const std::string& path, int orientation, std::string_view profile) {
  JpegHead head = ReadJpegHead(path);
  const Segments before = head.segments;
  TellOrientation(head.segments, orientation);
  const int channels = JpegChannels(head);
  const std::string_view colors = channels == 1 ? "GRAY" : channels == 3 ? "RGB" : "CMYK";
  if (std::none_of(before.begin(), before.end(), IsProfile) &&
      ColorsOfProfile(ViewOf(profile)) == colors) {
    const Segments added = SplitProfile(ViewOf(profile));
    head.segments.insert(PlaceIn(head.segments), added.begin(), added.end());
  }
  if (head.segments != before) ReplaceJpegHead(path, head);
}

}  // namespace client
