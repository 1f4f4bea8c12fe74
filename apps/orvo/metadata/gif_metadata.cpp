#include "carried.h"
#include "file_access.h"

namespace client {
namespace {

constexpr std::size_t kHeadBytes =
    13;  // mark, measures, and in byte 10 what is told of the palette
constexpr std::size_t kPlaceBytes = 9;  // of a picture; the last tells of its palette
constexpr std::uint8_t kExtension = 0x21;
constexpr std::uint8_t kPicture = 0x2C;
constexpr std::uint8_t kComment = 0xFE;
constexpr std::uint8_t kApplication = 0xFF;

std::uint64_t PaletteBytes(std::uint8_t flags) {
  return (flags & 0x80U) != 0 ? std::uint64_t{3} << ((flags & 7U) + 1) : 0;
}

std::uint8_t ReadByte(FileReader& file) {
  return file.read(1).front();
}

// Pieces of up to 255 bytes, each behind its length, up to one of none.
Bytes ReadPieces(FileReader& file) {
  Bytes data;
  while (const std::uint8_t bytes = ReadByte(file)) Append(data, file.read(bytes));
  return data;
}
void SkipPieces(FileReader& file) {
  while (const std::uint8_t bytes = ReadByte(file)) file.skip(bytes);
}

// The packet lies there plain, not in pieces: it ends with 257 bytes that lead whoever reads its
// letters as lengths to the block's end.
std::string ReadPacket(FileReader& file) {
  constexpr std::size_t kTrailBytes = 257;
  std::string packet;
  for (std::uint8_t bytes = ReadByte(file); bytes != 0; bytes = ReadByte(file)) {
    packet += static_cast<char>(bytes);
    packet += TextOf(file.read(bytes));
  }
  if (packet.size() < kTrailBytes) return {};
  packet.resize(packet.size() - kTrailBytes);
  return packet;
}

void ReadExtension(FileReader& file, Carried& carried) {
  const std::uint8_t kind = ReadByte(file);
  if (kind == kComment) {
    carried.comments.emplace_back(TextOf(ReadPieces(file)));
  } else if (kind == kApplication) {
    const Bytes name = file.read(ReadByte(file));
    if (StartsWith(name, "XMP DataXMP")) {
      carried.xmp = ReadPacket(file);
    } else if (StartsWith(name, "ICCRGBG1012")) {
      carried.profile = ReadPieces(file);
    } else {
      SkipPieces(file);
    }
  } else {
    SkipPieces(file);
  }
}

}  // namespace

void ReadGifMetadata(const std::string& path, Carried& carried) {
  FileReader file(path);
  file.skip(PaletteBytes(file.read(kHeadBytes)[10]));
  for (;;) {
    const std::uint8_t block = ReadByte(file);
    if (block == kExtension) {
      ReadExtension(file, carried);
    } else if (block == kPicture) {
      file.skip(PaletteBytes(file.read(kPlaceBytes).back()) + 1);
      SkipPieces(file);
    } else {
      return;
    }
  }
}

}  // namespace client
