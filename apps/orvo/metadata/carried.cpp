#include "carried.h"

#include <algorithm>
#include <set>

#include "icc_profile.h"
#include "told_colors.h"

namespace client {
namespace {

std::string CannotHold(std::string_view kind) {
  return std::string(kind) + " cannot hold it";
}

}  // namespace

void Carried::fitProfile(std::string_view colors) {
  if (profile.empty()) return;
  const std::string own = ColorsOfProfile(profile);
  if (own == colors || own.empty()) return;  // a damaged one stays as it was
  lose("the color profile", "it is for " + own + " and the result is " + std::string(colors));
  profile.clear();
}

void Carried::loseSegments(std::string_view kind) {
  std::set<int> told;
  for (const JpegSegment& segment : segments) {
    const int number = segment.marker - kJpegApp0;
    if (!told.insert(number).second) continue;
    // Of the first kind only what did not fit into one XMP segment is carried as it was.
    lose(number == 1          ? "the extended XMP data"
         : IsProfile(segment) ? "the damaged color profile"
                              : "the JPEG segment APP" + std::to_string(number),
         CannotHold(kind));
  }
  segments.clear();
}

void Carried::loseChunks(std::string_view kind) {
  const bool isStandard = TellsSrgb(*this);
  for (const PngChunk& chunk : chunks) {
    // Texts are carried as such, the resolution comes with the picture, and what is not told about
    // its colours is sRGB.
    static const std::set<std::string_view> kToldElsewhere{"tEXt", "zTXt", "iTXt", "pHYs", "sRGB"};
    const bool isTone =
        chunk.type == "gAMA" || chunk.type == "cHRM" || (chunk.type == "cICP" && !profile.empty());
    if (kToldElsewhere.contains(chunk.type) || (isTone && (isStandard || !profile.empty())))
      continue;
    lose("the PNG chunk " + chunk.type, CannotHold(kind));
  }
  chunks.clear();
}

void Carried::loseTexts(std::string_view kind) {
  if (!comments.empty()) lose("the comment", CannotHold(kind));
  for (const PngText& text : texts) lose("the text " + text.keyword, CannotHold(kind));
  comments.clear();
  texts.clear();
}

void Carried::loseAll(std::string_view kind) {
  if (!exif.empty()) lose("the EXIF data", CannotHold(kind));
  if (!xmp.empty()) lose("the XMP data", CannotHold(kind));
  const Bytes iptc = TakePhotoshop(photoshop, kPhotoshopIptc);
  if (!iptc.empty()) lose("the IPTC data", CannotHold(kind));
  if (!photoshop.empty()) lose("the Photoshop data", CannotHold(kind));
  if (!profile.empty()) lose("the color profile", CannotHold(kind));
  loseTexts(kind);
  loseSegments(kind);
  loseChunks(kind);
}

}  // namespace client
