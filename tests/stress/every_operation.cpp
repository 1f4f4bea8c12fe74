#include "every_operation.h"

#include <tuple>
#include <type_traits>

namespace stress {
namespace {

// What stands for an argument of each type. Numbers follow one another, and so do what was counted.
class Arguments {
 public:
  explicit Arguments(const Call& call) : call_(call) {}

  template <class Argument>
  Argument next() {
    if constexpr (std::is_same_v<Argument, StatusCallback>) {
      return call_.watch;
    } else if constexpr (std::is_same_v<Argument, const std::uint32_t*>) {
      return Negative();
    } else if constexpr (std::is_pointer_v<Argument>) {
      return reinterpret_cast<Argument>(&found_.at(founds_++));  // int* and uint32_t*
    } else {
      return static_cast<Argument>(call_.numbers.at(numbers_++));
    }
  }

 private:
  static const std::uint32_t* Negative() {
    static const std::array<std::uint32_t, 256> tones = [] {
      std::array<std::uint32_t, 256> made{};
      for (std::uint32_t i = 0; i < made.size(); ++i) made[i] = 255 - i;
      return made;
    }();
    return tones.data();
  }

  const Call& call_;
  std::size_t numbers_ = 0, founds_ = 0;
  std::array<std::uint32_t, 3> found_{};
};

// Calls with what stands for the arguments; a tuple keeps them in order.
template <class... More>
int With(const Call& c, const auto& call) {
  Arguments arguments(c);
  const std::tuple<More...> more{arguments.next<More>()...};
  return std::apply(call, more);
}
template <class... More>
int On(const Call& c, int (COrvoInstance::*method)(DibHandle, DibHandle*, More...) noexcept) {
  return With<More...>(c, [&](More... m) { return (c.toolkit.*method)(*c.image, c.result, m...); });
}
template <class... More>
int On(const Call& c, int (COrvoInstance::*method)(DibHandle, More...) noexcept) {
  return With<More...>(c, [&](More... m) { return (c.toolkit.*method)(*c.image, m...); });
}
template <class... More>
int On(const Call& c, int (COrvoInstance::*method)(DibHandle*, More...) noexcept) {
  return With<More...>(c, [&](More... m) { return (c.toolkit.*method)(c.image, m...); });
}
template <auto kMethod>
int Plain(const Call& c) {
  return On(c, kMethod);
}

int Destroy(const Call&) {
  COrvoInstance* const other = CreateORVOInstance();
  DestroyORVOInstance(other);
  return other == nullptr ? ORVO_ERR_NO_MEMORY : ORVO_OK;
}
int GetVersion(const Call& c) {
  LTVERSIONINFO module{};
  module.size = sizeof module;
  ORVOVERSIONINFO version{"", &module};
  return c.toolkit.GetVersion(&version);
}
int GetAutoTrimRect(const Call& c) {
  RECT kept{};
  return c.toolkit.GetAutoTrimRect(*c.image, static_cast<std::uint8_t>(c.numbers[0]), &kept);
}
int FindRegions(const Call& c) {
  RegionRecord* list = nullptr;
  int count = 0;
  const int code = c.toolkit.FindRegions(*c.image, &list, &count, c.numbers[0], c.numbers[1]);
  const bool agree = (list != nullptr) == (count > 0);
  if (list != nullptr) GlobalFree(list);
  return agree ? code : -1;
}
int GetFileExtensions(const Call& c) {
  std::array<char, 512> names{};
  std::uint32_t bytes = 0;
  c.toolkit.GetFileExtensions(nullptr, nullptr, &bytes);
  if (bytes > names.size()) return ORVO_ERR_BUFFER_TOO_SMALL;
  return c.toolkit.GetFileExtensions(nullptr, names.data(), &bytes);
}
int ImageFileInfo(const Call& c) {
  ORVOIMAGEFILEINFO info{};
  return c.toolkit.ImageFileInfo(c.source.c_str(), &info);
}

using T = COrvoInstance;

constexpr Number kLevel{3, 0, 10}, kChange{250, -1000, 1000}, kHue{9000, -36000, 36000};
constexpr Number kGamma{220, 1, 500}, kBits{8, 1, 32}, kAngle{30, -360, 360}, kTone{128, 0, 255};
constexpr Number kDots{150, 1, 400}, kSide{40, 1, 300}, kFilter{2, 0, 4}, kPlace{20, 0, 150};
constexpr Number kChannel{0, 0, 3}, kWindow{1, 0, 3}, kAmount{50, 0, 100}, kRadius{9, 0, 60};
constexpr Number kReach{10, 0, 100}, kMode{1, 0, 9}, kFlag{0, 0, 1}, kQuality{80, 0, 100};

constexpr Form kToNew = Form::kToNew, kInPlace = Form::kInPlace;

const Operation kOperations[] = {
    {"Destroy", Form::kFile, false, {}, Destroy},
    {"ConvertRGB",
     kToNew,
     false,
     {},
     [](const Call& c) { return c.toolkit.ConvertRGB(*c.image, c.result, c.converter); }},
    {"ConvertRGBInPlace",
     kInPlace,
     false,
     {},
     [](const Call& c) { return c.toolkit.ConvertRGBInPlace(*c.image, c.converter); }},
    {"SharpnessAdjust", kToNew, false, {kLevel}, Plain<&T::SharpnessAdjust>},
    {"SharpnessAdjustInPlace", kInPlace, false, {kLevel}, Plain<&T::SharpnessAdjustInPlace>},
    {"HistogramAdjust", kToNew, false, {kLevel}, Plain<&T::HistogramAdjust>},
    {"HistogramAdjustInPlace", kInPlace, false, {kLevel}, Plain<&T::HistogramAdjustInPlace>},
    {"ExposureAdjust", kToNew, false, {kLevel}, Plain<&T::ExposureAdjust>},
    {"ExposureAdjustInPlace", kInPlace, false, {kLevel}, Plain<&T::ExposureAdjustInPlace>},
    {"SearchRedEyeRegion", Form::kMeasure, false, {kPlace, kPlace}, Plain<&T::SearchRedEyeRegion>},
    {"ReduceRedEye", kToNew, false, {kPlace, kPlace, kRadius}, Plain<&T::ReduceRedEye>},
    {"ReduceRedEyeInPlace",
     kInPlace,
     false,
     {kPlace, kPlace, kRadius},
     Plain<&T::ReduceRedEyeInPlace>},
    {"AutoRedEyeInPlace", kInPlace, false, {}, Plain<&T::AutoRedEyeInPlace>},
    {"AutoRedEye", kToNew, false, {}, Plain<&T::AutoRedEye>},
    {"WhitenessAdjust", kToNew, false, {kTone}, Plain<&T::WhitenessAdjust>},
    {"WhitenessAdjustInPlace", kInPlace, false, {kTone}, Plain<&T::WhitenessAdjustInPlace>},
    {"Descreen", kToNew, false, {kWindow, kAmount}, Plain<&T::Descreen>},
    {"DescreenInPlace", kInPlace, false, {kWindow, kAmount}, Plain<&T::DescreenInPlace>},
    {"GetVersion", Form::kFile, false, {}, GetVersion},
    {"ChangeResolution", kToNew, false, {kDots, kDots}, Plain<&T::ChangeResolution>},
    {"ChangeResolutionInPlace", kInPlace, true, {kDots, kDots}, Plain<&T::ChangeResolutionInPlace>},
    {"ContrastAdjust", kToNew, false, {kChange}, Plain<&T::ContrastAdjust>},
    {"ContrastAdjustInPlace", kInPlace, true, {kChange}, Plain<&T::ContrastAdjustInPlace>},
    {"ConvertToColorRes", kToNew, false, {kBits}, Plain<&T::ConvertToColorRes>},
    {"ConvertToColorResInPlace", kInPlace, true, {kBits}, Plain<&T::ConvertToColorResInPlace>},
    {"ConvertToGrayScaleRes", kToNew, false, {}, Plain<&T::ConvertToGrayScaleRes>},
    {"ConvertToGrayScaleResInPlace", kInPlace, true, {}, Plain<&T::ConvertToGrayScaleResInPlace>},
    {"GammaAdjust", kToNew, false, {kGamma}, Plain<&T::GammaAdjust>},
    {"GammaAdjustInPlace", kInPlace, true, {kGamma}, Plain<&T::GammaAdjustInPlace>},
    {"HueAdjust", kToNew, false, {kHue}, Plain<&T::HueAdjust>},
    {"HueAdjustInPlace", kInPlace, true, {kHue}, Plain<&T::HueAdjustInPlace>},
    {"IntensityAdjust", kToNew, false, {kChange}, Plain<&T::IntensityAdjust>},
    {"IntensityAdjustInPlace", kInPlace, true, {kChange}, Plain<&T::IntensityAdjustInPlace>},
    {"Invert", kToNew, false, {}, Plain<&T::Invert>},
    {"InvertInPlace", kInPlace, true, {}, Plain<&T::InvertInPlace>},
    {"Rotate", kToNew, false, {kAngle}, Plain<&T::Rotate>},
    {"RotateInPlace", kInPlace, true, {kAngle}, Plain<&T::RotateInPlace>},
    {"SaturationAdjust", kToNew, false, {kChange}, Plain<&T::SaturationAdjust>},
    {"SaturationAdjustInPlace", kInPlace, true, {kChange}, Plain<&T::SaturationAdjustInPlace>},
    {"SetDitheringMode",
     Form::kFile,
     false,
     {kMode},
     [](const Call& c) { return c.toolkit.SetDitheringMode(c.numbers[0]); }},
    {"LeadSharpnessAdjust", kToNew, false, {kChange}, Plain<&T::LeadSharpnessAdjust>},
    {"LeadSharpnessAdjustInPlace",
     kInPlace,
     true,
     {kChange},
     Plain<&T::LeadSharpnessAdjustInPlace>},
    {"AutoTrim", kToNew, false, {kTone}, Plain<&T::AutoTrim>},
    {"AutoTrimInPlace", kInPlace, true, {kTone}, Plain<&T::AutoTrimInPlace>},
    {"GetAutoTrimRect", Form::kMeasure, false, {kTone}, GetAutoTrimRect},
    {"LoadFile",
     Form::kFile,
     false,
     {},
     [](const Call& c) { return c.toolkit.LoadFile(c.source.c_str(), c.result); }},
    {"ChangeSize", kToNew, false, {kSide, kSide, kFilter}, Plain<&T::ChangeSize>},
    {"ChangeSizeInPlace", kInPlace, true, {kSide, kSide, kFilter}, Plain<&T::ChangeSizeInPlace>},
    {"CreateThumbnailFromFile",
     Form::kFile,
     false,
     {kSide, kSide},
     [](const Call& c) {
       return c.toolkit.CreateThumbnailFromFile(c.source.c_str(), c.result, c.numbers[0],
                                                c.numbers[1]);
     }},
    {"RemapIntensity", kToNew, false, {kChannel}, Plain<&T::RemapIntensity>},
    {"RemapIntensityInPlace", kInPlace, true, {kChannel}, Plain<&T::RemapIntensityInPlace>},
    {"IsImageFileName",
     Form::kFile,
     false,
     {},
     [](const Call& c) { return c.toolkit.IsImageFileName(c.source.c_str()) - 1; }},
    {"SaveFile",
     Form::kMeasure,
     false,
     {kFlag, kQuality},
     [](const Call& c) {
       return c.toolkit.SaveFile(*c.image, c.target.c_str(), c.numbers[0], c.numbers[1]);
     }},
    {"GetFileExtensions", Form::kFile, false, {}, GetFileExtensions},
    {"FindRegions", Form::kMeasure, false, {kReach, kTone}, FindRegions},
    {"AutoDeskew", kToNew, false, {}, Plain<&T::AutoDeskew>},
    {"ImageFileInfo", Form::kFile, false, {}, ImageFileInfo},
    {"ConvertFile",
     Form::kFile,
     false,
     {kQuality},
     [](const Call& c) {
       return c.toolkit.ConvertFile(c.source.c_str(), c.target.c_str(), c.numbers[0], c.watch);
     }},
    {"TrimInPlace", kInPlace, true, {kPlace, kPlace, kSide, kSide}, Plain<&T::TrimInPlace>},
    {"Trim", kToNew, false, {kPlace, kPlace, kSide, kSide}, Plain<&T::Trim>}};
static_assert(std::size(kOperations) == 60);

}  // namespace

std::span<const Operation> EveryOperation() {
  return kOperations;
}

}  // namespace stress
