#include <algorithm>

#include "carried.h"
#include "exif_block.h"
#include "file_access.h"
#include "icc_profile.h"
#include "metadata.h"

namespace client {
namespace {

constexpr std::uint8_t kApp1 = kJpegApp0 + 1;
constexpr std::uint8_t kApp2 = kJpegApp0 + 2;
constexpr std::uint8_t kPhotoshopMarker = kJpegApp0 + 13;
constexpr std::uint8_t kAdobeMarker = kJpegApp0 + 14;  // tells how the scans are coded
constexpr std::uint8_t kLastApp = kJpegApp0 + 15;

constexpr std::string_view kJfif{"JFIF\0", 5};
constexpr std::string_view kExif{"Exif\0\0", 6};
constexpr std::string_view kXmp{"http://ns.adobe.com/xap/1.0/\0", 29};
constexpr std::string_view kPhotoshop{"Photoshop 3.0\0", 14};
constexpr std::string_view kFurtherPictures{"MPF\0", 4};
constexpr std::size_t kDensityAt = 7;  // behind mark and version
constexpr std::size_t kDensityBytes = 5;

bool Is(const JpegSegment& segment, std::uint8_t marker, std::string_view mark) {
  return segment.marker == marker && StartsWith(segment.data, mark);
}

bool IsMetadata(const JpegSegment& segment) {
  const bool isApp = segment.marker > kJpegApp0 && segment.marker <= kLastApp;
  return segment.marker == kJpegComment || (isApp && segment.marker != kAdobeMarker);
}

// Adds to the segments what fits into one, else tells that it is lost.
void Add(std::vector<JpegSegment>& segments, std::uint8_t marker, std::string_view mark, View data,
         std::string_view name, Carried& carried) {
  if (mark.size() + data.size() > kMostSegmentBytes) {
    return carried.lose(name, "it is too long for a JPEG file");
  }
  JpegSegment segment{marker, {}};
  Append(segment.data, ViewOf(mark));
  Append(segment.data, data);
  segments.push_back(std::move(segment));
}

std::vector<JpegSegment> SegmentsOf(Carried& carried) {
  std::vector<JpegSegment> segments;
  if (!carried.exif.empty()) {
    Add(segments, kApp1, kExif, carried.exif, "the EXIF data", carried);
  }
  if (!carried.xmp.empty())
    Add(segments, kApp1, kXmp, ViewOf(carried.xmp), "the XMP data", carried);
  const Bytes photoshop = WritePhotoshop(carried.photoshop);
  constexpr std::size_t kMost = kMostSegmentBytes - kPhotoshop.size();
  for (View rest(photoshop); !rest.empty(); rest = rest.subspan(std::min(kMost, rest.size()))) {
    Add(segments, kPhotoshopMarker, kPhotoshop, rest.first(std::min(kMost, rest.size())), {},
        carried);
  }
  for (JpegSegment& segment : SplitProfile(carried.profile)) segments.push_back(std::move(segment));
  segments.insert(segments.end(), carried.segments.begin(), carried.segments.end());
  for (const std::string& comment : carried.comments) {
    Add(segments, kJpegComment, {}, ViewOf(comment), "the comment", carried);
  }
  for (const PngText& text : carried.texts) {
    const std::string comment =
        text.keyword == "Comment" ? text.text : text.keyword + ": " + text.text;
    Add(segments, kJpegComment, {}, ViewOf(comment), "the text " + text.keyword, carried);
  }
  return segments;
}

}  // namespace

void ReadJpegMetadata(const std::string& path, Carried& carried) {
  const JpegHead head = ReadJpegHead(path);
  Bytes photoshop;
  for (const JpegSegment& segment : head.segments) {
    const View data(segment.data);
    if (Is(segment, kJpegApp0, kJfif) && data.size() >= kDensityAt + kDensityBytes) {
      const View density = data.subspan(kDensityAt, kDensityBytes);
      carried.density.assign(density.begin(), density.end());
    } else if (Is(segment, kApp1, kExif) && carried.exif.empty()) {
      carried.exif.assign(data.begin() + kExif.size(), data.end());
    } else if (Is(segment, kApp1, kXmp)) {
      carried.xmp = TextOf(data.subspan(kXmp.size()));
    } else if (Is(segment, kPhotoshopMarker, kPhotoshop)) {
      Append(photoshop, data.subspan(kPhotoshop.size()));
    } else if (segment.marker == kJpegComment) {
      carried.comments.emplace_back(TextOf(data));
    } else if (IsMetadata(segment) && !IsProfile(segment) &&
               !Is(segment, kApp2, kFurtherPictures)) {
      carried.segments.push_back(segment);
    }
  }
  carried.photoshop = ReadPhotoshop(photoshop);
  carried.profile = JoinProfile(head);
  if (!carried.profile.empty()) return;
  // A profile with a piece missing stays as it was.
  std::ranges::copy_if(head.segments, std::back_inserter(carried.segments), IsProfile);
}

void WriteJpegMetadata(const std::string& path, Carried& carried) {
  JpegHead head = ReadJpegHead(path);
  const int channels = JpegChannels(head);
  carried.fitProfile(channels == 1 ? "GRAY" : channels == 3 ? "RGB" : "CMYK");
  carried.loseChunks("JPEG");
  const std::vector<JpegSegment> before = head.segments;
  std::erase_if(head.segments, IsMetadata);
  auto place = head.segments.begin();
  if (place != head.segments.end() && Is(*place, kJpegApp0, kJfif)) {
    if (!carried.density.empty() && place->data.size() >= kDensityAt + kDensityBytes) {
      std::copy(carried.density.begin(), carried.density.end(), place->data.begin() + kDensityAt);
    }
    ++place;
  }
  const std::vector<JpegSegment> added = SegmentsOf(carried);
  head.segments.insert(place, added.begin(), added.end());
  if (head.segments != before) ReplaceJpegHead(path, head);
}

void WipeJpegPreview(const std::string& path) {
  JpegHead head = ReadJpegHead(path);
  bool changed = false;
  for (JpegSegment& segment : head.segments) {
    if (!Is(segment, kApp1, kExif)) continue;
    Bytes exif(segment.data.begin() + kExif.size(), segment.data.end());
    if (!WipePreview(exif)) continue;
    std::copy(exif.begin(), exif.end(), segment.data.begin() + kExif.size());
    changed = true;
  }
  if (changed) ReplaceJpegHead(path, head);
}

}  // namespace client
