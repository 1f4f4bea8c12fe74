#include "pairs.h"

namespace table {

namespace {

using F = const Form&;
using W = StatusCallback;

const std::vector<int> kFourUp = {4, 8, 16, 24, 32};
const std::vector<int> kOneUp = {1, 4, 8, 16, 24, 32};
const std::vector<int> kAny = {1, 2, 4, 8, 16, 24, 32};
constexpr auto kNumber = [](F form, int n, W watch) { return form(n, watch); };
constexpr auto kNone = [](F form, int, W watch) { return form(watch); };
constexpr auto kLevel = [](F form, int n, W) { return form(static_cast<std::uint8_t>(n)); };

// An adjustment by -1000..1000, or any number.
Pair Change(const char* name, std::size_t place, const char* entry, bool anyNumber = false) {
  const int most = anyNumber ? 36001 : 1000;
  const std::vector<int> refused = anyNumber ? std::vector<int>{} : std::vector<int>{-1001, 1001};
  return {name, place, place + 1, kNumber, 250, {-most, most}, refused, kFourUp, entry, ", 250)"};
}

int Remap(F form, int channel, W watch) {
  static std::uint32_t negative[256];
  for (unsigned i = 0; i < 256; ++i) negative[i] = 255 - i;
  return form(static_cast<const std::uint32_t*>(negative), channel, watch);
}

int AutoRedEye(F form, int before, W /*watch*/) {
  static int found;
  found = before;
  const int code = form(&found);
  EXPECT_EQ(found == 1, code == ORVO_OK);
  return code;
}

}  // namespace

const std::vector<Pair>& ModulePairs() {
  static const std::vector<Pair> pairs = {
      Change("ContrastAdjust", 21, "L_ChangeBitmapContrast"),
      Change("IntensityAdjust", 31, "L_ChangeBitmapIntensity"),
      Change("HueAdjust", 29, "L_ChangeBitmapHue", true),
      Change("SaturationAdjust", 37, "L_ChangeBitmapSaturation"),
      Change("LeadSharpnessAdjust", 40, "L_SharpenBitmap"),
      {"GammaAdjust",
       27,
       28,
       [](F f, int n, W w) { return f(static_cast<unsigned>(n), w); },
       220,
       {1, 2000},
       {0},
       kFourUp,
       "L_GammaCorrectBitmap",
       ", 220)"},
      {"Invert", 33, 34, kNone, 0, {}, {}, kFourUp, "L_InvertBitmap", ")"},
      {"RemapIntensity",
       49,
       50,
       Remap,
       3,
       {},
       {},
       kFourUp,
       "L_RemapBitmapIntensity",
       ", *, 256, 3)"},
      {"ConvertToGrayScaleRes", 25, 26, kNone, 0, {}, {}, kOneUp, "L_GrayScaleBitmap", ", 8)"},
      {"ConvertToColorRes",
       23,
       24,
       [](F f, int n, W) { return f(n); },
       4,
       {1, 4, 8, 16, 24, 32},
       {-8, 0, 2, 3, 15, 25, 31, 33, 64},
       kFourUp,
       "L_ColorResBitmap",
       ", 131x129x24, 4, 65537, 0, 0, 0, 0, 0)"},
      {"Rotate",
       35,
       36,
       kNumber,
       30,
       {-90, 0, 725},
       {},
       kOneUp,
       "L_RotateBitmap",
       ", 3000, 1, 16777215)"},
      {"ChangeSize",
       46,
       47,
       [](F f, int n, W w) { return f(n, 20, 2U, w); },
       30,
       {},
       {},
       kAny,
       "L_SizeBitmap",
       ", 30, 20, 2)"},
      {"ChangeResolution",
       19,
       20,
       [](F f, int n, W w) { return f(n, 100, w); },
       150,
       {},
       {},
       kFourUp,
       "L_SizeBitmap",
       ", 65, 64, 4)"},
      {"Trim",
       59,
       58,
       [](F f, int n, W) { return f(n, 20, 110, 128); },
       10,
       {},
       {},
       kAny,
       "L_TrimBitmap",
       ", 10, 20, 100, 108)"}};
  return pairs;
}

const std::vector<Pair>& OwnPairs() {
  static const std::vector<int> framed = {8, 16, 24, 32};
  static const std::vector<int> colors = {16, 24, 32};
  static const auto unsignedNumber = [](F f, int n, W) { return f(static_cast<unsigned>(n)); };
  static const std::vector<Pair> pairs = {
      {"SharpnessAdjust", 3, 4, kLevel, 10, {}, {11, 255}, framed},
      {"HistogramAdjust", 5, 6, kLevel, 10, {}, {11, 255}, framed},
      {"ExposureAdjust", 7, 8, kLevel, 10, {}, {11, 255}, framed},
      {"ConvertRGB", 1, 2, [](F f, int, W) { return f(SEPIA_CONVERTER); }, 0, {}, {}, kOneUp},
      {"ReduceRedEye",
       10,
       11,
       [](F f, int n, W) { return f(kEyeX, kEyeY, static_cast<std::uint32_t>(n)); },
       kEyeRadius,
       {},
       {},
       colors},
      {"AutoRedEye", 13, 12, AutoRedEye, 9, {}, {}, colors},
      {"WhitenessAdjust", 14, 15, unsignedNumber, 100, {}, {256, -1}, {8, 24}},
      {"Descreen",
       16,
       17,
       [](F f, int n, W w) { return f(static_cast<std::uint32_t>(n), 0U, w); },
       1,
       {},
       {4, -1},
       {8, 24}}};
  return pairs;
}

}  // namespace table
