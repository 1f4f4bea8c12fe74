#include "ltfil13n/magick_kinds.h"

#include <algorithm>
#include <array>

#include "bridge/vendor_contract.h"
#include "ltfil13n/codec.h"

namespace provider {
namespace {

using Bytes = std::span<const std::uint8_t>;

bool StartsWith(Bytes head, std::initializer_list<std::uint8_t> mark) {
  return head.size() >= mark.size() && std::equal(mark.begin(), mark.end(), head.begin());
}

int DepthThatHolds(int bits) {
  for (const int depth : {1, 4, 8}) {
    if (bits <= depth) return depth;
  }
  return 24;
}

int AsDecoded(Bytes /*head*/) {
  return 0;
}
int OnePage(Bytes /*file*/) {
  return 1;
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

bool IsDcx(Bytes head, std::string_view /*extension*/) {
  return StartsWith(head, {0xB1, 0x68, 0xDE, 0x3A});
}

// Where each page begins stands in a list that a 0 ends.
int DcxPages(Bytes file) {
  constexpr std::size_t kMostPages = 1023;
  std::size_t pages = 0;
  while (pages < kMostPages && file.size() >= 4 * (pages + 2)) {
    const Bytes offset = file.subspan(4 * (pages + 1), 4);
    if (std::all_of(offset.begin(), offset.end(), [](std::uint8_t b) { return b == 0; })) break;
    ++pages;
  }
  return static_cast<int>(pages);
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

// --- Kinds without a depth of their own ----------------------------------------------------------

bool IsWpg(Bytes head, std::string_view /*extension*/) {
  return StartsWith(head, {0xFF, 'W', 'P', 'C'});
}

bool IsWmf(Bytes head, std::string_view /*extension*/) {
  const bool placeable = StartsWith(head, {0xD7, 0xCD, 0xC6, 0x9A});
  return placeable || StartsWith(head, {1, 0, 9, 0, 0, 1}) || StartsWith(head, {1, 0, 9, 0, 0, 3});
}

// --- Kinds whose mark lies beyond a head: the name counts until the whole file is there ----------

bool HasMark(Bytes file, std::size_t offset, std::initializer_list<std::uint8_t> mark) {
  return file.size() > offset && StartsWith(file.subspan(offset), mark);
}

// 512 bytes that programs fill as they like come first, then 10 of size and frame.
bool IsPct(Bytes file, std::string_view extension) {
  constexpr std::size_t kMarkAt = 522;
  if (extension != "pct" && extension != "pict") return false;
  return file.size() <= Codec::kHeadBytes || HasMark(file, kMarkAt, {0x00, 0x11, 0x02, 0xFF}) ||
         HasMark(file, kMarkAt, {0x11, 0x01});
}

bool IsPcd(Bytes file, std::string_view extension) {
  constexpr std::size_t kMarkAt = 2048;
  if (extension != "pcd") return false;
  return file.size() <= Codec::kHeadBytes || HasMark(file, kMarkAt, {'P', 'C', 'D', '_'});
}

constexpr std::array kKinds{
    MagickKind{"PCX", kFormatPcx, IsPcx, PcxDepth, OnePage},
    MagickKind{"DCX", kFormatPcx, IsDcx, AsDecoded, DcxPages},
    MagickKind{"SUN", kFormatRas, IsRas, RasDepth, OnePage},
    MagickKind{"WPG", kFormatWpg, IsWpg, AsDecoded, OnePage},
    MagickKind{"WMF", kFormatWmf, IsWmf, AsDecoded, OnePage},
    MagickKind{"TGA", kFormatTga, IsTga, TgaDepth, OnePage},
    MagickKind{"PICT", kFormatPct, IsPct, AsDecoded, OnePage},
    MagickKind{"PCD", kFormatPcd, IsPcd, AsDecoded, OnePage},
};

}  // namespace

const MagickKind* MagickKindOf(std::span<const std::uint8_t> head, std::string_view extension) {
  const auto* const kind = std::find_if(kKinds.begin(), kKinds.end(), [&](const MagickKind& each) {
    return each.matches(head, extension);
  });
  return kind == kKinds.end() ? nullptr : kind;
}

}  // namespace provider
