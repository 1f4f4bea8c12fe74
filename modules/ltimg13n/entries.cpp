// The module's entry points: arguments are tested first, then the bitmap.
#include "common/guard.h"
#include "ltimg13n/hue_saturation.h"
#include "ltimg13n/point_operation.h"
#include "ltimg13n/sharpen.h"
#include "ltimg13n/tone_tables.h"

namespace {

using provider::Guarded;

constexpr int kMostChange = 1000;
constexpr unsigned kTones = 256;
constexpr int kChannels = 3;

// Runs work when the arguments can be used.
template <class Work>
int GuardedIf(bool argumentsServe, const Work& work) noexcept {
  return argumentsServe ? Guarded(work) : kVendorBadParameter;
}

bool InRange(int change) {
  return change >= -kMostChange && change <= kMostChange;
}

}  // namespace

int L_ChangeBitmapContrast(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change),
                   [=] { return provider::ChangeTones(bitmap, provider::ContrastTables(change)); });
}

int L_ChangeBitmapHue(struct_LEAD_Bitmap* bitmap, int change) {
  return Guarded([=] { return provider::ChangeColors(bitmap, provider::HueTurn(change)); });
}

int L_ChangeBitmapIntensity(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change), [=] {
    return provider::ChangeTones(bitmap, provider::IntensityTables(change));
  });
}

int L_ChangeBitmapSaturation(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change), [=] {
    return provider::ChangeColors(bitmap, provider::SaturationScale(change));
  });
}

int L_SharpenBitmap(struct_LEAD_Bitmap* bitmap, int change) {
  return GuardedIf(InRange(change), [=] { return provider::Sharpen(bitmap, change); });
}

int L_GammaCorrectBitmap(struct_LEAD_Bitmap* bitmap, unsigned gamma) {
  return GuardedIf(gamma != 0,
                   [=] { return provider::ChangeTones(bitmap, provider::GammaTables(gamma)); });
}

int L_InvertBitmap(struct_LEAD_Bitmap* bitmap) {
  return Guarded([=] { return provider::ChangeTones(bitmap, provider::NegativeTables()); });
}

int L_RemapBitmapIntensity(struct_LEAD_Bitmap* bitmap, const unsigned* table, unsigned length,
                           int channel) {
  const bool argumentsServe =
      table != nullptr && length == kTones && channel >= 0 && channel <= kChannels;
  return GuardedIf(argumentsServe, [=] {
    return provider::ChangeTones(bitmap, provider::RemapTables(table, channel));
  });
}
