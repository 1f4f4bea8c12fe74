#include "icc_profile.h"

#include <algorithm>
#include <map>

namespace client {
namespace {

constexpr std::string_view kMark{"ICC_PROFILE\0", 12};
constexpr std::size_t kHeadBytes = 14;  // with the segment's number, from 1, and their count
constexpr std::uint8_t kMarker = kJpegApp0 + 2;

}  // namespace

std::string ColorsOfProfile(View profile) {
  constexpr std::size_t kHeaderBytes = 128;
  constexpr std::size_t kColorsAt = 16;
  constexpr std::size_t kSignatureAt = 36;
  if (profile.size() < kHeaderBytes || !StartsWith(profile.subspan(kSignatureAt), "acsp"))
    return {};
  std::string colors(TextOf(profile.subspan(kColorsAt, 4)));
  colors.erase(colors.find_last_not_of(' ') + 1);
  return colors;
}

bool IsProfile(const JpegSegment& segment) {
  return segment.marker == kMarker && segment.data.size() >= kHeadBytes &&
         StartsWith(segment.data, kMark);
}

Bytes JoinProfile(const JpegHead& head) {
  std::map<std::uint8_t, View> pieces;
  std::size_t count = 0;
  for (const JpegSegment& segment : head.segments) {
    if (!IsProfile(segment)) continue;
    count = segment.data[kMark.size() + 1];
    pieces[segment.data[kMark.size()]] = View(segment.data).subspan(kHeadBytes);
  }
  Bytes profile;
  if (pieces.size() != count) return profile;
  for (const auto& [number, piece] : pieces) Append(profile, piece);
  return profile;
}

std::vector<JpegSegment> SplitProfile(View profile) {
  constexpr std::size_t kMostBytes = kMostSegmentBytes - kHeadBytes;
  const std::size_t count = (profile.size() + kMostBytes - 1) / kMostBytes;
  std::vector<JpegSegment> segments;
  if (count > UINT8_MAX) return segments;
  for (std::size_t i = 0; i < count; ++i) {
    JpegSegment segment{kMarker, {}};
    Append(segment.data, ViewOf(kMark));
    AppendNumber(segment.data, i + 1, 1);
    AppendNumber(segment.data, count, 1);
    const View rest = profile.subspan(i * kMostBytes);
    Append(segment.data, rest.first(std::min(rest.size(), kMostBytes)));
    segments.push_back(std::move(segment));
  }
  return segments;
}

}  // namespace client
