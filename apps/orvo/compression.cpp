#include "compression.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "file_kind.h"
#include "module_calls.h"
#include "pictures/codecs.h"

namespace client {
namespace {

struct Way {
  std::string_view kind;  // of file
  std::uint16_t ofTiff = COMPRESSION_NONE;
  std::string_view takes =
      {};  // in words, with the command that brings a picture there; empty: all
};

// In the order of the words.
constexpr Way kWays[] = {
    {"tiff"},
    {"tiff", COMPRESSION_LZW},
    {"tiff", COMPRESSION_ADOBE_DEFLATE},
    {"tiff", COMPRESSION_PACKBITS},
    {"tiff", COMPRESSION_CCITTFAX4, "1 bit in black and white; try orvo depth --bits 1"},
    {"tiff", COMPRESSION_JPEG, "8-bit gray, or colors without opacity; try orvo depth --bits 24"},
    {"webp"},
    {"webp"},
};
static_assert(std::size(kWays) == std::size(kCompressions));

// Null where the option is not given.
const Way* Asked(const Job& job) {
  return job.parameters.has("compression") ? &kWays[job.parameters.whole("compression")] : nullptr;
}

// Whether a still WebP file is one that keeps every pixel.
bool IsLosslessWebp(const std::string& path) {
  std::array<char, 16> bytes{};
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), bytes.size());
  const std::string_view head(bytes.data(), bytes.size());
  return head.starts_with("RIFF") && head.substr(8) == "WEBPVP8L";
}

// What is drawn or scanned in few tones, which loss would show in.
bool HasFewColors(const Shape& shape) {
  return shape.bits < 8 || (shape.bits == 8 && shape.colors == "palette");
}

template <class Save>
int SaveBy(const Save& save, const Job& job, const modules::SaveRequest& request) {
  return ModuleCall([&] {
    const modules::LockedDib image(job.image.get());
    modules::Require(image, kModuleNoBitmap);
    save(request, image);
  });
}

}  // namespace

int MindCompression(Job& job) {
  const Way* const asked = Asked(job);
  if (asked == nullptr) return ORVO_OK;
  const std::string name = "--compression " + job.parameters.text("compression");
  if (const std::string kind = KindOfName(job.target); kind != asked->kind) {
    job.hint = name + " is of " + (asked->kind == "tiff" ? "TIFF" : "WebP") + " files";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  const modules::LockedDib image(job.image.get());
  if (!image || modules::Takes(asked->ofTiff, *image)) return ORVO_OK;
  const auto shape = ShapeOf(job.image.get());
  job.hint = "the picture is " + std::to_string(shape->bits) + "-bit " +
             std::string(shape->colors) + ", " + name + " takes " + std::string(asked->takes) +
             " first";
  return ORVO_ERR_NOT_SUPPORTED;
}

modules::TiffCoding TiffCodingFor(const Job& job, std::uint16_t usual) {
  const Way* const asked = Asked(job);
  modules::TiffCoding coding{.compression = usual};
  if (asked != nullptr) coding = {.compression = asked->ofTiff, .mayFax = false};
  if (job.quality > 0) coding.quality = job.quality;
  return coding;
}

int SaveAsNewJpeg(const Job& job, const std::string& path) {
  constexpr int kDefaultQuality = 90;
  return SaveBy(modules::SaveJpeg, job,
                {.path = path.c_str(),
                 .quality = job.quality > 0 ? job.quality : kDefaultQuality,
                 .report = ReportPercent});
}

int SaveAsPng(const Job& job, const std::string& path) {
  modules::SaveRequest request{.path = path.c_str(), .report = ReportPercent};
  if (job.parameters.has("png-level")) request.pngLevel = job.parameters.whole("png-level");
  return SaveBy(modules::SavePng, job, request);
}

int SaveAsWebp(Job& job, const std::string& path) {
  constexpr int kDefaultQuality = 85;
  const auto shape = ShapeOf(job.image.get());
  if (!shape) return ORVO_ERR_NO_BITMAP;
  if (std::max(shape->width, shape->height) > modules::kMostWebpPixels) {
    job.hint = "WebP files are at most " + std::to_string(modules::kMostWebpPixels) +
               " pixels wide and high; try orvo resize first";
    return ORVO_ERR_NOT_SUPPORTED;
  }
  const bool lossless =
      job.parameters.has("compression")
          ? job.parameters.text("compression") == "lossless"
          : job.quality == 0 && (HasFewColors(*shape) || IsLosslessWebp(job.source));
  return SaveBy(modules::SaveWebp, job,
                {.path = path.c_str(),
                 .quality = job.quality > 0 ? job.quality : kDefaultQuality,
                 .report = ReportPercent,
                 .lossless = lossless});
}

}  // namespace client
