#include "pictures/picture.h"

#include <algorithm>
#include <cmath>

#include <orvo/file_limits.h>

namespace modules {

std::size_t Picture::rowBytes() const {
  constexpr int kBits555 = 16;
  const int pixelBits = bits == 5 ? kBits555 : bits * samples;
  return (static_cast<std::size_t>(width) * static_cast<std::size_t>(pixelBits) + 7) / 8;
}

int Picture::depth() const {
  if (samples == 1) return hasAlpha ? 32 : bits == 2 ? 4 : std::min(bits, 8);
  if (samples == 3) return bits == 5 ? 16 : 24;
  return hasInks && !hasAlpha ? 24 : 32;
}

void Picture::setDepth(int depth) {
  samples = depth <= 8 ? 1 : depth == 32 ? 4 : 3;
  bits = depth == 16 ? 5 : std::min(depth, 8);
}

void Picture::setResolution(double x, double y, unsigned unit) {
  if (unit == 1) {
    xDensity = x;
    yDensity = y;
  } else if (unit == 2 || unit == 3) {
    const double metres = unit == 2 ? orvo::kMetresPerInch : 0.01;
    xPixelsPerMetre = PixelsPerMetreOf(x, metres);
    yPixelsPerMetre = PixelsPerMetreOf(y, metres);
  }
}

bool PictureReader::goTo(int page) {
  const OrvoFileLimits& limits = *OrvoLimitFiles(nullptr);
  if (page > 1) Require(static_cast<std::uint64_t>(page) <= limits.pages, kFileFormatDamaged);
  if (!readHeader(page)) return false;
  const auto width = static_cast<std::uint64_t>(picture_.width);
  const auto height = static_cast<std::uint64_t>(picture_.height);
  Require(std::max(width, height) <= limits.side && width * height <= limits.pixels,
          kModuleNoMemory);
  return true;
}

void RequireMemory(std::uint64_t bytes) {
  Require(bytes <= OrvoLimitFiles(nullptr)->memory, kModuleNoMemory);
}

std::optional<CodedParts> PictureReader::codedParts() {
  const auto stretch = codedStretch();
  if (!stretch) return std::nullopt;
  return CodedParts{.coding = stretch->coding,
                    .bits = picture_.bits,
                    .stretches = {{stretch->start, stretch->bytes}}};
}

std::int32_t PixelsPerMetreOf(double dots, double metres) {
  const double value = std::round(dots / metres);
  return value > 0 && value <= orvo::kMostResolution ? static_cast<std::int32_t>(value) : 0;
}

}  // namespace modules
