#include "pictures/png_tags.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "pictures/exif.h"

namespace modules {
namespace {

// A chunk: its length, big-endian, its name, the data and four bytes of check sum.
constexpr long kMarkBytes = 8;
constexpr std::size_t kStartBytes = 8;
constexpr long kSumBytes = 4;

constexpr std::uint32_t kMostBytes = std::uint32_t{1} << 20;  // tags take some kilobytes

std::vector<std::uint8_t> ReadData(std::FILE* file, std::uint32_t length) {
  std::vector<std::uint8_t> data(std::min(length, kMostBytes));
  data.resize(std::fread(data.data(), 1, data.size(), file));
  return data;
}

// Of an editor's packet: an attribute or an element that holds a digit.
std::optional<int> OrientationOfPacket(std::string_view text) {
  constexpr std::string_view kKey = "XML:com.adobe.xmp";
  constexpr std::string_view kName = "tiff:Orientation";
  if (!text.starts_with(kKey)) return std::nullopt;
  const std::size_t at = text.find(kName);
  if (at == std::string_view::npos) return std::nullopt;
  const std::size_t digit = text.find_first_not_of("=\"'> ", at + kName.size());
  if (digit == std::string_view::npos || text[digit] < '1' || text[digit] > '8')
    return std::nullopt;
  return text[digit] - '0';
}

// The text of a chunk with this keyword; of a long or damaged one the beginning.
std::string TextUnder(std::string_view keyword, std::span<const std::uint8_t> data,
                      bool isDeflated) {
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  const std::size_t start = keyword.size() + (isDeflated ? 2 : 1);  // a zero, and the method
  if (!text.starts_with(keyword) || text.size() <= start || text[keyword.size()] != 0) return {};
  if (!isDeflated) return std::string(text.substr(start));
  std::string inflated(kMostBytes, '\0');
  uLongf bytes = kMostBytes;
  (void)uncompress(reinterpret_cast<Bytef*>(inflated.data()), &bytes, &data[start],
                   static_cast<uLong>(data.size() - start));
  inflated.resize(bytes);
  return inflated;
}

// Of camera tags in hexadecimal digits, behind their kind and their length: the form of programs
// that know no chunk for them.
std::optional<int> OrientationOfDigits(const std::string& text) {
  constexpr std::string_view kMark("Exif\0\0", 6);
  std::istringstream words(text);
  std::string word;
  words >> word >> word;
  std::string block;
  while (words >> word) {
    for (const char* digit = word.data(); digit + 1 < word.data() + word.size(); digit += 2) {
      std::uint8_t byte = 0;
      if (std::from_chars(digit, digit + 2, byte, 16).ptr != digit + 2) return std::nullopt;
      block.push_back(static_cast<char>(byte));
    }
  }
  if (block.starts_with(kMark)) block.erase(0, kMark.size());
  if (block.empty()) return std::nullopt;
  Picture tags;
  ReadExif({reinterpret_cast<const std::uint8_t*>(block.data()), block.size()}, tags);
  return tags.orientation;
}

// Calls visit(name, length) for each chunk until it answers false; the file then stands at the
// chunk's data. Leaves the file where it was.
template <class Visit>
void ForEachChunk(std::FILE* file, const Visit& visit) {
  const long before = std::ftell(file);
  std::array<std::uint8_t, kStartBytes> start{};
  for (long at = kMarkBytes; std::fseek(file, at, SEEK_SET) == 0 &&
                             std::fread(start.data(), 1, start.size(), file) == start.size();) {
    const std::uint32_t length = std::uint32_t{start[0]} << 24 | std::uint32_t{start[1]} << 16 |
                                 std::uint32_t{start[2]} << 8 | start[3];
    const std::string_view name(reinterpret_cast<const char*>(&start[4]), 4);
    if (!visit(name, length) || name == "IEND") break;
    at += static_cast<long>(kStartBytes + length) + kSumBytes;
  }
  std::clearerr(file);
  (void)std::fseek(file, before, SEEK_SET);
}

}  // namespace

int ReadPngOrientation(std::FILE* file) {
  std::optional<int> found;
  ForEachChunk(file, [&](std::string_view name, std::uint32_t length) {
    if (name == "eXIf") {
      Picture tags;
      ReadExif(ReadData(file, length), tags);
      found = tags.orientation;
      return false;
    }
    if (name == "iTXt" && !found) {
      const std::vector<std::uint8_t> data = ReadData(file, length);
      found = OrientationOfPacket({reinterpret_cast<const char*>(data.data()), data.size()});
    }
    if (name == "zTXt" || name == "tEXt") {
      const std::string text =
          TextUnder("Raw profile type exif", ReadData(file, length), name == "zTXt");
      if (const auto orientation = OrientationOfDigits(text)) found = orientation;
    }
    return true;
  });
  return found.value_or(kUpright);
}

std::vector<CodedParts::Stretch> FindPngPixels(std::FILE* file) {
  std::vector<CodedParts::Stretch> found;
  ForEachChunk(file, [&](std::string_view name, std::uint32_t length) {
    if (name == "IDAT") found.push_back({static_cast<std::uint64_t>(std::ftell(file)), length});
    return true;
  });
  return found;
}

}  // namespace modules
