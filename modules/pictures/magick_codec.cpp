// PCX, DCX, TGA, Sun raster, PICT, Photo CD, Windows metafiles and WordPerfect graphics by
// GraphicsMagick; EPS is written, not read, since reading it takes an outside program.
#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

#include "pictures/codecs.h"
#include "pictures/file_handle.h"
#include "pictures/magick_kinds.h"
#include "pictures/magick_pixels.h"
#include "pictures/magick_session.h"
#include "pictures/picture.h"
#include "pictures/pixel_kinds.h"

namespace modules {
namespace {

using Bytes = std::span<const std::uint8_t>;

bool Recognises(Bytes head, const char* extension) {
  return MagickKindOf(head, extension) != nullptr;
}

int ReadFile(const char* path, std::vector<std::uint8_t>& bytes) {
  const FileHandle file = OpenFile(path, "rb");
  if (!file) return kModuleFileNotOpened;
  bytes.resize(FileSize(path));
  const bool complete = std::fread(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  return complete ? kModuleSuccess : kModuleReadFailed;
}

std::string ExtensionOf(const char* path) {
  std::string extension = std::filesystem::path(path).extension().string();
  extension.erase(0, 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return extension;
}

// A file in memory and what is known of it before the library sees it.
struct Source {
  std::vector<std::uint8_t> bytes;
  const MagickKind* kind = nullptr;
  MagickImageInfo info;
  int pages = 1;

  int open(const char* path, int page) {
    if (const int code = ReadFile(path, bytes); code != kModuleSuccess) return code;
    kind = MagickKindOf(Bytes(bytes).first(std::min(bytes.size(), Codec::kHeadBytes)),
                        ExtensionOf(path));
    if (kind == nullptr) return kFileFormatNotRead;
    if (kind->isSound != nullptr && !kind->isSound(bytes)) return kFileFormatDamaged;
    if (kind->pages != nullptr) pages = kind->pages(bytes);
    if (page < 1 || page > pages) return kModuleBadParameter;
    info = NewMagickInfo(kind->magick);
    if (!info) return kModuleNoMemory;
    if (pages > 1) {
      info->subimage = static_cast<unsigned long>(page - 1);
      info->subrange = 1;
    }
    return kModuleSuccess;
  }

  [[nodiscard]] int depthOf(const Image& image) const {
    const int own = kind->depth == nullptr ? 0 : kind->depth(bytes);
    if (own > 8) return own;
    for (const int depth : {1, 4, 8}) {
      if (depth >= own && FitsPalette(image, depth)) return depth;
    }
    return 24;
  }

  [[nodiscard]] FileImage describe(const Image& image, int page) const {
    FileResolution resolution;
    if (kind->resolution != nullptr) resolution = kind->resolution(bytes, page);
    FileImage described;
    described.width = static_cast<int>(image.columns);
    described.height = static_cast<int>(image.rows);
    described.depth = depthOf(image);
    described.xPixelsPerMetre = orvo::PixelsPerMetre(resolution.x);
    described.yPixelsPerMetre = orvo::PixelsPerMetre(resolution.y);
    return described;
  }
};

// Of the images that came: those before a later page come with it.
const Image& PageOf(const MagickImage& images, int page) {
  return page > 1 ? *GetLastImageInList(images.get()) : *images;
}

int Describe(const char* path, int page, LTFILEINFO& info) {
  Source source;
  if (const int code = source.open(path, page); code != kModuleSuccess) return code;
  MagickImage images;
  const int code = DecodeMagick(*source.info, source.bytes, nullptr, images);
  if (code != kModuleSuccess) return code;
  const Image& image = PageOf(images, page);
  const char* const compression = image.compression == RLECompression ? "RLE" : "none";
  DescribeImage(source.describe(image, page), source.kind->format, compression, info);
  info.pageCount = source.pages;
  info.page = page;
  return kModuleSuccess;
}

int Load(const char* path, int page, struct_LEAD_Bitmap& bitmap) {
  Source source;
  if (const int code = source.open(path, page); code != kModuleSuccess) return code;
  MagickProgress progress(MagickProgress::Order::kLibraryFirst);
  MagickImage images;
  const int code = DecodeMagick(*source.info, source.bytes, &progress, images);
  if (code != kModuleSuccess) return code;
  const Image& image = PageOf(images, page);
  return LoadImage(source.describe(image, page), bitmap,
                   [&](const Pixels& target) { return CopyFromMagick(image, target, progress); });
}

// How the formats are written, by the library's name.
struct Target {
  int format;
  const char* magick;
  bool holdsAlpha;
  bool holdsBits;  // has a form of 1 bit a pixel, in black and white
  CompressionType compression;
  int leastWidth = 1;
};
constexpr std::array kTargets{
    Target{kFormatPcx, "PCX", false, true, RLECompression},
    Target{kFormatTga, "TGA", true, false, RLECompression},
    Target{kFormatRas, "SUN", false, true, RLECompression},
    // Rows below 8 bytes, which this format keeps without runs, come out damaged.
    Target{kFormatPct, "PICT", false, false, UndefinedCompression, 8},
    Target{kFormatEps, "EPS3", false, true, ZipCompression},
};

constexpr std::array<int, kTargets.size()> kFormats = [] {
  std::array<int, kTargets.size()> formats{};
  std::transform(kTargets.begin(), kTargets.end(), formats.begin(),
                 [](const Target& target) { return target.format; });
  return formats;
}();

// Null when the format cannot hold an image of this size.
const Target* TargetFor(int format, const Pixels& pixels) {
  constexpr int kMostSide = 0x7FFF;  // what the measures of all these formats hold
  const auto* const target = std::find_if(
      kTargets.begin(), kTargets.end(), [&](const Target& each) { return each.format == format; });
  const bool fits = target != kTargets.end() && pixels.width >= target->leastWidth &&
                    std::max(pixels.width, pixels.height) <= kMostSide;
  return fits ? target : nullptr;
}

int Save(const SaveRequest& request, const LockedDib& locked) {
  const Pixels& pixels = *locked;
  const Target* const target = TargetFor(request.format, pixels);
  if (target == nullptr) return kFileFormatNotWritten;
  const MagickImageInfo info = NewMagickInfo(target->magick);
  const MagickImage image = info ? NewMagickImage(*info) : nullptr;
  if (!image) return kModuleNoMemory;
  info->compression = target->compression;
  // Black and white stay 1 bit where such files are read everywhere; the library has to look.
  if (pixels.depth == 1 && target->holdsBits) info->type = OptimizeType;
  image->units = PixelsPerInchResolution;
  image->x_resolution = orvo::DotsPerInch(locked.header().biXPelsPerMeter);
  image->y_resolution = orvo::DotsPerInch(locked.header().biYPelsPerMeter);

  MagickProgress progress(MagickProgress::Order::kRowsFirst);
  const bool withAlpha = target->holdsAlpha && HasAlpha(pixels);
  int code = CopyToMagick(pixels, withAlpha, *image, progress);
  if (code != kModuleSuccess) return code;
  FileHandle file = OpenFile(request.path, "wb");
  if (!file) return kModuleFileNotOpened;
  code = EncodeMagick(*info, *image, progress, file.get());
  if (code != kModuleSuccess) return code;
  return CloseWritten(std::move(file)) ? kModuleSuccess : kModuleWriteFailed;
}

}  // namespace

const Codec kMagickCodec{.recognises = Recognises,
                         .describe = Describe,
                         .load = Load,
                         .formats = kFormats,
                         .save = Save};

}  // namespace modules
