// The module's entry points: arguments are tested first, then the bitmap.
#include "common/guard.h"
#include "ltimg13n/hue_saturation.h"
#include "ltimg13n/point_operation.h"
#include "ltimg13n/sharpen.h"
#include "ltimg13n/tone_tables.h"

namespace {

using modules::Guarded;

constexpr int kMostChange = 1000;
constexpr unsigned kTones = 256;
constexpr int kChannels = 3;

// Runs work when the arguments can be used.
template <class Work>
int GuardedIf(bool argumentsServe, const Work& work) noexcept {
  return argumentsServe ? Guarded(work) : kModuleBadParameter;
}

bool InRange(int change) {
  return change >= -kMostChange && change <= kMostChange;
}

}  // namespace

int L_ChangeBitmapContrast(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change),
                   [=] { return modules::ChangeTones(bitmap, modules::ContrastTables(change)); });
}

int L_ChangeBitmapHue(struct_LEAD_Bitmap* bitmap, int change) {
  return Guarded([=] { return modules::ChangeColors(bitmap, modules::HueTurn(change)); });
}

int L_ChangeBitmapIntensity(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change),
                   [=] { return modules::ChangeTones(bitmap, modules::IntensityTables(change)); });
}

int L_ChangeBitmapSaturation(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change),
                   [=] { return modules::ChangeColors(bitmap, modules::SaturationScale(change)); });
}

int L_SharpenBitmap(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change), [=] { return modules::Sharpen(bitmap, change); });
}

int L_GammaCorrectBitmap(struct_LEAD_Bitmap* bitmap, unsigned gamma) {
  return GuardedIf(gamma != 0,
                   [=] { return modules::ChangeTones(bitmap, modules::GammaTables(gamma)); });
}

int L_InvertBitmap(struct_LEAD_Bitmap* bitmap) {
  return Guarded([=] { return modules::ChangeTones(bitmap, modules::NegativeTables()); });
}

int L_RemapBitmapIntensity(struct_LEAD_Bitmap* bitmap, const unsigned* table, unsigned length,
                           int channel) {
  const bool argumentsServe =
      table != nullptr && length == kTones && channel >= 0 && channel <= kChannels;
  return GuardedIf(argumentsServe, [=] {
    return modules::ChangeTones(bitmap, modules::RemapTables(table, channel));
  });
}
