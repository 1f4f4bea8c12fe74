#include "carried.h"
#include "file_access.h"

namespace client {
namespace {

constexpr std::size_t kHeaderBytes = 26;
constexpr std::size_t kModeAt = 24;
constexpr std::size_t kLengthBytes = 4;

// What stands before the layers.
struct Start {
  Bytes headAndPalette;
  PhotoshopResources resources;
  std::uint64_t restAt = 0;
};

Bytes ReadSection(FileReader& file) {
  return file.read(NumberIn(file.read(kLengthBytes), kLengthBytes));
}

Start ReadStart(const std::string& path) {
  FileReader file(path);
  Start start{.headAndPalette = file.read(kHeaderBytes), .resources = {}};
  const Bytes palette = ReadSection(file);
  AppendNumber(start.headAndPalette, palette.size(), kLengthBytes);
  Append(start.headAndPalette, palette);
  start.resources = ReadPhotoshop(ReadSection(file));
  start.restAt = file.position();
  return start;
}

std::string_view ColorsOf(const Start& start) {
  constexpr std::uint8_t kGray = 1;
  constexpr std::uint8_t kInks = 4;
  const std::uint8_t mode = start.headAndPalette[kModeAt + 1];
  return mode <= kGray ? "GRAY" : mode == kInks ? "CMYK" : "RGB";
}

}  // namespace

void ReadPhotoshopMetadata(const std::string& path, Carried& carried) {
  Start start = ReadStart(path);
  carried.exif = TakePhotoshop(start.resources, kPhotoshopExif);
  carried.xmp = TextOf(TakePhotoshop(start.resources, kPhotoshopXmp));
  carried.profile = TakePhotoshop(start.resources, kPhotoshopProfile);
  TakePhotoshop(start.resources, kPhotoshopResolution);  // comes with the picture
  carried.photoshop = std::move(start.resources);
}

void WritePhotoshopMetadata(const std::string& path, Carried& carried) {
  Start start = ReadStart(path);
  carried.fitProfile(ColorsOf(start));
  carried.loseSegments("PSD");
  carried.loseChunks("PSD");
  carried.loseTexts("PSD");
  TakePhotoshop(carried.photoshop, kPhotoshopResolution);  // the result has its own
  PhotoshopResources& resources = start.resources;
  const std::size_t before = resources.size();
  resources.insert(resources.end(), carried.photoshop.begin(), carried.photoshop.end());
  AddPhotoshop(resources, kPhotoshopProfile, carried.profile);
  AddPhotoshop(resources, kPhotoshopExif, carried.exif);
  AddPhotoshop(resources, kPhotoshopXmp, ViewOf(carried.xmp));
  if (resources.size() == before) return;
  const Bytes list = WritePhotoshop(resources);
  Bytes head = std::move(start.headAndPalette);
  AppendNumber(head, list.size(), kLengthBytes);
  Append(head, list);
  ReplaceHead(path, head, start.restAt);
}

}  // namespace client
