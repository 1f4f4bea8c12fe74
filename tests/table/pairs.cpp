#include "pairs.h"

namespace table {

namespace {

using F = const Form&;
using W = StatusCallback;
using Numbers = std::vector<int>;

const Numbers kFourUp = {4, 8, 16, 24, 32};
const Numbers kOneUp = {1, 4, 8, 16, 24, 32};
const Numbers kAny = {1, 2, 4, 8, 16, 24, 32};
const Numbers kFramed = {8, 16, 24, 32};
const Numbers kColors = {16, 24, 32};
const Numbers kNoDepth = {-8, 0, 2, 3, 15, 25, 31, 33, 64};
constexpr const char* kColorRes = ", 131x129x24, 4, 65537, 0, 0, 0, 0, 0)";
constexpr const char* kRotate = ", 3000, 1, 16777215)";

constexpr auto kNumber = [](F form, int n, W w) { return form(n, w); };
constexpr auto kNone = [](F form, int, W w) { return form(w); };
constexpr auto kLevel = [](F form, int n, W) { return form(static_cast<std::uint8_t>(n)); };
constexpr auto kGamma = [](F form, int n, W w) { return form(static_cast<unsigned>(n), w); };
constexpr auto kUnsigned = [](F form, int n, W) { return form(static_cast<unsigned>(n)); };
constexpr auto kBits = [](F form, int n, W) { return form(n); };
constexpr auto kSize = [](F form, int n, W w) { return form(n, 20, 2U, w); };
constexpr auto kDots = [](F form, int n, W w) { return form(n, 100, w); };
constexpr auto kTrim = [](F form, int n, W) { return form(n, 20, 110, 128); };
constexpr auto kConvert = [](F form, int, W) { return form(SEPIA_CONVERTER); };
constexpr auto kDescreen = [](F form, int n, W w) { return form(static_cast<unsigned>(n), 0U, w); };
constexpr auto kReduce = [](F form, int n, W) {
  return form(kEyeX, kEyeY, static_cast<std::uint32_t>(n));
};

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

// An adjustment by -1000..1000, or by any number.
Pair Change(const char* name, std::size_t place, const char* entry, int most = 1000) {
  const Numbers refused = most > 1000 ? Numbers{} : Numbers{-most - 1, most + 1};
  return {name, place, place + 1, kNumber, 250, {-most, most}, refused, kFourUp, entry, ", 250)"};
}

}  // namespace

const std::vector<Pair>& ModulePairs() {
  static const std::vector<Pair> pairs = {
      Change("Contrast", 21, "L_ChangeBitmapContrast"),
      Change("Intensity", 31, "L_ChangeBitmapIntensity"),
      Change("Hue", 29, "L_ChangeBitmapHue", 36001),
      Change("Saturation", 37, "L_ChangeBitmapSaturation"),
      Change("Sharpen", 40, "L_SharpenBitmap"),
      {"Gamma", 27, 28, kGamma, 220, {1, 9}, {0}, kFourUp, "L_GammaCorrectBitmap", ", 220)"},
      {"Invert", 33, 34, kNone, 0, {}, {}, kFourUp, "L_InvertBitmap", ")"},
      {"Remap", 49, 50, Remap, 3, {}, {}, kFourUp, "L_RemapBitmapIntensity", ", *, 256, 3)"},
      {"Gray", 25, 26, kNone, 0, {}, {}, kOneUp, "L_GrayScaleBitmap", ", 8)"},
      {"Bits", 23, 24, kBits, 4, kOneUp, kNoDepth, kFourUp, "L_ColorResBitmap", kColorRes},
      {"Rotate", 35, 36, kNumber, 30, {-90, 0, 725}, {}, kOneUp, "L_RotateBitmap", kRotate},
      {"Size", 46, 47, kSize, 30, {}, {}, kAny, "L_SizeBitmap", ", 30, 20, 2)"},
      {"Resolution", 19, 20, kDots, 150, {}, {}, kFourUp, "L_SizeBitmap", ", 65, 64, 4)"},
      {"Trim", 59, 58, kTrim, 10, {}, {}, kAny, "L_TrimBitmap", ", 10, 20, 100, 108)"}};
  return pairs;
}

const std::vector<Pair>& OwnPairs() {
  static const std::vector<Pair> pairs = {
      {"Sharpness", 3, 4, kLevel, 10, {}, {11, 255}, kFramed},
      {"Histogram", 5, 6, kLevel, 10, {}, {11, 255}, kFramed},
      {"Exposure", 7, 8, kLevel, 10, {}, {11, 255}, kFramed},
      {"Convert", 1, 2, kConvert, 0, {}, {}, kOneUp},
      {"Reduce", 10, 11, kReduce, kEyeRadius, {}, {}, kColors},
      {"Auto", 13, 12, AutoRedEye, 9, {}, {}, kColors},
      {"Whiteness", 14, 15, kUnsigned, 100, {}, {256, -1}, {8, 24}},
      {"Descreen", 16, 17, kDescreen, 1, {}, {4, -1}, {8, 24}}};
  return pairs;
}

}  // namespace table
