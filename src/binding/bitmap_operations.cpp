// The image methods: each is the bitmap cycle round one module call.
#include "binding/bitmap_cycle.h"

using namespace orvo;

namespace {

constexpr int kMostChange = 1000;
constexpr unsigned kTones = 256;
constexpr int kGrayBits = 8;
constexpr int kHundredths = 100;  // of a degree

bool ChangeIsInRange(int change) {
  return change >= -kMostChange && change <= kMostChange;
}

// Numbers come from callers as they are: a product or difference that overflows wraps.
int WrappingProduct(int a, int b) {
  return static_cast<int>(static_cast<unsigned>(a) * static_cast<unsigned>(b));
}
int WrappingDifference(int a, int b) {
  return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

// An adjustment whose module function takes the bitmap and one number.
template <Entry entry, class Number>
int RunAdjustment(const CLeadTools& tools, const CycleRules& rules, DibHandle& source,
                  DibHandle* result, Number number, StatusCallback callback) {
  return RunCycle(tools, rules, source, result, callback,
                  [&](const Modules& modules, struct_LEAD_Bitmap* bitmap) {
                    return modules.call<entry>()(bitmap, number);
                  });
}

}  // namespace

int CLeadTools::LTContrastAdjust(DibHandle& source, DibHandle* result, int change,
                                 StatusCallback callback) noexcept {
  return RunAdjustment<Entry::L_ChangeBitmapContrast>(*this,
                                                      {.own = Entry::L_ChangeBitmapContrast,
                                                       .inRange = ChangeIsInRange(change),
                                                       .bindingsFirst = true},
                                                      source, result, change, callback);
}

int CLeadTools::LTIntensityAdjust(DibHandle& source, DibHandle* result, int change,
                                  StatusCallback callback) noexcept {
  return RunAdjustment<Entry::L_ChangeBitmapIntensity>(*this,
                                                       {.own = Entry::L_ChangeBitmapIntensity,
                                                        .inRange = ChangeIsInRange(change),
                                                        .refusedDepthSetsResult = true},
                                                       source, result, change, callback);
}

int CLeadTools::LTSaturationAdjust(DibHandle& source, DibHandle* result, int change,
                                   StatusCallback callback) noexcept {
  return RunAdjustment<Entry::L_ChangeBitmapSaturation>(
      *this, {.own = Entry::L_ChangeBitmapSaturation, .inRange = ChangeIsInRange(change)}, source,
      result, change, callback);
}

int CLeadTools::LTSharpnessAdjust(DibHandle& source, DibHandle* result, int change,
                                  StatusCallback callback) noexcept {
  return RunAdjustment<Entry::L_SharpenBitmap>(
      *this, {.own = Entry::L_SharpenBitmap, .inRange = ChangeIsInRange(change)}, source, result,
      change, callback);
}

int CLeadTools::LTHueAdjust(DibHandle& source, DibHandle* result, int change,
                            StatusCallback callback) noexcept {
  return RunAdjustment<Entry::L_ChangeBitmapHue>(*this, {.own = Entry::L_ChangeBitmapHue}, source,
                                                 result, change, callback);
}

int CLeadTools::LTGammaAdjust(DibHandle& source, DibHandle* result, unsigned gamma,
                              StatusCallback callback) noexcept {
  return RunAdjustment<Entry::L_GammaCorrectBitmap>(
      *this, {.own = Entry::L_GammaCorrectBitmap, .inRange = gamma != 0}, source, result, gamma,
      callback);
}

int CLeadTools::LTInvert(DibHandle& source, DibHandle* result, StatusCallback callback) noexcept {
  return RunCycle(*this, {.own = Entry::L_InvertBitmap}, source, result, callback,
                  [](const Modules& modules, struct_LEAD_Bitmap* bitmap) {
                    return modules.call<Entry::L_InvertBitmap>()(bitmap);
                  });
}

int CLeadTools::LTRemapIntensity(DibHandle& source, DibHandle* result, const std::uint32_t* table,
                                 int channel, StatusCallback callback) noexcept {
  return RunCycle(*this, {.own = Entry::L_RemapBitmapIntensity}, source, result, callback,
                  [&](const Modules& modules, struct_LEAD_Bitmap* bitmap) {
                    return modules.call<Entry::L_RemapBitmapIntensity>()(bitmap, table, kTones,
                                                                         channel);
                  });
}

int CLeadTools::LTConvertToGrayScaleRes(DibHandle& source, DibHandle* result,
                                        StatusCallback callback) noexcept {
  return RunAdjustment<Entry::L_GrayScaleBitmap>(
      *this, {.own = Entry::L_GrayScaleBitmap, .depths = Depths::kOneUp}, source, result, kGrayBits,
      callback);
}

int CLeadTools::LTConvertToColorRes(DibHandle& source, DibHandle* result, int bits) noexcept {
  constexpr int kDitheringModes = 8;
  const unsigned dithering = ditheringMode >= 1 && ditheringMode <= kDitheringModes
                                 ? static_cast<unsigned>(ditheringMode) << kColorResDitheringShift
                                 : 0U;
  return RunCycle(*this,
                  {.own = Entry::L_ColorResBitmap,
                   .inRange = DepthIsTaken(Depths::kOneUp, bits),
                   .needsCallbackEntry = false},
                  source, result, nullptr, [&](const Modules& modules, struct_LEAD_Bitmap* bitmap) {
                    return modules.call<Entry::L_ColorResBitmap>()(
                        bitmap, bitmap, bits, dithering | kColorResOptimisedPalette, nullptr,
                        nullptr, nullptr, nullptr, nullptr);
                  });
}

int CLeadTools::LTRotate(DibHandle& source, DibHandle* result, int angle, std::uint32_t flags,
                         StatusCallback callback) noexcept {
  BitmapCycle cycle(*this, {.own = Entry::L_RotateBitmap, .depths = Depths::kAny}, source, result);
  if (const int code = cycle.prepare(); code != ORVO_OK) return code;
  cycle.install(callback);
  const int moduleCode = cycle.modules().call<Entry::L_RotateBitmap>()(
      cycle.bitmap(), WrappingProduct(angle, kHundredths), flags, kModuleWhite);
  if (moduleCode != kModuleSuccess) return cycle.fail(MapReturnCodeLT2ORVO(moduleCode));
  // Only a bitmap that never received an image has another depth by now.
  if (!DepthIsTaken(Depths::kOneUp, cycle.bitmap()->bitsPerPixel)) return cycle.refuseDepth();
  cycle.reinstallPrevious();
  return cycle.succeed();
}

int CLeadTools::LTChangeSize(DibHandle& source, DibHandle* result, int width, int height,
                             unsigned flags, StatusCallback callback) noexcept {
  return RunCycle(*this, {.own = Entry::L_SizeBitmap, .depths = Depths::kAny}, source, result,
                  callback, [&](const Modules& modules, struct_LEAD_Bitmap* bitmap) {
                    return modules.call<Entry::L_SizeBitmap>()(bitmap, width, height, flags);
                  });
}

int CLeadTools::LTTrim(DibHandle& source, DibHandle* result, const RECT* rect) noexcept {
  if (rect == nullptr) return ORVO_ERR_BAD_ARGUMENT;
  BitmapCycle cycle(*this, {.own = Entry::L_TrimBitmap, .depths = Depths::kAny}, source, result);
  const Modules& modules = cycle.modules();
  if (source != nullptr && cycle.inPlace() && !modules.has(Entry::L_ChangeToDIB2)) {
    return ORVO_ERR_NO_VENDOR;
  }
  if (const int code = cycle.prepare(); code != ORVO_OK) return code;
  const int moduleCode = modules.call<Entry::L_TrimBitmap>()(
      cycle.bitmap(), rect->left, rect->top, WrappingDifference(rect->right, rect->left),
      WrappingDifference(rect->bottom, rect->top));
  if (moduleCode != kModuleSuccess) return cycle.fail(MapReturnCodeLT2ORVO(moduleCode));
  return cycle.inPlace()
             ? cycle.succeedWith(modules.call<Entry::L_ChangeToDIB2>()(cycle.bitmap(), 0))
             : cycle.succeed();
}

int CLeadTools::LTSetDitheringMode(int mode) noexcept {
  const auto set = Modules(*this).call<Entry::L_DefaultDithering>();
  if (set == nullptr) return ORVO_ERR_NO_VENDOR;
  ditheringMode = mode;
  return MapReturnCodeLT2ORVO(set(static_cast<unsigned>(mode)));
}

int CLeadTools::LTIsGrayScaleBitmap(DibHandle& image) noexcept {
  const Modules modules(*this);
  if (!modules.hasAll({Entry::L_ChangeFromDIB, Entry::L_IsGrayScaleBitmap, Entry::L_ChangeToDIB})) {
    return 0;
  }
  struct_LEAD_Bitmap bitmap{};
  modules.call<Entry::L_ChangeFromDIB>()(&bitmap, image);
  const int gray = modules.call<Entry::L_IsGrayScaleBitmap>()(&bitmap);
  const DibHandle back = modules.call<Entry::L_ChangeToDIB>()(&bitmap);
  if (back != nullptr) image = back;
  return gray != 0 ? 1 : 0;
}
