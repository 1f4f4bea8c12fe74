#include <algorithm>
#include <span>

#include "carried.h"
#include "file_access.h"

namespace client {
namespace {

constexpr std::string_view kXmpKeyword = "XML:com.adobe.xmp";
constexpr std::string_view kExif = "eXIf";
constexpr std::string_view kProfile = "iCCP";
constexpr std::string_view kJpegExifMark{"Exif\0\0", 6};

constexpr std::string_view kColors[] = {"gAMA", "cHRM", "sRGB", "cICP", kProfile};
constexpr std::string_view kSingle[] = {"gAMA", "cHRM", "sRGB", "cICP", "pHYs",
                                        "tIME", "oFFs", "sCAL", "pCAL", "sTER"};
// These tell of pixels and palette as they were.
constexpr std::string_view kOfPixels[] = {"tRNS", "bKGD", "hIST", "sBIT", "sPLT"};

bool IsAmong(std::span<const std::string_view> types, std::string_view type) {
  return std::ranges::find(types, type) != types.end();
}

// True when the text was a block of bytes that other chunks or files hold in a better way.
bool TakeRawProfile(const PngText& text, Carried& carried) {
  if (!text.keyword.starts_with(kRawKeyword)) return false;
  const std::string kind = text.keyword.substr(kRawKeyword.size());
  auto block = ReadRawProfile(text);
  if (!block) return false;
  if (kind == "exif" || kind == "APP1") {
    const bool isMarked = StartsWith(*block, kJpegExifMark);
    if (kind == "APP1" && !isMarked) {
      const std::string_view packet = TextOf(*block);
      carried.xmp = packet.substr(std::min(packet.find('\0') + 1, packet.size()));
      return true;
    }
    if (isMarked) block->erase(block->begin(), block->begin() + kJpegExifMark.size());
    if (carried.exif.empty()) carried.exif = std::move(*block);
  } else if (kind == "xmp") {
    if (carried.xmp.empty()) carried.xmp = TextOf(*block);
  } else if (kind == "iptc" || kind == "8bim") {
    carried.photoshop = ReadPhotoshop(*block);
    if (carried.photoshop.empty()) AddPhotoshop(carried.photoshop, kPhotoshopIptc, *block);
  } else if (kind == "icc" || kind == "icm") {
    if (carried.profile.empty()) carried.profile = std::move(*block);
  } else {
    return false;
  }
  return true;
}

void Take(const PngChunk& chunk, std::size_t& room, Carried& carried) {
  constexpr char kLowerCase = 0x20;
  const bool isNeeded = (chunk.type[0] & kLowerCase) == 0;
  const bool outlivesChanges = (chunk.type[3] & kLowerCase) != 0;
  if (isNeeded || IsAmong(kOfPixels, chunk.type)) return;
  if (chunk.type == kProfile) {
    carried.profile = ReadPngProfile(chunk, room);
    if (carried.profile.empty()) carried.chunks.push_back(chunk);  // a damaged one stays as it was
  } else if (chunk.type == kExif) {
    carried.exif = chunk.data;
  } else if (const auto text = ReadPngText(chunk, room)) {
    if (text->keyword == kXmpKeyword) {
      carried.xmp = text->text;
    } else if (!TakeRawProfile(*text, carried)) {
      carried.texts.push_back(*text);
      carried.chunks.push_back(chunk);
    }
  } else if (outlivesChanges || IsAmong(kSingle, chunk.type)) {
    carried.chunks.push_back(chunk);
  } else {
    carried.lose("the PNG chunk " + chunk.type, "it belongs to the pixels as they were");
  }
}

bool IsUtf8(std::string_view text) {
  int following = 0;
  for (const char letter : text) {
    const auto code = static_cast<unsigned char>(letter);
    const bool follows = (code & 0xC0U) == 0x80U;
    if (follows != (following > 0)) return false;
    if (follows) {
      --following;
    } else {
      following = code < 0x80 ? 0 : code < 0xE0 ? 1 : code < 0xF0 ? 2 : 3;
    }
  }
  return following == 0;
}

PngChunk CommentChunk(const std::string& comment) {
  // Some end with a zero, which a chunk has no use for.
  const std::string text = comment.substr(0, comment.find('\0'));
  if (IsUtf8(text)) return WritePngText({"Comment", text});
  PngChunk chunk{"tEXt", {}};  // Latin letters, the chunk's own encoding
  Append(chunk.data, ViewOf(std::string_view{"Comment\0", 8}));
  Append(chunk.data, ViewOf(text));
  return chunk;
}

std::vector<PngChunk> ChunksOf(const Carried& carried) {
  std::vector<PngChunk> chunks;
  for (const PngChunk& chunk : carried.chunks) {
    if (!IsAmong(kColors, chunk.type)) chunks.push_back(chunk);
  }
  if (!carried.exif.empty()) chunks.push_back({std::string(kExif), carried.exif});
  if (!carried.xmp.empty()) {
    chunks.push_back(WritePngText({std::string(kXmpKeyword), carried.xmp}));
  }
  if (!carried.photoshop.empty()) {
    chunks.push_back(WritePngText(WriteRawProfile("iptc", WritePhotoshop(carried.photoshop))));
  }
  for (const std::string& comment : carried.comments) chunks.push_back(CommentChunk(comment));
  return chunks;
}

}  // namespace

void ReadPngMetadata(const std::string& path, Carried& carried) {
  const PngChunks chunks = ReadPngChunks(path);
  std::size_t room = std::size_t{64} << 20U;  // for what is compressed
  for (const PngChunk& chunk : chunks.list) Take(chunk, room, carried);
  for (const std::string& type : chunks.broken) {
    carried.lose("the PNG chunk " + type, "it is damaged");
  }
}

void WritePngMetadata(const std::string& path, Carried& carried) {
  PngChunks result = ReadPngChunks(path);
  constexpr std::size_t kColorTypeAt = 9;  // in the first chunk
  if (result.list.empty() || result.list.front().data.size() <= kColorTypeAt) {
    throw MetadataFault("the PNG file has no header");
  }
  constexpr std::uint8_t kColor = 2;
  carried.fitProfile((result.list.front().data[kColorTypeAt] & kColor) != 0 ? "RGB" : "GRAY");
  carried.loseSegments("PNG");

  result.list.resize(result.beforePixels);
  std::erase_if(result.list, [&](const PngChunk& own) {
    return IsAmong(kSingle, own.type) &&
           std::any_of(carried.chunks.begin(), carried.chunks.end(),
                       [&](const PngChunk& chunk) { return chunk.type == own.type; });
  });
  // What is told about colours stands before the palette.
  std::vector<PngChunk> chunks{result.list.front()};
  for (const PngChunk& chunk : carried.chunks) {
    if (IsAmong(kColors, chunk.type)) chunks.push_back(chunk);
  }
  if (!carried.profile.empty()) chunks.push_back(WritePngProfile(carried.profile));
  const std::vector<PngChunk> others = ChunksOf(carried);
  if (chunks.size() == 1 && others.empty()) return;
  chunks.insert(chunks.end(), result.list.begin() + 1, result.list.end());
  chunks.insert(chunks.end(), others.begin(), others.end());
  ReplacePngChunks(path, chunks, result.pixelsAt);
}

}  // namespace client
