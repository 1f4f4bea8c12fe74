#include "pictures/magick_kinds.h"

#include <algorithm>

#include "pictures/codecs.h"

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

// Beyond the end of a file its bytes read as 0.
int ByteAt(Bytes file, std::size_t offset) {
  return offset < file.size() ? file[offset] : 0;
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

// --- PCX, and DCX, which strings up to 1023 of them together

int PcxDepth(Bytes file) {
  const int bits = ByteAt(file, 3);
  const int planes = ByteAt(file, 65);
  return DepthThatHolds(bits * planes);
}

FileResolution PcxResolution(Bytes file, int /*page*/) {
  return {Little16(file, 12), Little16(file, 14)};
}

const char* PcxCompression(Bytes file, int /*page*/) {
  return ByteAt(file, 2) == 1 ? "RLE" : "none";
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

Bytes DcxPage(Bytes file, int page) {
  return file.subspan(std::min(DcxPageStart(file, page), file.size()));
}

FileResolution DcxResolution(Bytes file, int page) {
  return PcxResolution(DcxPage(file, page), page);
}

const char* DcxCompression(Bytes file, int page) {
  return PcxCompression(DcxPage(file, page), page);
}

// --- Sun raster

int RasDepth(Bytes file) {
  return DepthThatHolds(ByteAt(file, 15));
}

const char* RasCompression(Bytes file, int /*page*/) {
  constexpr int kRuns = 2;
  return ByteAt(file, 23) == kRuns ? "RLE" : "none";
}

// --- PICT and Photo CD: the mark lies beyond the first bytes

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

// Rows of 8 bytes and more are in runs.
const char* PctCompression(Bytes /*file*/, int /*page*/) {
  return "RLE";
}

// In the second sector of the disc.
bool IsSoundPcd(Bytes file) {
  constexpr std::size_t kMarkAt = 2048;
  return HasMark(file, kMarkAt, {'P', 'C', 'D', '_'});
}

}  // namespace

bool IsPcx(Head head) {
  constexpr std::size_t kHeaderBytes = 128;
  if (head.size() < kHeaderBytes || head[0] != 0x0A) return false;
  const std::uint8_t version = head[1];
  const std::uint8_t bits = head[3];
  return version <= 5 && version != 1 && head[2] <= 1 &&
         (bits == 1 || bits == 2 || bits == 4 || bits == 8);
}

bool IsDcx(Head head) {
  return StartsWith(head, {0xB1, 0x68, 0xDE, 0x3A});
}

bool IsRas(Head head) {
  constexpr std::size_t kHeaderBytes = 32;
  return head.size() >= kHeaderBytes && StartsWith(head, {0x59, 0xA6, 0x6A, 0x95});
}

bool IsWpg(Head head) {
  return StartsWith(head, {0xFF, 'W', 'P', 'C'});
}

bool IsWmf(Head head) {
  const bool placeable = StartsWith(head, {0xD7, 0xCD, 0xC6, 0x9A});
  return placeable || StartsWith(head, {1, 0, 9, 0, 0, 1}) || StartsWith(head, {1, 0, 9, 0, 0, 3});
}

const MagickKind kPcxKind{.magick = "PCX",
                          .format = kFormatPcx,
                          .depth = PcxDepth,
                          .resolution = PcxResolution,
                          .compression = PcxCompression};
const MagickKind kDcxKind{.magick = "DCX",
                          .format = kFormatPcx,
                          .resolution = DcxResolution,
                          .compression = DcxCompression,
                          .pages = DcxPages};
const MagickKind kRasKind{
    .magick = "SUN", .format = kFormatRas, .depth = RasDepth, .compression = RasCompression};
const MagickKind kPctKind{.magick = "PICT",
                          .format = kFormatPct,
                          .isSound = IsSoundPct,
                          .resolution = PctResolution,
                          .compression = PctCompression};
const MagickKind kPcdKind{.magick = "PCD", .format = kFormatPcd, .isSound = IsSoundPcd};
const MagickKind kWpgKind{.magick = "WPG", .format = kFormatWpg, .isSound = IsSoundWordPerfect};
const MagickKind kWmfKind{.magick = "WMF", .format = kFormatWmf, .isSound = IsSoundMetafile};

}  // namespace modules
