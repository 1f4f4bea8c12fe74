#include "exif_block.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>

namespace client {
namespace {

constexpr std::size_t kCountBytes = 2;
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kFieldAt = 8;  // in an entry: its value, or where that lies
constexpr std::size_t kFirstAt = 4;
constexpr std::size_t kHeaderBytes = 8;

// Numbers at their places in a block; what lies outside reads as 0 and cannot be written.
class Block {
 public:
  explicit Block(Bytes& bytes)
      : bytes_(bytes), order_(StartsWith(bytes, "MM") ? ByteOrder::kBig : ByteOrder::kLittle) {}

  [[nodiscard]] std::uint64_t get(std::size_t at, std::size_t count) const {
    return at <= bytes_.size() ? NumberIn(View(bytes_).subspan(at), count, order_) : 0;
  }
  void put(std::size_t at, std::uint64_t number, std::size_t count) {
    if (has(at, count)) PutNumber(std::span(bytes_).subspan(at, count), number, order_);
  }
  void wipe(std::size_t at, std::size_t count) {
    if (at < kHeaderBytes || !has(at, count)) return;
    std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at), count, std::uint8_t{0});
    if (at + count == bytes_.size()) bytes_.resize(at);
  }

  // Where the directory ends and tells the next; 0 when it does not lie in the block.
  [[nodiscard]] std::size_t endOf(std::size_t directory) const {
    const std::size_t end = directory + kCountBytes + get(directory, kCountBytes) * kEntryBytes;
    return directory != 0 && has(end, kFirstAt) ? end : 0;
  }
  [[nodiscard]] std::optional<std::size_t> find(std::size_t directory, std::uint16_t tag) const {
    const std::size_t end = endOf(directory);
    for (std::size_t at = directory + kCountBytes; at < end; at += kEntryBytes) {
      if (get(at, 2) == tag) return at;
    }
    return std::nullopt;
  }
  // A whole number of either length; 0 when there is no such tag.
  [[nodiscard]] std::uint64_t whole(std::size_t directory, std::uint16_t tag) const {
    const auto at = find(directory, tag);
    if (!at) return 0;
    return get(*at + kFieldAt, get(*at + 2, 2) == kTypeShort ? 2 : 4);
  }
  // Changes a tag that is there.
  void setWhole(std::size_t directory, std::uint16_t tag, int number) {
    const auto at = find(directory, tag);
    if (!at) return;
    const bool isShort = get(*at + 2, 2) == kTypeShort && number <= UINT16_MAX;
    put(*at + 2, isShort ? kTypeShort : kTypeLong, 2);
    put(*at + 4, 1, 4);
    put(*at + kFieldAt, 0, 4);
    put(*at + kFieldAt, static_cast<std::uint64_t>(number), isShort ? 2 : 4);
  }
  void setFraction(std::size_t directory, std::uint16_t tag, double number) {
    constexpr std::uint64_t kDenominator = 100;
    const auto at = find(directory, tag);
    if (!at || get(*at + 2, 2) != kTypeRational) return;
    const std::size_t place = get(*at + kFieldAt, 4);
    put(place, static_cast<std::uint64_t>(std::lround(number * kDenominator)), 4);
    put(place + 4, kDenominator, 4);
  }
  void swap(std::size_t directory, std::uint16_t one, std::uint16_t other) {
    const auto a = find(directory, one);
    const auto b = find(directory, other);
    if (!a || !b) return;
    const std::uint64_t field = get(*a + kFieldAt, 4);
    put(*a + kFieldAt, get(*b + kFieldAt, 4), 4);
    put(*b + kFieldAt, field, 4);
  }

 private:
  [[nodiscard]] bool has(std::size_t at, std::size_t count) const {
    return at <= bytes_.size() && count <= bytes_.size() - at;
  }

  Bytes& bytes_;
  ByteOrder order_;
};

void DropPreview(Block& block, std::size_t directory) {
  const std::size_t nextAt = block.endOf(directory);
  const std::size_t preview = block.get(nextAt, 4);
  block.put(nextAt, 0, 4);
  if (const std::size_t end = block.endOf(preview); end != 0) {
    constexpr std::uint16_t kStrip = 273;
    constexpr std::uint16_t kStripBytes = 279;
    const std::size_t jpeg = block.whole(preview, kTagThumbnail);
    const std::size_t jpegBytes = block.whole(preview, kTagThumbnailBytes);
    const std::size_t strip = block.whole(preview, kStrip);
    const std::size_t stripBytes = block.whole(preview, kStripBytes);
    block.wipe(preview, end + 4 - preview);
    block.wipe(jpeg, jpegBytes);
    block.wipe(strip, stripBytes);
  }
}

