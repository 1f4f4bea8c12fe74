#include "color_transform.h"

#include <array>
#include <cstdlib>

#include "color_library.h"

namespace client {
namespace {

using Profile = std::span<const std::uint8_t>;

cmsUInt32Number FormatOf(PixelForm form) {
  switch (form) {
    case PixelForm::kTone:
      return TYPE_GRAY_8;
    case PixelForm::kBgr:
      return TYPE_BGR_8;
    case PixelForm::kBgra:
      return TYPE_BGRA_8;
    case PixelForm::kInks:
      return TYPE_CMYK_8;
    case PixelForm::kInksLeft:
      return TYPE_CMYK_8_REV;
  }
  return 0;
}

ProfileHandle Opened(Profile profile) {
  return ProfileHandle(TheColorLibrary().cmsOpenProfileFromMem(
      profile.data(), static_cast<cmsUInt32Number>(profile.size())));
}

bool HasInks(PixelForm form) {
  return form == PixelForm::kInks || form == PixelForm::kInksLeft;
}

// Whether pixels of the form are what the profile explains.
bool Explains(cmsHPROFILE profile, PixelForm form) {
  const cmsColorSpaceSignature colors = TheColorLibrary().cmsGetColorSpace(profile);
  if (form == PixelForm::kTone) return colors == cmsSigGrayData;
  return colors == (HasInks(form) ? cmsSigCmykData : cmsSigRgbData);
}

// The profile of sRGB, or of its tones alone.
ProfileHandle Srgb(PixelForm form) {
  const ColorLibrary& calls = TheColorLibrary();
  if (form != PixelForm::kTone) return ProfileHandle(calls.cmsCreate_sRGBProfile());
  const CurveHandle curve = SrgbCurve();
  return ProfileHandle(calls.cmsCreateGrayProfile(calls.cmsD50_xyY(), curve.get()));
}

// Null when the profile cannot be used.
cmsHTRANSFORM Made(Profile profile, PixelForm form, bool back) {
  if (!HasColorLibrary()) return nullptr;
  const ProfileHandle own = Opened(profile);
  if (!own || !Explains(own.get(), form)) return nullptr;
  const ProfileHandle srgb = Srgb(form);
  const cmsUInt32Number one = FormatOf(form);
  const cmsUInt32Number other = FormatOf(HasInks(form) ? PixelForm::kBgr : form);
  return TheColorLibrary().cmsCreateTransform(
      back ? srgb.get() : own.get(), one, back ? own.get() : srgb.get(), other,
      INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_COPY_ALPHA);
}

// As close as two ways of rounding the same curve come.
bool IsNear(std::uint8_t one, std::uint8_t other) {
  return std::abs(one - other) <= 2;
}

bool KeepsTones(const ColorTransform& transform) {
  for (int tone = 0; tone < 256; ++tone) {
    const auto from = static_cast<std::uint8_t>(tone);
    std::uint8_t to = 0;
    transform.run(&from, &to, 1);
    if (!IsNear(from, to)) return false;
  }
  return true;
}

bool KeepsColors(const ColorTransform& transform) {
  constexpr int kSteps = 6;
  constexpr int kStep = 255 / (kSteps - 1);
  for (int i = 0; i < kSteps * kSteps * kSteps; ++i) {
    const std::array<std::uint8_t, 3> from{
        static_cast<std::uint8_t>(i % kSteps * kStep),
        static_cast<std::uint8_t>(i / kSteps % kSteps * kStep),
        static_cast<std::uint8_t>(i / (kSteps * kSteps) * kStep)};
    std::array<std::uint8_t, 3> to{};
    transform.run(from.data(), to.data(), 1);
    for (std::size_t sample = 0; sample < to.size(); ++sample) {
      if (!IsNear(from.at(sample), to.at(sample))) return false;
    }
  }
  return true;
}

}  // namespace

void ColorTransform::End::operator()(void* transform) const {
  TheColorLibrary().cmsDeleteTransform(transform);
}

ColorTransform ColorTransform::ToSrgb(Profile profile, PixelForm from) {
  return ColorTransform(Made(profile, from, false));
}

ColorTransform ColorTransform::FromSrgb(Profile profile) {
  return ColorTransform(Made(profile, PixelForm::kBgr, true));
}

void ColorTransform::run(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const {
  TheColorLibrary().cmsDoTransform(transform_.get(), from, to,
                                   static_cast<cmsUInt32Number>(pixels));
}

bool SaysSrgb(Profile profile) {
  if (const auto colors = ColorTransform::ToSrgb(profile, PixelForm::kBgr)) {
    return KeepsColors(colors);
  }
  const auto tones = ColorTransform::ToSrgb(profile, PixelForm::kTone);
  return tones && KeepsTones(tones);
}

}  // namespace client
