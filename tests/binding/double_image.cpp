// Double of ltimg13n.dll.
#include "double_log.h"

using doubles::Called;
using doubles::Operate;

#define ORVO_DOUBLE_OF(function, number)                       \
  int function(struct_LEAD_Bitmap* bitmap, number change) {    \
    return Operate(Called(#function, bitmap, change), bitmap); \
  }
ORVO_DOUBLE_OF(L_ChangeBitmapContrast, int)
ORVO_DOUBLE_OF(L_ChangeBitmapHue, int)
ORVO_DOUBLE_OF(L_ChangeBitmapIntensity, int)
ORVO_DOUBLE_OF(L_ChangeBitmapSaturation, int)
ORVO_DOUBLE_OF(L_SharpenBitmap, int)
ORVO_DOUBLE_OF(L_GammaCorrectBitmap, unsigned)
#undef ORVO_DOUBLE_OF

int L_InvertBitmap(struct_LEAD_Bitmap* bitmap) {
  return Operate(Called("L_InvertBitmap", bitmap), bitmap);
}

int L_RemapBitmapIntensity(struct_LEAD_Bitmap* bitmap, const unsigned* table, unsigned length,
                           int channel) {
  return Operate(
      Called("L_RemapBitmapIntensity", bitmap, static_cast<const void*>(table), length, channel),
      bitmap);
}