std::size_t CameraOf(const Block& block) {
  return block.whole(block.get(kFirstAt, 4), kTagExif);
}

// Which rule of cameras' files the colours keep: "R98" is sRGB, "R03" Adobe RGB.
constexpr std::uint16_t kTagRule = 1;
constexpr std::size_t kRuleBytes = 3;
constexpr std::string_view kSrgbRule = "R98";
constexpr std::string_view kAdobeRule = "R03";

// Where the rule's name lies in the block.
std::optional<std::size_t> FindRule(const Block& block, std::size_t camera) {
  const auto at = block.find(block.whole(camera, kTagInterop), kTagRule);
  return at ? std::optional(*at + kFieldAt) : std::nullopt;
}

void TellSrgb(Block& block, std::size_t camera) {
  constexpr int kSrgb = 1;
  block.setWhole(camera, kTagColorSpace, kSrgb);
  const auto rule = FindRule(block, camera);
  if (!rule) return;
  for (std::size_t i = 0; i < kRuleBytes; ++i) {
    block.put(*rule + i, static_cast<std::uint8_t>(kSrgbRule[i]), 1);
  }
}

}  // namespace

bool WipePreview(Bytes& exif) {
  const Bytes before = exif;
  Block block(exif);
  const std::size_t main = block.get(kFirstAt, 4);
  if (block.endOf(main) != 0) DropPreview(block, main);
  return exif != before;
}

int OrientationOf(View exif) {
  Bytes bytes(exif.begin(), exif.end());
  const Block block(bytes);
  const std::uint64_t held = block.whole(block.get(kFirstAt, 4), kTagOrientation);
  return held >= 1 && held <= 8 ? static_cast<int>(held) : 1;
}

bool TellsAdobeRgb(View exif) {
  Bytes bytes(exif.begin(), exif.end());
  const Block block(bytes);
  const auto rule = FindRule(block, CameraOf(block));
  return rule && TextOf(View(bytes).subspan(*rule, kRuleBytes)) == kAdobeRule;
}

bool BringUpToDate(Bytes& exif, const PictureFacts& facts) {
  constexpr int kFirstOnItsSide = 5;
  constexpr int kInch = 2;
  const bool onItsSide = OrientationOf(exif) >= kFirstOnItsSide;
  Block block(exif);
  const std::size_t main = block.get(kFirstAt, 4);
  if (block.endOf(main) == 0) return false;
  block.setWhole(main, kTagOrientation, 1);
  block.setWhole(main, kTagWidth, facts.width);
  block.setWhole(main, kTagHeight, facts.height);
  if (facts.xDotsPerInch > 0 && facts.yDotsPerInch > 0) {
    block.setFraction(main, kTagXResolution, facts.xDotsPerInch);
    block.setFraction(main, kTagYResolution, facts.yDotsPerInch);
    block.setWhole(main, kTagResolutionUnit, kInch);
  } else if (onItsSide) {
    block.swap(main, kTagXResolution, kTagYResolution);
  }
  const std::size_t camera = CameraOf(block);
  block.setWhole(camera, kTagExifWidth, facts.width);
  block.setWhole(camera, kTagExifHeight, facts.height);
  if (facts.inSrgb) TellSrgb(block, camera);
  DropPreview(block, main);
  return true;
}

TagDirectory TagsOf(View exif, ByteOrder& order) {
  std::istringstream file{std::string(TextOf(exif))};
  const auto form = ReadTagForm(file);
  if (!form) return {};
  order = form->order;
  bool isWhole = true;
  return ReadTags(
      file, *form, NumberAt(file, *form, form->firstAt(), form->offsetBytes()),
      [](std::uint16_t) { return true; }, isWhole);
}

Bytes BlockOf(const TagDirectory& directory, ByteOrder order) {
  Bytes block = order == ByteOrder::kBig ? Bytes{'M', 'M', 0, 42} : Bytes{'I', 'I', 42, 0};
  block.resize(kHeaderBytes);
  PutNumber(std::span(block).last(4), kHeaderBytes, order);
  if (const auto tags = WriteTags(directory, {.order = order}, kHeaderBytes, 0)) {
    Append(block, *tags);
    return block;
  }
  return {};
}

}  // namespace client
