#include <algorithm>
#include <cmath>

#include "common/color.h"
#include "common/color_rows.h"
#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/psd.h"

namespace modules {
namespace {

using Buffer = std::vector<std::uint8_t>;

void Add16(Buffer& bytes, unsigned number) {
  bytes.push_back(static_cast<std::uint8_t>(number >> 8));
  bytes.push_back(static_cast<std::uint8_t>(number));
}
void Add32(Buffer& bytes, std::uint32_t number) {
  Add16(bytes, number >> 16);
  Add16(bytes, number);
}

PsdMode ModeFor(const Pixels& image) {
  if (image.depth > 8) return PsdMode::kRgb;
  if (image.depth == 1 && (HasGrayRamp(image) || HasGrayRamp(image, true))) return PsdMode::kBitmap;
  return BytesAreTones(image) ? PsdMode::kGray : PsdMode::kIndexed;
}

void AddPalette(Buffer& bytes, const Pixels& image) {
  Add32(bytes, kPsdPaletteBytes);
  for (std::uint8_t RGBQUAD::*const tone :
       {&RGBQUAD::rgbRed, &RGBQUAD::rgbGreen, &RGBQUAD::rgbBlue}) {
    for (int i = 0; i < 256; ++i) {
      bytes.push_back(i < image.paletteSize() ? image.palette[i].*tone : std::uint8_t{0});
    }
  }
}

// As 16.16; whole dots where pixels per metre stand for them, so that 300 stays 300.
std::uint32_t FixedDotsPerInch(std::int32_t pixelsPerMetre) {
  constexpr double kFixedOne = 65536;
  const int whole = orvo::DotsPerInch(pixelsPerMetre);
  const bool isWhole = orvo::PixelsPerMetre(whole) == pixelsPerMetre;
  const double dots = isWhole ? whole : pixelsPerMetre * orvo::kMetresPerInch;
  return static_cast<std::uint32_t>(
      std::clamp(std::round(dots * kFixedOne), 0.0, double{UINT32_MAX}));
}

void AddResources(Buffer& bytes, const BITMAPINFOHEADER& header) {
  constexpr unsigned kShownPerInch = 1;
  constexpr unsigned kShownInInches = 1;
  constexpr std::uint32_t kRecordBytes = 12 + kPsdResolutionBytes;
  if (header.biXPelsPerMeter <= 0 || header.biYPelsPerMeter <= 0) return Add32(bytes, 0);
  Add32(bytes, kRecordBytes);
  bytes.insert(bytes.end(), kPsdResourceMark.begin(), kPsdResourceMark.end());
  Add16(bytes, kPsdResolutionResource);
  Add16(bytes, 0);  // no name
  Add32(bytes, kPsdResolutionBytes);
  for (const std::int32_t resolution : {header.biXPelsPerMeter, header.biYPelsPerMeter}) {
    Add32(bytes, FixedDotsPerInch(resolution));
    Add16(bytes, kShownPerInch);
    Add16(bytes, kShownInInches);
  }
}

// All that stands before the picture's rows.
Buffer StartOf(const LockedDib& image, PsdMode mode, unsigned channels) {
  Buffer bytes(kPsdMark.begin(), kPsdMark.end());
  bytes.resize(bytes.size() + 6);  // reserved
  Add16(bytes, channels);
  Add32(bytes, static_cast<std::uint32_t>(image->height));
  Add32(bytes, static_cast<std::uint32_t>(image->width));
  Add16(bytes, mode == PsdMode::kBitmap ? 1 : 8);
  Add16(bytes, static_cast<unsigned>(mode));
  if (mode == PsdMode::kIndexed) {
    AddPalette(bytes, *image);
  } else {
    Add32(bytes, 0);
  }
  AddResources(bytes, image.header());
  Add32(bytes, 0);  // no layers
  Add16(bytes, static_cast<unsigned>(PsdCompression::kRuns));
  return bytes;
}

// The samples of one channel in a stored row.
Buffer SamplesOf(const Pixels& image, PsdMode mode, std::size_t channel, int y) {
  Buffer samples(static_cast<std::size_t>(image.width));
  if (mode == PsdMode::kRgb) {
    std::vector<Color> colors(samples.size());
    ReadColors(image, y, colors.data());
    constexpr std::array kTones{&Color::red, &Color::green, &Color::blue};
    std::ranges::transform(colors, samples.begin(), kTones[channel]);
  } else if (mode == PsdMode::kBitmap) {
    samples.resize(image.rowBytes());
    const std::uint8_t flip = image.palette[0].rgbRed == 0 ? 0xFF : 0;
    std::transform(image.row(y), image.row(y) + samples.size(), samples.begin(),
                   [=](std::uint8_t bits) { return static_cast<std::uint8_t>(bits ^ flip); });
  } else {
    ReadIndexes(image, y, samples.data());
  }
  return samples;
}

void Write(std::FILE* file, const Buffer& bytes) {
  Require(std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size(), kModuleWriteFailed);
}

// The table of row lengths stands before the rows, so it is written twice: empty, then filled.
void WritePicture(std::FILE* file, const Pixels& image, PsdMode mode, int channels, Report report) {
  const int rows = channels * image.height;
  Progress progress(static_cast<std::uint64_t>(rows), report);
  const long tableAt = std::ftell(file);
  Write(file, Buffer(2 * static_cast<std::size_t>(rows)));
  Buffer counts;
  Buffer runs;
  for (int i = 0; i < rows; ++i) {
    runs.clear();
    const auto channel = static_cast<std::size_t>(i / image.height);
    PackRuns(SamplesOf(image, mode, channel, image.height - 1 - i % image.height), runs);
    Add16(counts, static_cast<unsigned>(runs.size()));
    Write(file, runs);
    Require(progress.report(static_cast<std::uint64_t>(i) + 1), kModuleAborted);
  }
  Require(std::fseek(file, tableAt, SEEK_SET) == 0, kModuleWriteFailed);
  Write(file, counts);
}

}  // namespace

void SavePsd(const SaveRequest& request, const LockedDib& image) {
  Require(std::max(image->width, image->height) <= kPsdMostSide, kFileFormatNotWritten);
  const PsdMode mode = ModeFor(*image);
  const int channels = mode == PsdMode::kRgb ? 3 : 1;
  WriteFile(request.path, [&](std::FILE* file) {
    Write(file, StartOf(image, mode, static_cast<unsigned>(channels)));
    WritePicture(file, *image, mode, channels, request.report);
  });
}

}  // namespace modules
