#include <algorithm>
#include <fstream>

#include "carried.h"
#include "file_access.h"

namespace client {
namespace {

constexpr std::size_t kTypeBytes = 4;
constexpr std::size_t kLengthBytes = 4;
constexpr std::size_t kHeadBytes = 12;     // "RIFF", the length of what follows, "WEBP"
constexpr std::size_t kFeatureBytes = 10;  // of VP8X: flags, 24 bits of nothing, width and height
constexpr std::string_view kFeatures = "VP8X";
constexpr std::string_view kProfile = "ICCP";
constexpr std::string_view kExif = "EXIF";
constexpr std::string_view kXmp = "XMP ";
constexpr std::string_view kExifMark{"Exif\0\0", 6};  // of JPEG files, by mistake

// Of VP8X.
constexpr std::uint8_t kHasProfile = 0x20;
constexpr std::uint8_t kHasOpacity = 0x10;
constexpr std::uint8_t kHasExif = 0x08;
constexpr std::uint8_t kHasXmp = 0x04;

struct ChunkHead {
  std::string type;
  std::uint64_t bytes = 0;

  // Chunks are filled up to an even length.
  [[nodiscard]] std::uint64_t filled() const { return bytes + bytes % 2; }
};

std::uint64_t Little(View view, std::size_t bytes) {
  return NumberIn(view, bytes, ByteOrder::kLittle);
}

ChunkHead ReadChunkHead(FileReader& file) {
  const Bytes head = file.read(kTypeBytes + kLengthBytes);
  return {std::string(TextOf(View(head).first(kTypeBytes))),
          Little(View(head).subspan(kTypeBytes), kLengthBytes)};
}

FileReader OpenWebp(const std::string& path) {
  FileReader file(path);
  const Bytes head = file.read(kHeadBytes);
  if (!StartsWith(head, "RIFF") || !StartsWith(View(head).subspan(8), "WEBP")) {
    throw MetadataFault("no WebP file");
  }
  return file;
}

void AppendLittle(Bytes& bytes, std::uint64_t number, std::size_t length) {
  bytes.resize(bytes.size() + length);
  PutNumber(std::span(bytes).last(length), number, ByteOrder::kLittle);
}

void AppendChunk(Bytes& bytes, std::string_view type, View data) {
  if (data.empty()) return;
  Append(bytes, ViewOf(type));
  AppendLittle(bytes, data.size(), kLengthBytes);
  Append(bytes, data);
  if (data.size() % 2 != 0) bytes.push_back(0);
}

// What a file of one chunk leaves to that.
Bytes FeaturesOf(const ChunkHead& picture, FileReader& file) {
  constexpr std::size_t kLossyBytes = 10;    // behind 6 bytes: 14 bits of width, 16 on 14 of height
  constexpr std::size_t kLosslessBytes = 5;  // behind one: width and height less 1, opacity
  constexpr std::uint64_t kSide = 0x3FFF;
  const bool isLossy = picture.type == "VP8 ";
  const Bytes head = file.read(isLossy ? kLossyBytes : kLosslessBytes);
  Bytes features(4);
  if (isLossy) {
    AppendLittle(features, (Little(View(head).subspan(6), 2) & kSide) - 1, 3);
    AppendLittle(features, (Little(View(head).subspan(8), 2) & kSide) - 1, 3);
  } else {
    const std::uint64_t bits = Little(View(head).subspan(1), 4);
    AppendLittle(features, bits & kSide, 3);
    AppendLittle(features, bits >> 14 & kSide, 3);
    if ((bits >> 28 & 1U) != 0) features[0] = kHasOpacity;
  }
  return features;
}

void AppendToFile(const std::string& path, View bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::app);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw MetadataFault("the file could not be written anew with its metadata");
}

}  // namespace

void ReadWebpMetadata(const std::string& path, Carried& carried) {
  FileReader file = OpenWebp(path);
  while (file.position() + kTypeBytes + kLengthBytes <= file.size()) {
    const ChunkHead chunk = ReadChunkHead(file);
    if (chunk.type != kProfile && chunk.type != kExif && chunk.type != kXmp) {
      file.skip(chunk.filled());
      continue;
    }
    Bytes data = file.read(chunk.bytes);
    file.skip(chunk.bytes % 2);
    if (chunk.type == kXmp) {
      carried.xmp = TextOf(data);
    } else if (chunk.type == kProfile) {
      carried.profile = std::move(data);
    } else {
      carried.exif = std::move(data);
      if (StartsWith(carried.exif, kExifMark)) {
        carried.exif.erase(carried.exif.begin(), carried.exif.begin() + kExifMark.size());
      }
    }
  }
}

// Of a result with none of it yet: the profile goes before the picture, all else behind.
void WriteWebpMetadata(const std::string& path, Carried& carried) {
  carried.fitProfile("RGB");
  const Bytes iptc = TakePhotoshop(carried.photoshop, kPhotoshopIptc);
  if (!iptc.empty()) carried.lose("the IPTC data", "WebP cannot hold it");
  if (!carried.photoshop.empty()) carried.lose("the Photoshop data", "WebP cannot hold it");
  carried.loseTexts("WebP");
  carried.loseSegments("WebP");
  carried.loseChunks("WebP");
  if (carried.profile.empty() && carried.exif.empty() && carried.xmp.empty()) return;

  FileReader file = OpenWebp(path);
  const ChunkHead first = ReadChunkHead(file);
  const bool hasFeatures = first.type == kFeatures;
  Bytes features = hasFeatures ? file.read(kFeatureBytes) : FeaturesOf(first, file);
  const std::uint64_t pictureAt = hasFeatures ? file.position() : kHeadBytes;
  if (!carried.profile.empty()) features[0] |= kHasProfile;
  if (!carried.exif.empty()) features[0] |= kHasExif;
  if (!carried.xmp.empty()) features[0] |= kHasXmp;

  Bytes start = {'W', 'E', 'B', 'P'};
  AppendChunk(start, kFeatures, features);
  AppendChunk(start, kProfile, carried.profile);
  Bytes end;
  AppendChunk(end, kExif, carried.exif);
  AppendChunk(end, kXmp, ViewOf(carried.xmp));
  Bytes head = {'R', 'I', 'F', 'F'};
  AppendLittle(head, start.size() + (file.size() - pictureAt) + end.size(), kLengthBytes);
  Append(head, start);
  AppendToFile(path, end);
  ReplaceHead(path, head, pictureAt);
}

}  // namespace client
