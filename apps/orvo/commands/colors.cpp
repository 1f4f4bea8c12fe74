// Commands that change colours and depth.
#include <array>
#include <filesystem>

#include "operations.h"
#include "progress.h"
#include "saving.h"
#include "source_colors.h"
#include "tone_table.h"

namespace client {
namespace {

constexpr std::string_view kDepths[] = {"1", "4", "8", "16", "24", "32"};
// In the order of the toolkit's dithering modes, from 0.
constexpr std::string_view kDithers[] = {"none",   "floyd-steinberg", "stucki",
                                         "burkes", "sierra",          "stevenson-arce",
                                         "jarvis", "ordered",         "clustered"};
// In the order of the toolkit's channels, from 0.
constexpr std::string_view kChannels[] = {"all", "red", "green", "blue"};

int Invert(Job& job) {
  return job.toolkit.InvertInPlace(job.image.address(), ReportProgress);
}

int Gray(Job& job) {
  BringToSrgbBeforeGray(job);
  if (const int code = LayOnBackground(job); code != ORVO_OK) return code;
  return job.toolkit.ConvertToGrayScaleResInPlace(job.image.address(), ReportProgress);
}

int Depth(Job& job) {
  const int bits = std::stoi(job.parameters.text("bits"));
  if (bits == 1) BringToSrgbBeforeGray(job);
  if (bits < 32) {
    if (const int code = LayOnBackground(job); code != ORVO_OK) return code;
  }
  if (const int code = job.toolkit.SetDitheringMode(job.parameters.whole("dither"));
      code != ORVO_OK) {
    return code;
  }
  return job.toolkit.ConvertToColorResInPlace(job.image.address(), bits);
}

int Remap(Job& job) {
  ToneTable table{};
  if (!ReadToneTable(job.parameters, table).empty()) return ORVO_ERR_BAD_ARGUMENT;
  return job.toolkit.RemapIntensityInPlace(job.image.address(), table.data(),
                                           job.parameters.whole("channel"), ReportProgress);
}

std::string CheckRemap(const Parameters& parameters) {
  ToneTable table{};
  return ReadToneTable(parameters, table);
}

// A bare name is searched for on the system's library path; a file of that name in the current
// folder is meant first.
int ConvertRgb(Job& job) {
  std::string library = job.parameters.text("converter");
  std::error_code fault;
  if (std::filesystem::exists(library, fault)) {
    library = std::filesystem::absolute(library, fault).string();
  }
  return job.toolkit.ConvertRGBInPlace(job.image.get(), library.c_str());
}

constexpr Option kDepthOptions[] = {{.name = "bits",
                                     .meaning = "bits per pixel; 16 is 5-5-5",
                                     .kind = ValueKind::kChoice,
                                     .choices = kDepths,
                                     .required = true},
                                    {.name = "dither",
                                     .meaning = "how colours that the palette lacks are spread",
                                     .kind = ValueKind::kChoice,
                                     .choices = kDithers,
                                     .fallback = "floyd-steinberg"}};

constexpr Option kRemapOptions[] = {
    {.name = "table",
     .meaning = "text file of 256 numbers 0 to 255, the new value of each tone",
     .kind = ValueKind::kFile},
    {.name = "posterize", .meaning = "number of tones that remain", .least = 2, .most = 256},
    {.name = "curve",
     .meaning = "points old,new,old,new... with old rising, joined by straight lines",
     .least = 0,
     .most = 255,
     .fewest = 2,
     .atMost = 512},
    {.name = "channel",
     .meaning = "what changes",
     .kind = ValueKind::kChoice,
     .choices = kChannels,
     .fallback = "all"}};

constexpr Option kConvertRgbOptions[] = {
    {.name = "converter",
     .meaning = "shared library that exports vnColorConvertDIB",
     .kind = ValueKind::kFile,
     .required = true}};

constexpr Operation kRows[] = {
    {.name = "invert",
     .summary = "Make a negative",
     .example = "negative.tif -o positive.png",
     .run = Invert,
     .depths = kFromFourBits},
    {.name = "gray",
     .summary = "Convert to 8-bit gray",
     .example = "photo.jpg -o gray.png",
     .run = Gray},
    {.name = "depth",
     .summary = "Convert to another number of bits per pixel",
     .example = "--bits 8 --dither stucki photo.jpg -o small.png",
     .run = Depth,
     .options = kDepthOptions,
     .depths = kFromFourBits},
    {.name = "remap",
     .summary = "Give each tone a new value; one of --table, --posterize and --curve",
     .example = "--curve 0,0,64,96,255,255 photo.jpg -o lifted.jpg",
     .run = Remap,
     .options = kRemapOptions,
     .depths = kFromFourBits,
     .check = CheckRemap},
    {.name = "convert-rgb",
     .summary = "Run a colour converter of your own on the pixels",
     .example = "--converter ./sepia_converter.dll photo.jpg -o old.jpg",
     .run = ConvertRgb,
     .options = kConvertRgbOptions},
};

}  // namespace

std::span<const Operation> ColorOperations() {
  return kRows;
}

}  // namespace client
