#include "made_profile.h"

#include "color_library.h"

namespace client {
namespace {

constexpr Primaries kAdobePrimaries{0.3127, 0.3290, 0.64, 0.33, 0.21, 0.71, 0.15, 0.06};
constexpr Primaries kPhonePrimaries{0.3127, 0.3290, 0.680, 0.320, 0.265, 0.690, 0.150, 0.060};
constexpr Primaries kLargePrimaries{0.3127, 0.3290, 0.708, 0.292, 0.170, 0.797, 0.131, 0.046};

// Code points.
constexpr int kLargeScreens = 9;
constexpr int kPhones = 12;
constexpr int kGamma22 = 4;
constexpr int kLinear = 8;
constexpr int kHdrByPerception = 16;
constexpr int kHdrByGamma = 18;

struct TextEnd {
  void operator()(cmsMLU* text) const { TheColorLibrary().cmsMLUfree(text); }
};

void Name(cmsHPROFILE profile, const char* name) {
  const ColorLibrary& calls = TheColorLibrary();
  const std::unique_ptr<cmsMLU, TextEnd> text(calls.cmsMLUalloc(nullptr, 1));
  (void)calls.cmsMLUsetASCII(text.get(), "en", "US", name);
  (void)calls.cmsWriteTag(profile, cmsSigProfileDescriptionTag, text.get());
}

CurveHandle CurveOf(double gamma) {
  return gamma == 0 ? SrgbCurve() : CurveHandle(TheColorLibrary().cmsBuildGamma(nullptr, gamma));
}

std::vector<std::uint8_t> Made(const Primaries& colors, double gamma, const char* name) {
  if (!HasColorLibrary()) return {};
  const ColorLibrary& calls = TheColorLibrary();
  const cmsCIExyY white{colors[0], colors[1], 1};
  const cmsCIExyYTRIPLE corners{
      {colors[2], colors[3], 1}, {colors[4], colors[5], 1}, {colors[6], colors[7], 1}};
  const CurveHandle curve = CurveOf(gamma);
  std::array<cmsToneCurve*, 3> curves{curve.get(), curve.get(), curve.get()};
  const ProfileHandle profile(calls.cmsCreateRGBProfile(&white, &corners, curves.data()));
  cmsUInt32Number bytes = 0;
  if (!profile) return {};
  Name(profile.get(), name);
  if (calls.cmsSaveProfileToMem(profile.get(), nullptr, &bytes) == 0) return {};
  std::vector<std::uint8_t> saved(bytes);
  if (calls.cmsSaveProfileToMem(profile.get(), saved.data(), &bytes) == 0) return {};
  return saved;
}

}  // namespace

std::vector<std::uint8_t> ProfileOf(const Primaries& primaries, double gamma) {
  return Made(primaries, gamma, "RGB of the file's primaries");
}

std::vector<std::uint8_t> AdobeRgbProfile() {
  constexpr double kGamma = 563.0 / 256;
  return Made(kAdobePrimaries, kGamma, "compatible with Adobe RGB (1998)");
}

std::vector<std::uint8_t> ProfileOfCodes(int primaries, int transfer) {
  // Video's own curves are shown as that of screens.
  const double gamma = transfer == kGamma22 ? 2.2 : transfer == kLinear ? 1 : 0;
  if (transfer == kHdrByPerception || transfer == kHdrByGamma) return {};
  if (primaries == kPhones) return Made(kPhonePrimaries, gamma, "RGB of P3 primaries, D65");
  if (primaries == kLargeScreens) return Made(kLargePrimaries, gamma, "RGB of BT.2020 primaries");
  return gamma == 0 ? std::vector<std::uint8_t>() : ProfileOf(kScreenPrimaries, gamma);
}

}  // namespace client
