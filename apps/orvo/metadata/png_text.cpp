#include "png_text.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace client {
namespace {

std::optional<Bytes> Inflate(View deflated, std::size_t& room) {
  z_stream stream{};
  if (inflateInit(&stream) != Z_OK) return std::nullopt;
  stream.next_in = const_cast<Bytef*>(deflated.data());
  stream.avail_in = static_cast<uInt>(deflated.size());
  std::array<std::uint8_t, 1U << 14U> piece{};
  Bytes bytes;
  int code = Z_OK;
  while (code == Z_OK && room > 0) {
    stream.next_out = piece.data();
    stream.avail_out = static_cast<uInt>(piece.size());
    code = inflate(&stream, Z_NO_FLUSH);
    Append(bytes, View(piece).first(piece.size() - stream.avail_out));
    room -= std::min(room, piece.size() - stream.avail_out);
  }
  inflateEnd(&stream);
  if (code != Z_STREAM_END) return std::nullopt;
  return bytes;
}

Bytes Deflate(View bytes) {
  uLongf length = compressBound(static_cast<uLong>(bytes.size()));
  Bytes deflated(length);
  compress(deflated.data(), &length, bytes.data(), static_cast<uLong>(bytes.size()));
  deflated.resize(length);
  return deflated;
}

std::string Utf8OfLatin1(std::string_view latin) {
  std::string text;
  for (const char letter : latin) {
    const auto code = static_cast<unsigned char>(letter);
    if (code < 0x80) {
      text += letter;
    } else {
      text += static_cast<char>(0xC0 | code >> 6);
      text += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  return text;
}

// Takes the bytes up to the next zero, and that too.
std::optional<std::string> TakeWord(View& data) {
  const auto end = std::find(data.begin(), data.end(), 0);
  if (end == data.end()) return std::nullopt;
  const auto length = static_cast<std::size_t>(end - data.begin());
  std::string word(TextOf(data.first(length)));
  data = data.subspan(length + 1);
  return word;
}

std::optional<std::string> InternationalText(View data, std::size_t& room) {
  if (data.size() < 2) return std::nullopt;
  const bool isDeflated = data[0] != 0;
  data = data.subspan(2);  // the second names the one way of compressing that there is
  if (!TakeWord(data) || !TakeWord(data)) return std::nullopt;  // language, keyword in it
  if (!isDeflated) return std::string(TextOf(data));
  const auto inflated = Inflate(data, room);
  if (!inflated) return std::nullopt;
  return std::string(TextOf(*inflated));
}

}  // namespace

std::optional<PngText> ReadPngText(const PngChunk& chunk, std::size_t& room) {
  if (chunk.type != "tEXt" && chunk.type != "zTXt" && chunk.type != "iTXt") return std::nullopt;
  View data(chunk.data);
  const auto keyword = TakeWord(data);
  if (!keyword) return std::nullopt;
  std::optional<std::string> text;
  if (chunk.type == "tEXt") {
    text = Utf8OfLatin1(TextOf(data));
  } else if (chunk.type == "iTXt") {
    text = InternationalText(data, room);
  } else if (!data.empty()) {
    if (const auto inflated = Inflate(data.subspan(1), room))
      text = Utf8OfLatin1(TextOf(*inflated));
  }
  if (!text) return std::nullopt;
  return PngText{*keyword, *text};
}

PngChunk WritePngText(const PngText& text) {
  const bool isPlain = std::all_of(text.text.begin(), text.text.end(), [](char letter) {
    return static_cast<unsigned char>(letter) < 0x80;
  });
  // XMP is looked for in this kind of chunk alone.
  const bool isInternational = !isPlain || text.keyword.starts_with("XML:");
  PngChunk chunk{isInternational ? "iTXt" : "tEXt", {}};
  Append(chunk.data, ViewOf(text.keyword));
  // Behind the keyword: not compressed, no language, no keyword in it.
  chunk.data.resize(chunk.data.size() + (isInternational ? 5 : 1));
  Append(chunk.data, ViewOf(text.text));
  return chunk;
}

std::optional<Bytes> ReadRawProfile(const PngText& text) {
  // an empty line, a line with the kind, a line with the number of bytes, then lines of digits
  constexpr std::string_view kBlank = " \n";
  std::string_view rest(text.text);
  const auto skip = [&](std::size_t most) { rest.remove_prefix(std::min(most, rest.size())); };
  skip(rest.find_first_not_of(kBlank));
  skip(rest.find('\n'));
  skip(rest.find_first_not_of(kBlank));
  std::size_t count = 0;
  skip(static_cast<std::size_t>(std::from_chars(rest.data(), rest.data() + rest.size(), count).ptr -
                                rest.data()));
  std::string digits;
  std::copy_if(rest.begin(), rest.end(), std::back_inserter(digits),
               [=](char letter) { return kBlank.find(letter) == std::string_view::npos; });
  if (count == 0 || digits.size() / 2 != count || digits.size() % 2 != 0) return std::nullopt;
  Bytes block(count);
  for (std::size_t i = 0; i < count; ++i) {
    const char* const pair = digits.data() + 2 * i;
    if (std::from_chars(pair, pair + 2, block[i], 16).ptr != pair + 2) return std::nullopt;
  }
  return block;
}

PngText WriteRawProfile(std::string_view kind, View block) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  constexpr std::size_t kBytesOfLine = 36;
  PngText text{std::string(kRawKeyword), "\n"};
  text.keyword += kind;
  text.text += std::string(kind) + "\n" + std::to_string(block.size());
  for (std::size_t i = 0; i < block.size(); ++i) {
    if (i % kBytesOfLine == 0) text.text += '\n';
    text.text += kDigits[block[i] >> 4U];
    text.text += kDigits[block[i] & 15U];
  }
  text.text += '\n';
  return text;
}

Bytes ReadPngProfile(const PngChunk& chunk, std::size_t& room) {
  View data(chunk.data);
  if (!TakeWord(data) || data.empty()) return {};
  return Inflate(data.subspan(1), room).value_or(Bytes{});
}

PngChunk WritePngProfile(View profile) {
  PngChunk chunk{"iCCP", {}};
  Append(chunk.data, ViewOf(std::string_view{"profile\0\0", 9}));  // name, way of compressing
  Append(chunk.data, Deflate(profile));
  return chunk;
}

}  // namespace client
