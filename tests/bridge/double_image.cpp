// Double of ltimg13n.dll.
#include "double_log.h"

using doubles::Called;
using doubles::Operate;

int L_ChangeBitmapContrast(struct_LEAD_Bitmap* bitmap, int change) {
  return Operate(Called("L_ChangeBitmapContrast", bitmap, change), bitmap);
}

int L_ChangeBitmapHue(struct_LEAD_Bitmap* bitmap, int change) {
  return Operate(Called("L_ChangeBitmapHue", bitmap, change), bitmap);
}

int L_ChangeBitmapIntensity(struct_LEAD_Bitmap* bitmap, int change) {
  return Operate(Called("L_ChangeBitmapIntensity", bitmap, change), bitmap);
}

int L_ChangeBitmapSaturation(struct_LEAD_Bitmap* bitmap, int change) {
  return Operate(Called("L_ChangeBitmapSaturation", bitmap, change), bitmap);
}

int L_SharpenBitmap(struct_LEAD_Bitmap* bitmap, int change) {
  return Operate(Called("L_SharpenBitmap", bitmap, change), bitmap);
}

int L_GammaCorrectBitmap(struct_LEAD_Bitmap* bitmap, unsigned gamma) {
  return Operate(Called("L_GammaCorrectBitmap", bitmap, gamma), bitmap);
}

int L_InvertBitmap(struct_LEAD_Bitmap* bitmap) {
  return Operate(Called("L_InvertBitmap", bitmap), bitmap);
}

int L_RemapBitmapIntensity(struct_LEAD_Bitmap* bitmap, const unsigned* table, unsigned length,
                           int channel) {
  return Operate(
      Called("L_RemapBitmapIntensity", bitmap, static_cast<const void*>(table), length, channel),
      bitmap);
}
