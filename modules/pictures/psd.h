// Photoshop documents, as far as their flattened picture goes: layers are passed over on reading
// and never written. Numbers are big-endian.
//
//   header      mark, version, channels, height, width, bits for each sample, colour mode
//   palette     length, then 256 reds, greens and blues for indexed colour
//   resources   length, then records of which one gives the resolution
//   layers      length, passed over
//   picture     2 bytes compression, then channel after channel, row after row from the top
#ifndef MODULES_PICTURES_PSD_H
#define MODULES_PICTURES_PSD_H

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace modules {

enum class PsdMode : std::uint16_t {
  kBitmap = 0,  // 1 bit, 1 is black
  kGray = 1,
  kIndexed = 2,
  kRgb = 3,
  kCmyk = 4,  // 255 is no ink
  kDuotone = 8,
};

enum class PsdCompression : std::uint16_t { kNone = 0, kRuns = 1 };

constexpr std::array<std::uint8_t, 6> kPsdMark{'8', 'B', 'P', 'S', 0, 1};
constexpr std::array<std::uint8_t, 4> kPsdResourceMark{'8', 'B', 'I', 'M'};
constexpr unsigned kPsdResolutionResource = 1005;
constexpr std::size_t kPsdResolutionBytes = 16;  // 16.16 dots per inch at 0 and, for y, at 8
constexpr std::size_t kPsdHeaderBytes = 26;
constexpr std::size_t kPsdPaletteBytes = 768;
constexpr int kPsdMostSide = 30000;

// Runs of the kind named PackBits: a count byte n, then n + 1 bytes as they are for 0..127, or one
// byte that stands for 257 - n for 129..255; 128 means nothing.

// Appends a row in runs.
void PackRuns(std::span<const std::uint8_t> row, std::vector<std::uint8_t>& runs);
// Fills a row; false when the runs do not make exactly one.
bool UnpackRuns(std::span<const std::uint8_t> runs, std::span<std::uint8_t> row);

}  // namespace modules

#endif  // MODULES_PICTURES_PSD_H
