#include "pairs.h"

namespace table {

namespace {

using F = const Form&;
using W = StatusCallback;

const std::string kFace = "(131x129x24";
const std::vector<int> kFourUp = {4, 8, 16, 24, 32};
const std::vector<int> kOneUp = {1, 4, 8, 16, 24, 32};
const std::vector<int> kAny = {1, 2, 4, 8, 16, 24, 32};

// An adjustment by -1000..1000.
Pair Change(const char* name, std::size_t place, const char* entry) {
  return {.name = name,
          .toNew = place,
          .inPlace = place + 1,
          .call = [](F form, int n, W w) { return form(n, w); },
          .number = 250,
          .moduleCall = entry + kFace + ", 250)",
          .accepted = {-1000, 1000},
          .refused = {-1001, 1001},
          .depths = kFourUp,
          .needs = entry};
}

std::vector<Pair> MakeModulePairs() {
  std::vector<Pair> pairs = {
      Change("ContrastAdjust", 21, "L_ChangeBitmapContrast"),
      Change("IntensityAdjust", 31, "L_ChangeBitmapIntensity"),
      Change("HueAdjust", 29, "L_ChangeBitmapHue"),
      Change("SaturationAdjust", 37, "L_ChangeBitmapSaturation"),
      Change("LeadSharpnessAdjust", 40, "L_SharpenBitmap"),
      {.name = "GammaAdjust",
       .toNew = 27,
       .inPlace = 28,
       .call = [](F form, int n, W w) { return form(static_cast<unsigned>(n), w); },
       .number = 220,
       .moduleCall = "L_GammaCorrectBitmap" + kFace + ", 220)",
       .accepted = {1, 2000},
       .refused = {0},
       .depths = kFourUp},
      {.name = "Invert",
       .toNew = 33,
       .inPlace = 34,
       .call = [](F form, int, W w) { return form(w); },
       .moduleCall = "L_InvertBitmap" + kFace + ")",
       .depths = kFourUp},
      {.name = "RemapIntensity",
       .toNew = 49,
       .inPlace = 50,
       .call =
           [](F form, int n, W w) {
             for (unsigned i = 0; i < 256; ++i) tones[i] = 255 - i;
             return form(static_cast<const std::uint32_t*>(tones), n, w);
           },
       .number = 3,
       .moduleCall = "L_RemapBitmapIntensity" + kFace + ", tones, 256, 3)",
       .depths = kFourUp},
      {.name = "ConvertToGrayScaleRes",
       .toNew = 25,
       .inPlace = 26,
       .call = [](F form, int, W w) { return form(w); },
       .moduleCall = "L_GrayScaleBitmap" + kFace + ", 8)",
       .depths = kOneUp},
      {.name = "ConvertToColorRes",
       .toNew = 23,
       .inPlace = 24,
       .call = [](F form, int n, W) { return form(n); },
       .number = 4,
       .moduleCall = "L_ColorResBitmap" + kFace + ", 131x129x24, 4, 65537, 0, 0, 0, 0, 0)",
       .accepted = {1, 4, 8, 16, 24, 32},
       .refused = {-8, 0, 2, 3, 15, 25, 31, 33, 64},
       .depths = kFourUp,
       .watched = false},
      {.name = "Rotate",
       .toNew = 35,
       .inPlace = 36,
       .call = [](F form, int n, W w) { return form(n, w); },
       .number = 30,
       .moduleCall = "L_RotateBitmap" + kFace + ", 3000, 1, 16777215)",
       .accepted = {-90, 0, 725},
       .depths = kOneUp},
      {.name = "ChangeSize",
       .toNew = 46,
       .inPlace = 47,
       .call = [](F form, int n, W w) { return form(n, 20, 2U, w); },
       .number = 30,
       .moduleCall = "L_SizeBitmap" + kFace + ", 30, 20, 2)",
       .depths = kAny},
      {.name = "ChangeResolution",
       .toNew = 19,
       .inPlace = 20,
       .call = [](F form, int n, W w) { return form(n, 100, w); },
       .number = 150,
       .moduleCall = "L_SizeBitmap" + kFace + ", 65, 64, 4)",
       .depths = kFourUp,
       .failureSetsResult = false,
       .freesOldResult = false},
      {.name = "Trim",
       .toNew = 59,
       .inPlace = 58,
       .call = [](F form, int n, W) { return form(n, 20, 110, 128); },
       .number = 10,
       .moduleCall = "L_TrimBitmap" + kFace + ", 10, 20, 100, 108)",
       .depths = kAny,
       .watched = false},
  };
  for (Pair& pair : pairs) {
    pair.needs = pair.moduleCall.substr(0, pair.moduleCall.find('('));
    if (pair.name != "ConvertToColorRes") pair.needs += " L_SetStatusCallBack";
  }
  pairs[0].bindingsFirst = true;
  pairs[1].refusedDepthSetsResult = true;
  pairs[2].accepted = {-36001, 36001};
  pairs[2].refused = {};
  return pairs;
}

}  // namespace

const std::vector<Pair>& ModulePairs() {
  static const std::vector<Pair> pairs = MakeModulePairs();
  return pairs;
}

const std::vector<Pair>& OwnPairs() {
  static const auto adjust = [](F form, int n, W) { return form(static_cast<std::uint8_t>(n)); };
  static const auto adjustment = [](const char* name, std::size_t place) {
    return Pair{.name = name,
                .toNew = place,
                .inPlace = place + 1,
                .call = adjust,
                .number = 10,
                .refused = {11, 255},
                .depths = {8, 16, 24, 32}};
  };
  static const std::vector<Pair> pairs = {
      adjustment("SharpnessAdjust", 3),
      adjustment("HistogramAdjust", 5),
      adjustment("ExposureAdjust", 7),
      {.name = "ConvertRGB",
       .toNew = 1,
       .inPlace = 2,
       .call = [](F form, int, W) { return form(SEPIA_CONVERTER); },
       .depths = kOneUp,
       .noSourceKeepsResult = true},
      {.name = "ReduceRedEye",
       .toNew = 10,
       .inPlace = 11,
       .call =
           [](F form, int n, W) { return form(kEyeX, kEyeY, static_cast<std::uint32_t>(n)); },
       .number = kEyeRadius,
       .depths = {16, 24, 32},
       .noSourceKeepsResult = true},
      {.name = "AutoRedEye",
       .toNew = 13,
       .inPlace = 12,
       .call =
           [](F form, int n, W) {
             static int found;
             found = n;
             const int code = form(&found);
             EXPECT_EQ(found == 1, code == ORVO_OK);
             return code;
           },
       .number = 9,  // stands in the answer before
       .depths = {16, 24, 32},
       .noSourceKeepsResult = true},
      {.name = "WhitenessAdjust",
       .toNew = 14,
       .inPlace = 15,
       .call = [](F form, int n, W) { return form(static_cast<std::uint32_t>(n)); },
       .number = 100,
       .refused = {256, -1},
       .depths = {8, 24}},
      {.name = "Descreen",
       .toNew = 16,
       .inPlace = 17,
       .call = [](F form, int n, W w) { return form(static_cast<std::uint32_t>(n), 0U, w); },
       .number = 1,
       .refused = {4, -1},
       .depths = {8, 24}},
  };
  return pairs;
}

}  // namespace table
