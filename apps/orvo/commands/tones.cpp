// Commands that change tones and detail.
#include <cmath>

#include "operations.h"
#include "progress.h"

namespace client {
namespace {

constexpr std::string_view kGrayOrTrueColor = "8-bit gray and 16, 24 or 32 bits";
constexpr std::string_view kPaletteOrTrueColor = "8 and 24 bits";

constexpr double kHundredths = 100;

// The result goes to a new block: on gray pictures the in-place forms see pixels that they have
// already changed.
using LevelAdjustment = int (COrvoInstance::*)(DibHandle, DibHandle*, std::uint8_t) noexcept;

template <LevelAdjustment kAdjust>
int AdjustByLevel(Job& job) {
  orvo::OwnedDib adjusted;
  const int code = (job.toolkit.*kAdjust)(job.image.get(), adjusted.receive(job.image),
                                          static_cast<std::uint8_t>(job.parameters.whole("level")));
  if (code == ORVO_OK) job.image = std::move(adjusted);
  return code;
}

// Level 0 of these asks for nothing. Carried out, it would still round the colours on their way
// through another colour space.
template <LevelAdjustment kAdjust>
int AdjustIfAsked(Job& job) {
  return job.parameters.whole("level") == 0 ? ORVO_OK : AdjustByLevel<kAdjust>(job);
}

// The equalised windows are this many pixels wide and high.
constexpr int kExposureWindow = 128;

int Exposure(Job& job) {
  const int code = AdjustIfAsked<&COrvoInstance::ExposureAdjust>(job);
  if (code == ORVO_ERR_FAILURE) {
    job.hint = "pictures need at least " + std::to_string(kExposureWindow) + " pixels each way";
  }
  return code;
}

int Whiten(Job& job) {
  return job.toolkit.WhitenessAdjustInPlace(
      job.image.get(), static_cast<std::uint32_t>(job.parameters.whole("threshold")));
}

using ChangeInPlace = int (COrvoInstance::*)(DibHandle*, int, StatusCallback) noexcept;

template <ChangeInPlace kChange>
int Change(Job& job) {
  return (job.toolkit.*kChange)(job.image.address(), job.parameters.whole("change"),
                                ReportProgress);
}

int Hue(Job& job) {
  const auto hundredths = std::lround(job.parameters.number("degrees") * kHundredths);
  return job.toolkit.HueAdjustInPlace(job.image.address(), static_cast<int>(hundredths),
                                      ReportProgress);
}

int Gamma(Job& job) {
  const auto hundredths = std::lround(job.parameters.number("gamma") * kHundredths);
  return job.toolkit.GammaAdjustInPlace(job.image.address(), static_cast<unsigned>(hundredths),
                                        ReportProgress);
}

constexpr Option kLevelOptions[] = {
    {.name = "level", .meaning = "strength", .least = 0, .most = 10, .fallback = "5"}};
constexpr Option kWhitenOptions[] = {
    {.name = "threshold",
     .meaning = "pixels whose red, green and blue all reach it become white",
     .least = 0,
     .most = 255,
     .fallback = "230"}};
constexpr Option kChangeOptions[] = {{.name = "change",
                                      .meaning = "0 changes nothing",
                                      .least = -1000,
                                      .most = 1000,
                                      .required = true}};
constexpr Option kHueOptions[] = {{.name = "degrees",
                                   .meaning = "turn round the colour circle",
                                   .kind = ValueKind::kDecimal,
                                   .least = -360,
                                   .most = 360,
                                   .required = true}};
constexpr Option kGammaOptions[] = {{.name = "gamma",
                                     .meaning = "exponent; 1 changes nothing, above brightens",
                                     .kind = ValueKind::kDecimal,
                                     .least = 0.01,
                                     .most = 100,
                                     .required = true}};

constexpr Operation kRows[] = {
    {.name = "sharpen",
     .summary = "Sharpen a photograph, by its size",
     .example = "--level 7 photo.jpg -o sharp.jpg",
     .run = AdjustIfAsked<&COrvoInstance::SharpnessAdjust>,
     .options = kLevelOptions,
     .depths = kGrayOrTrueColor},
    {.name = "histogram",
     .summary = "Stretch the tones of the whole picture",
     .example = "--level 5 hazy.jpg -o clear.jpg",
     .run = AdjustByLevel<&COrvoInstance::HistogramAdjust>,
     .options = kLevelOptions,
     .depths = kGrayOrTrueColor},
    {.name = "exposure",
     .summary = "Equalise tones locally, dark and bright parts each by themselves",
     .example = "--level 6 backlit.jpg -o even.jpg",
     .run = Exposure,
     .options = kLevelOptions,
     .depths = kGrayOrTrueColor},
    {.name = "unsharp",
     .summary = "Sharpen or soften by a signed amount",
     .example = "--change 300 photo.jpg -o sharp.jpg",
     .run = Change<&COrvoInstance::LeadSharpnessAdjustInPlace>,
     .options = kChangeOptions,
     .depths = kFromFourBits},
    {.name = "whiten",
     .summary = "Make nearly white pixels white",
     .example = "--threshold 220 page.png -o clean.png",
     .run = Whiten,
     .options = kWhitenOptions,
     .depths = kPaletteOrTrueColor},
    {.name = "contrast",
     .summary = "Change the contrast; -1000 leaves mid-gray",
     .example = "--change 250 *.jpg -o better/",
     .run = Change<&COrvoInstance::ContrastAdjustInPlace>,
     .options = kChangeOptions,
     .depths = kFromFourBits},
    {.name = "intensity",
     .summary = "Change the brightness; -1000 is black, 1000 white",
     .example = "--change 100 dark.jpg -o lighter.jpg",
     .run = Change<&COrvoInstance::IntensityAdjustInPlace>,
     .options = kChangeOptions,
     .depths = kFromFourBits},
    {.name = "saturation",
     .summary = "Change the strength of colours; -1000 is gray",
     .example = "--change 300 dull.jpg -o vivid.jpg",
     .run = Change<&COrvoInstance::SaturationAdjustInPlace>,
     .options = kChangeOptions,
     .depths = kFromFourBits},
    {.name = "hue",
     .summary = "Turn all colours round the colour circle",
     .example = "--degrees 30 photo.jpg -o warmer.jpg",
     .run = Hue,
     .options = kHueOptions,
     .depths = kFromFourBits},
    {.name = "gamma",
     .summary = "Brighten or darken the middle tones",
     .example = "--gamma 1.8 dark.jpg -o lighter.jpg",
     .run = Gamma,
     .options = kGammaOptions,
     .depths = kFromFourBits},
};

}  // namespace

std::span<const Operation> ToneOperations() {
  return kRows;
}

}  // namespace client
