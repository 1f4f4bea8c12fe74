#include "further_pictures.h"

#include <algorithm>
#include <cstdlib>

#include "file_access.h"
#include "jpeg_head.h"
#include "pictures/frame_counts.h"
#include "pictures/tags.h"

namespace client {
namespace {

std::uint64_t Number(FileReader& file, std::size_t bytes, ByteOrder order = ByteOrder::kBig) {
  return NumberIn(file.read(bytes), bytes, order);
}

// Each counts as it goes, so that a fault leaves what it met.
using Path = const std::string&;

// Bytes of the table of colours whose size the lowest bits of the flags tell.
std::uint64_t GifTableBytes(std::uint64_t flags) {
  constexpr std::uint64_t kHasTable = 0x80;
  return (flags & kHasTable) == 0 ? 0 : std::uint64_t{3} << ((flags & 7U) + 1);
}

void CountGif(Path /*path*/, FileReader& file, int& pictures) {
  constexpr std::uint64_t kFlagsAt = 10;
  constexpr std::uint64_t kPicture = 0x2C;
  constexpr std::uint64_t kEnd = 0x3B;
  file.skip(kFlagsAt);
  const std::uint64_t flags = Number(file, 1);
  file.skip(2 + GifTableBytes(flags));
  for (std::uint64_t kind = Number(file, 1); kind != kEnd; kind = Number(file, 1)) {
    if (kind == kPicture) {
      ++pictures;
      file.skip(8);  // place and measures
      file.skip(GifTableBytes(Number(file, 1)));
    }
    file.skip(1);  // the bits of a code, or the kind of extension
    while (const std::uint64_t block = Number(file, 1)) file.skip(block);
  }
}

// An animation may begin with the picture itself, or leave it to those who know none.
void CountPng(Path /*path*/, FileReader& file, int& pictures) {
  constexpr std::uint64_t kSumBytes = 4;
  file.skip(8);
  int frames = 0;
  bool takesPicture = false;
  for (std::string type; type != "IDAT";) {
    const std::uint64_t bytes = Number(file, 4);
    const std::uint64_t end = file.position() + 4 + bytes + kSumBytes;
    type = TextOf(file.read(4));
    if (type == "acTL") frames = static_cast<int>(Number(file, 4));
    if (type == "fcTL") takesPicture = true;
    file.moveTo(end);
  }
  pictures = frames + (takesPicture ? 0 : 1);
}

void CountWebp(Path /*path*/, FileReader& file, int& pictures) {
  file.skip(12);
  while (file.position() < file.size()) {
    if (StartsWith(file.read(4), "ANMF")) ++pictures;
    const std::uint64_t bytes = Number(file, 4, ByteOrder::kLittle);
    file.skip(bytes + bytes % 2);
  }
}

// Layers of more than 8 bits a sample stand in a block of their own, behind an empty list.
void CountLayers(Path /*path*/, FileReader& file, int& layers) {
  constexpr std::uint64_t kLargeForm = 2;
  file.skip(4);
  const std::size_t lengthBytes = Number(file, 2) == kLargeForm ? 8 : 4;
  file.skip(20);
  for (int section = 0; section < 2; ++section) file.skip(Number(file, 4));
  std::uint64_t left = Number(file, lengthBytes);
  const std::uint64_t end = file.position() + left;
  if (left == 0) return;
  std::uint64_t list = Number(file, lengthBytes);
  if (list == 0) {
    file.skip(Number(file, 4));
    while (list == 0 && file.position() < end) {
      const std::string key(TextOf(View(file.read(8)).subspan(4)));
      const bool isLarge = lengthBytes == 8 && (key == "Lr16" || key == "Lr32");
      const std::uint64_t bytes = Number(file, isLarge ? 8 : 4);
      if (key == "Lr16" || key == "Lr32") {
        list = bytes;
      } else {
        file.skip((bytes + 3) / 4 * 4);
      }
    }
  }
  // Below 0 where the first layer's opacity is that of the whole.
  if (list != 0) layers = std::abs(static_cast<std::int16_t>(Number(file, 2)));
}

void CountDcx(Path /*path*/, FileReader& file, int& pictures) {
  constexpr int kMost = 1023;
  file.skip(4);
  while (pictures < kMost && Number(file, 4) != 0) ++pictures;
}

void CountJpeg(Path path, FileReader& /*file*/, int& pictures) {
  constexpr std::string_view kIndex("MPF\0", 4);
  constexpr std::uint8_t kMarker = 0xE2;
  constexpr unsigned kTagCount = 0xB001;
  for (const JpegSegment& segment : ReadJpegHead(path).segments) {
    if (segment.marker != kMarker || !StartsWith(segment.data, kIndex)) continue;
    const modules::Tags tags(View(segment.data).subspan(kIndex.size()));
    tags.forEach(tags.firstDirectory(), [&](unsigned tag, std::size_t entry) {
      if (tag == kTagCount) pictures = static_cast<int>(tags.at32(entry + modules::kEntryValue));
    });
  }
}

void CountHeif(Path path, FileReader& /*file*/, int& pictures) {
  pictures = modules::CountHeifPictures(path.c_str());
}

void CountJxl(Path path, FileReader& /*file*/, int& frames) {
  frames = modules::CountJxlFrames(path.c_str());
}

struct Kind {
  std::string_view mark;
  std::size_t markAt;
  void (*count)(Path path, FileReader& file, int& pictures);
  std::string_view what;
  bool merged = false;
};

constexpr Kind kKinds[] = {
    {"\xFF\xD8\xFF", 0, CountJpeg, "picture"},
    {"GIF8", 0, CountGif, "frame"},
    {"\x89PNG", 0, CountPng, "frame"},
    {"WEBP", 8, CountWebp, "frame"},
    {"8BPS", 0, CountLayers, "layer", true},
    {"\xB1\x68\xDE\x3A", 0, CountDcx, "picture"},
    {"ftyp", 4, CountHeif, "picture"},
    {"\xFF\x0A", 0, CountJxl, "frame"},
    {"JXL ", 4, CountJxl, "frame"},
};

}  // namespace

FurtherPictures FurtherPicturesOf(const std::string& path) {
  constexpr std::uint64_t kHeadBytes = 12;
  FurtherPictures found;
  try {
    FileReader file(path);
    const Bytes head = file.read(std::min(kHeadBytes, file.size()));
    file.moveTo(0);
    const auto* const kind = std::ranges::find_if(kKinds, [&](const Kind& row) {
      return TextOf(head).substr(std::min(row.markAt, head.size())).starts_with(row.mark);
    });
    if (kind == std::end(kKinds)) return {};
    found = {.what = kind->what, .merged = kind->merged};
    kind->count(path, file, found.count);
  } catch (const MetadataFault&) {
    // What was met counts.
  }
  found.count = std::max(found.count - (found.merged ? 0 : 1), 0);
  return found;
}

}  // namespace client
