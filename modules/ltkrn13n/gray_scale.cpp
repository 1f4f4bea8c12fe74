// Gray images: 8 bits with the palette in which each byte is its own tone. A palette of grays in
// another order is not one, because pixel functions take the bytes for the tones.
#include <vector>

#include "common/color_rows.h"
#include "common/guard.h"
#include "ltkrn13n/redrawing.h"

namespace {

using provider::Color;
using provider::Pixels;
using provider::Redrawing;

constexpr int kGrayBits = 8;

int MakeGray(struct_LEAD_Bitmap* bitmap) {
  Redrawing drawing(bitmap);
  if (!drawing.hasSource()) return kVendorNoBitmap;
  const Pixels& source = drawing.source();
  if (provider::BytesAreTones(source)) return provider::ReportNothingToDo();
  if (const int code = drawing.begin(source.width, source.height, kGrayBits);
      code != kVendorSuccess) {
    return code;
  }
  const Pixels& target = drawing.target();
  provider::FillGrayPalette(target);
  std::vector<Color> colors(static_cast<std::size_t>(source.width));
  const int code = provider::ForEachRow(source.height, [&](int y) {
    provider::ReadColors(source, y, colors.data());
    std::uint8_t* const tones = target.row(y);
    for (std::size_t x = 0; x < colors.size(); ++x) tones[x] = provider::LumaOf(colors[x]);
  });
  return code == kVendorSuccess ? drawing.finish(*bitmap) : code;
}

}  // namespace

int L_GrayScaleBitmap(struct_LEAD_Bitmap* bitmap, int bits) {
  if (bits != kGrayBits) return kVendorBadParameter;
  return provider::Guarded([=] { return MakeGray(bitmap); });
}

int L_IsGrayScaleBitmap(struct_LEAD_Bitmap* bitmap) {
  const provider::LockedDib image(bitmap == nullptr ? nullptr : bitmap->block);
  return provider::BytesAreTones(*image) ? 1 : 0;
}
