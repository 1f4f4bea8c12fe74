// Directories of tags, as TIFF files have one for each page and EXIF blocks have them, with those
// that hang below: the camera's, the place's and what programs agreed on. They can be read from one
// file and written to another.
#ifndef APPS_ORVO_METADATA_TAG_DIRECTORY_H
#define APPS_ORVO_METADATA_TAG_DIRECTORY_H

#include <functional>
#include <istream>
#include <map>
#include <optional>
#include <vector>

#include "bytes.h"

namespace client {

enum TagId : std::uint16_t {
  kTagWidth = 256,
  kTagHeight = 257,
  kTagPhotometric = 262,
  kTagDescription = 270,
  kTagOrientation = 274,
  kTagXResolution = 282,
  kTagYResolution = 283,
  kTagResolutionUnit = 296,
  kTagThumbnail = 513,
  kTagThumbnailBytes = 514,
  kTagXmp = 700,
  kTagIptc = 33723,
  kTagPhotoshop = 34377,
  kTagExif = 34665,
  kTagProfile = 34675,
  kTagGps = 34853,
  kTagLayers = 37724,
  kTagMakerNote = 37500,
  kTagColorSpace = 40961,
  kTagExifWidth = 40962,
  kTagExifHeight = 40963,
  kTagInterop = 40965,
};

enum TagType : std::uint16_t {
  kTypeByte = 1,
  kTypeText = 2,
  kTypeShort = 3,
  kTypeLong = 4,
  kTypeRational = 5,
  kTypeUndefined = 7,
  kTypeBigLong = 16,  // the first of those that only files with 64-bit offsets have
  kTypeBigDirectory = 18,
};
// Of one value; 0 for a type that nobody knows.
std::size_t BytesOfType(std::uint16_t type);

struct Tag {
  std::uint16_t type;
  Bytes value;           // in the byte order of the directory
  std::uint64_t at = 0;  // where it lay in its file, if it did
};
struct TagDirectory {
  std::map<std::uint16_t, Tag> tags;
  std::map<std::uint16_t, TagDirectory> below;  // by the tag that leads there
};
// A text ends with a zero byte.
Tag TextTag(std::string_view text);
void TurnByteOrder(TagDirectory& directory);

// How a file writes its directories.
struct TagForm {
  ByteOrder order = ByteOrder::kLittle;
  bool isBig = false;  // offsets of 64 bits

  [[nodiscard]] std::size_t offsetBytes() const { return isBig ? 8 : 4; }
  [[nodiscard]] std::size_t countBytes() const { return isBig ? 8 : 2; }
  [[nodiscard]] std::size_t entryBytes() const { return isBig ? 20 : 12; }
  [[nodiscard]] std::uint64_t firstAt() const { return isBig ? 8 : 4; }
};
std::optional<TagForm> ReadTagForm(std::istream& file);

// Where a file tells the position of a page's directory; pages count from 1. A walk goes on from
// the place that it came to last, which stays right when later pages move.
struct PagePlace {
  int page = 0;  // 0 for none yet
  std::uint64_t at = 0;
};
std::optional<std::uint64_t> FindPage(std::istream& file, TagForm form, int page, PagePlace& last);
// The number in the file at that place; 0 behind its end.
std::uint64_t NumberAt(std::istream& file, TagForm form, std::uint64_t at, std::size_t bytes);

// Reads what lies in the file, of the tags wanted, 64 MiB at most; what does not is left out, and
// `isWhole` becomes false.
TagDirectory ReadTags(std::istream& file, TagForm form, std::uint64_t at,
                      const std::function<bool(std::uint16_t)>& wanted, bool& isWhole);

// The directory and all below as they lie from `at` on, an even place; `next` is the following
// page's. Nothing when that is farther than the form's offsets reach.
std::optional<Bytes> WriteTags(const TagDirectory& directory, TagForm form, std::uint64_t at,
                               std::uint64_t next);

}  // namespace client

#endif  // APPS_ORVO_METADATA_TAG_DIRECTORY_H
