#include "pictures/magick_kinds.h"

#include <algorithm>
#include <array>

#include "binding/module_contract.h"

namespace modules {
namespace {

using Bytes = MagickKind::Bytes;

bool StartsWith(Bytes head, std::initializer_list<std::uint8_t> mark) {
  return head.size() >= mark.size() && std::equal(mark.begin(), mark.end(), head.begin());
}

int DepthThatHolds(int bits) {
  for (const int depth : {1, 4, 8}) {
    if (bits <= depth) return depth;
  }
  return 24;
}

// Little-endian.
int Little16(Bytes file, std::size_t offset) {
  return offset + 2 <= file.size() ? file[offset] | file[offset + 1] << 8 : 0;
}
// Of big-endian 16.16.
int WholeOfFixed(Bytes file, std::size_t offset) {
  return offset + 2 <= file.size() ? file[offset] << 8 | file[offset + 1] : 0;
}

bool HasMark(Bytes file, std::size_t offset, std::initializer_list<std::uint8_t> mark) {
  return file.size() > offset && StartsWith(file.subspan(offset), mark);
}

// --- PCX, and DCX, which strings up to 1023 of them together -------------------------------------

constexpr std::size_t kPcxHeaderBytes = 128;

bool IsPcx(Bytes head, std::string_view /*extension*/) {
  if (head.size() < kPcxHeaderBytes || head[0] != 0x0A) return false;
  const std::uint8_t version = head[1];
  const std::uint8_t bits = head[3];
  return version <= 5 && version != 1 && head[2] <= 1 &&
         (bits == 1 || bits == 2 || bits == 4 || bits == 8);
}

int PcxDepth(Bytes head) {
  const int bits = head[3];
  const int planes = head[65];
  return DepthThatHolds(bits * planes);
}

FileResolution PcxResolution(Bytes file, int /*page*/) {
  return {Little16(file, 12), Little16(file, 14)};
}

bool IsDcx(Bytes head, std::string_view /*extension*/) {
  return StartsWith(head, {0xB1, 0x68, 0xDE, 0x3A});
}

// Where a page begins stands in a list that a 0 ends.
std::size_t DcxPageStart(Bytes file, int page) {
  const std::size_t entry = 4 * static_cast<std::size_t>(page);
  return static_cast<std::size_t>(Little16(file, entry)) |
         static_cast<std::size_t>(Little16(file, entry + 2)) << 16;
}

int DcxPages(Bytes file) {
  constexpr int kMostPages = 1023;
  int pages = 0;
  while (pages < kMostPages && DcxPageStart(file, pages + 1) != 0) ++pages;
  return pages;
}

FileResolution DcxResolution(Bytes file, int page) {
  const std::size_t start = DcxPageStart(file, page);
  return start < file.size() ? PcxResolution(file.subspan(start), page) : FileResolution{};
}

// --- TGA: no mark of its own, so the name counts and the header has to make sense ----------------

constexpr std::size_t kTgaHeaderBytes = 18;
enum TgaType : std::uint8_t { kTgaPalette = 1, kTgaColor = 2, kTgaGray = 3, kTgaRuns = 8 };

int TgaKind(Bytes head) {
  return head[2] & ~kTgaRuns;
}

bool IsTga(Bytes head, std::string_view extension) {
  if (extension != "tga" || head.size() < kTgaHeaderBytes || head[1] > 1) return false;
  const int kind = TgaKind(head);
  const int bits = head[16];
  if (kind == kTgaPalette) return head[1] == 1 && bits == 8;
  if (kind == kTgaGray) return bits == 8;
  return kind == kTgaColor && (bits == 15 || bits == 16 || bits == 24 || bits == 32);
}

int TgaDepth(Bytes head) {
  const int bits = head[16];
  return bits == 15 ? 16 : bits;
}

// --- Sun raster ----------------------------------------------------------------------------------

bool IsRas(Bytes head, std::string_view /*extension*/) {
  constexpr std::size_t kHeaderBytes = 32;
  return head.size() >= kHeaderBytes && StartsWith(head, {0x59, 0xA6, 0x6A, 0x95});
}

int RasDepth(Bytes head) {
  return DepthThatHolds(head[15]);
}

// --- PICT and Photo CD: the mark lies beyond a head, so the name counts --------------------------

bool IsPct(Bytes /*head*/, std::string_view extension) {
  return extension == "pct" || extension == "pict";
}

// 512 bytes that programs fill as they like come first, then 10 of size and frame.
bool IsSoundPct(Bytes file) {
  constexpr std::size_t kMarkAt = 522;
  return HasMark(file, kMarkAt, {0x00, 0x11, 0x02, 0xFF}) || HasMark(file, kMarkAt, {0x11, 0x01});
}

// Only version 2 in its extended form has one.
FileResolution PctResolution(Bytes file, int /*page*/) {
  constexpr std::size_t kMarkAt = 522;
  if (!HasMark(file, kMarkAt, {0x00, 0x11, 0x02, 0xFF, 0x0C, 0x00, 0xFF, 0xFE})) return {};
  return {WholeOfFixed(file, kMarkAt + 10), WholeOfFixed(file, kMarkAt + 14)};
}

bool IsPcd(Bytes /*head*/, std::string_view extension) {
  return extension == "pcd";
}

// In the second sector of the disc.
bool IsSoundPcd(Bytes file) {
  constexpr std::size_t kMarkAt = 2048;
  return HasMark(file, kMarkAt, {'P', 'C', 'D', '_'});
}

// --- WordPerfect graphics and Windows metafiles --------------------------------------------------

bool IsWpg(Bytes head, std::string_view /*extension*/) {
  return StartsWith(head, {0xFF, 'W', 'P', 'C'});
}

bool IsWmf(Bytes head, std::string_view /*extension*/) {
  const bool placeable = StartsWith(head, {0xD7, 0xCD, 0xC6, 0x9A});
  return placeable || StartsWith(head, {1, 0, 9, 0, 0, 1}) || StartsWith(head, {1, 0, 9, 0, 0, 3});
}

constexpr std::array kKinds{
    MagickKind{.magick = "PCX",
               .format = kFormatPcx,
               .matches = IsPcx,
               .depth = PcxDepth,
               .resolution = PcxResolution},
    MagickKind{.magick = "DCX",
               .format = kFormatPcx,
               .matches = IsDcx,
               .resolution = DcxResolution,
               .pages = DcxPages},
    MagickKind{.magick = "SUN", .format = kFormatRas, .matches = IsRas, .depth = RasDepth},
    MagickKind{.magick = "WPG", .format = kFormatWpg, .matches = IsWpg},
    MagickKind{.magick = "WMF", .format = kFormatWmf, .matches = IsWmf, .isSound = IsSoundMetafile},
    MagickKind{.magick = "TGA", .format = kFormatTga, .matches = IsTga, .depth = TgaDepth},
    MagickKind{.magick = "PICT",
               .format = kFormatPct,
               .matches = IsPct,
               .isSound = IsSoundPct,
               .resolution = PctResolution},
    MagickKind{.magick = "PCD", .format = kFormatPcd, .matches = IsPcd, .isSound = IsSoundPcd},
};

}  // namespace

const MagickKind* MagickKindOf(std::span<const std::uint8_t> head, std::string_view extension) {
  const auto* const kind = std::find_if(kKinds.begin(), kKinds.end(), [&](const MagickKind& each) {
    return each.matches(head, extension);
  });
  return kind == kKinds.end() ? nullptr : kind;
}

}  // namespace modules
