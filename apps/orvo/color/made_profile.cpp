#include "made_profile.h"

#include <array>

#include "color_library.h"

namespace client {
namespace {

constexpr cmsCIExyY kDaylight{0.3127, 0.3290, 1};

struct Colors {
  const char* name;
  cmsCIExyYTRIPLE primaries;
};
constexpr Colors kOfScreens{"RGB of sRGB's primaries",
                            {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}}};
constexpr Colors kOfAdobe{"compatible with Adobe RGB (1998)",
                          {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}}};
constexpr Colors kOfPhones{"RGB of P3 primaries, D65",
                           {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}};
constexpr Colors kOfLargeScreens{"RGB of BT.2020's primaries",
                                 {{0.708, 0.292, 1}, {0.170, 0.797, 1}, {0.131, 0.046, 1}}};

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

std::vector<std::uint8_t> Profile(const Colors& colors, CurveHandle curve) {
  const ColorLibrary& calls = TheColorLibrary();
  std::array<cmsToneCurve*, 3> curves{curve.get(), curve.get(), curve.get()};
  const ProfileHandle profile(
      calls.cmsCreateRGBProfile(&kDaylight, &colors.primaries, curves.data()));
  cmsUInt32Number bytes = 0;
  if (!profile) return {};
  Name(profile.get(), colors.name);
  if (calls.cmsSaveProfileToMem(profile.get(), nullptr, &bytes) == 0) return {};
  std::vector<std::uint8_t> saved(bytes);
  if (calls.cmsSaveProfileToMem(profile.get(), saved.data(), &bytes) == 0) return {};
  return saved;
}

CurveHandle Power(double gamma) {
  return CurveHandle(TheColorLibrary().cmsBuildGamma(nullptr, gamma));
}

}  // namespace

std::vector<std::uint8_t> AdobeRgbProfile() {
  constexpr double kGamma = 563.0 / 256;
  if (!HasColorLibrary()) return {};
  return Profile(kOfAdobe, Power(kGamma));
}

std::vector<std::uint8_t> ProfileOfCodes(int primaries, int transfer) {
  const Colors* const colors = primaries == kPhones         ? &kOfPhones
                               : primaries == kLargeScreens ? &kOfLargeScreens
                                                            : &kOfScreens;
  const bool hasPower = transfer == kGamma22 || transfer == kLinear;
  const bool isSrgb = colors == &kOfScreens && !hasPower;
  if (isSrgb || transfer == kHdrByPerception || transfer == kHdrByGamma || !HasColorLibrary()) {
    return {};
  }
  // Video's own curves are shown as that of screens.
  constexpr double kGamma = 2.2;
  return Profile(*colors, hasPower ? Power(transfer == kLinear ? 1 : kGamma) : SrgbCurve());
}

}  // namespace client
