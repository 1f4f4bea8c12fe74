#include "png_chunks.h"

#include <zlib.h>

#include "file_access.h"

namespace client {
namespace {

constexpr std::string_view kMark{"\x89PNG\r\n\x1A\n", 8};
constexpr std::size_t kNumberBytes = 4;  // of a length, a type and a sum

std::uint32_t SumOf(std::string_view type, View data) {
  const View name = ViewOf(type);
  const uLong sum = crc32(crc32(0, nullptr, 0), name.data(), static_cast<uInt>(name.size()));
  // Without data the library would begin anew.
  if (data.empty()) return static_cast<std::uint32_t>(sum);
  return static_cast<std::uint32_t>(crc32(sum, data.data(), static_cast<uInt>(data.size())));
}

// False at the end of the picture.
bool ReadChunk(FileReader& file, PngChunks& chunks) {
  const std::uint64_t start = file.position();
  const std::uint64_t length = NumberIn(file.read(kNumberBytes), kNumberBytes);
  const Bytes type = file.read(kNumberBytes);
  std::string name(TextOf(type));
  if (name == "IEND") return false;
  if (name == "IDAT") {
    if (chunks.pixelsAt == 0) {
      chunks.pixelsAt = start;
      chunks.beforePixels = chunks.list.size();
    }
    file.skip(length + kNumberBytes);
    return true;
  }
  Bytes data = file.read(length);
  if (NumberIn(file.read(kNumberBytes), kNumberBytes) == SumOf(name, data)) {
    chunks.list.push_back({std::move(name), std::move(data)});
  } else {
    chunks.broken.push_back(std::move(name));
  }
  return true;
}

}  // namespace

PngChunks ReadPngChunks(const std::string& path) {
  FileReader file(path);
  if (TextOf(file.read(kMark.size())) != kMark) throw MetadataFault("no PNG file");
  PngChunks chunks;
  try {
    while (ReadChunk(file, chunks)) {
    }
  } catch (const MetadataFault&) {
    if (chunks.pixelsAt == 0) throw;
    chunks.broken.emplace_back("last");
  }
  return chunks;
}

void ReplacePngChunks(const std::string& path, std::span<const PngChunk> chunks,
                      std::uint64_t pixelsAt) {
  Bytes head;
  Append(head, ViewOf(kMark));
  for (const PngChunk& chunk : chunks) {
    AppendNumber(head, chunk.data.size(), kNumberBytes);
    Append(head, ViewOf(chunk.type));
    Append(head, chunk.data);
    AppendNumber(head, SumOf(chunk.type, chunk.data), kNumberBytes);
  }
  ReplaceHead(path, head, pixelsAt);
}

}  // namespace client
