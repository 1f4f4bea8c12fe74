// Gray images: 8 bits with the palette in which each byte is its own tone. A palette of grays in
// another order is not one, because pixel functions take the bytes for the tones.
#include <vector>

#include "common/color_rows.h"
#include "common/guard.h"
#include "ltkrn13n/redrawing.h"

namespace {

using modules::Color;
using modules::Pixels;
using modules::Redrawing;

constexpr int kGrayBits = 8;

int MakeGray(struct_LEAD_Bitmap* bitmap) {
  Redrawing drawing(bitmap);
  const Pixels& source = drawing.source();
  if (modules::BytesAreTones(source)) return modules::ReportNothingToDo();
  drawing.begin(source.width, source.height, kGrayBits);
  const Pixels& target = drawing.target();
  modules::FillGrayPalette(target);
  std::vector<Color> colors(static_cast<std::size_t>(source.width));
  modules::ForEachRow(source.height, [&](int y) {
    const Color* const row = modules::RowOfColors(source, y, colors.data());
    modules::WriteTones(row, colors.size(), target.row(y));
  });
  return drawing.finish(*bitmap);
}

}  // namespace

int L_GrayScaleBitmap(struct_LEAD_Bitmap* bitmap, int bits) {
  if (bits != kGrayBits) return kModuleBadParameter;
  return modules::Guarded([=] { return MakeGray(bitmap); });
}

int L_IsGrayScaleBitmap(struct_LEAD_Bitmap* bitmap) {
  const modules::LockedDib image(bitmap == nullptr ? nullptr : bitmap->block);
  return modules::BytesAreTones(*image) ? 1 : 0;
}
