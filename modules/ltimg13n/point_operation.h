// Operations that change each pixel by its own colour alone, at every depth.
#ifndef MODULES_LTIMG13N_POINT_OPERATION_H
#define MODULES_LTIMG13N_POINT_OPERATION_H

#include <algorithm>

#include "common/pixel_formats.h"
#include "ltimg13n/adjustment.h"
#include "ltimg13n/tone_tables.h"

namespace modules {

// rule: Color operator()(Color) const. Palettes change their entries and keep the pixels' indices.
template <class Rule>
int ChangeColors(Adjustment& adjustment, const Rule& rule) {
  if (adjustment.image().palette != nullptr) {
    return adjustment.changePalette([&rule](Color color) { return rule(color); });
  }
  return adjustment.changeRows([&rule](const Pixels& source, const Pixels& target, int y) {
    const std::uint8_t* const from = source.row(y);
    std::uint8_t* const to = target.row(y);
    WithColorFormat(source.depth, [&](auto format) {
      for (std::size_t x = 0; x < static_cast<std::size_t>(source.width); ++x) {
        const auto pixel = format.read(from, x);
        format.write(to, x, Recolored(pixel, rule(ColorOf(pixel))));
      }
    });
  });
}

template <class Rule>
int ChangeColors(struct_LEAD_Bitmap* bitmap, const Rule& rule) {
  Adjustment adjustment(bitmap);
  const int obstacle = adjustment.obstacle();
  return obstacle == kModuleSuccess ? ChangeColors(adjustment, rule) : obstacle;
}

// The same by tables. A gray image whose bytes are its tones keeps its palette and changes the
// bytes: with any other palette it would no longer count as gray. Those of 24 bits are tones, too.
inline int ChangeTones(struct_LEAD_Bitmap* bitmap, const ToneTables& tables) {
  Adjustment adjustment(bitmap);
  if (const int obstacle = adjustment.obstacle(); obstacle != kModuleSuccess) return obstacle;
  const bool bytesAreTones = adjustment.image().depth == 24 || BytesAreTones(adjustment.image());
  if (!tables.keepsGray() || !bytesAreTones) return ChangeColors(adjustment, tables);
  return adjustment.changeRows([&tables, isNegative = tables.green == NegativeTables().green](
                                   const Pixels& source, const Pixels& target, int y) {
    const std::uint8_t* const from = source.row(y);
    const std::uint8_t* const end = from + source.rowBytes();
    const auto tone = [&tables](std::uint8_t byte) { return tables.green[byte]; };
    // No look-up, so that many bytes are done at once.
    const auto negative = [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); };
    if (isNegative) {
      std::transform(from, end, target.row(y), negative);
    } else {
      std::transform(from, end, target.row(y), tone);
    }
  });
}

}  // namespace modules

#endif  // MODULES_LTIMG13N_POINT_OPERATION_H
