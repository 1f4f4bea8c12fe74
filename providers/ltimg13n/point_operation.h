// Operations that change each pixel by its own colour alone, at every depth.
#ifndef PROVIDERS_LTIMG13N_POINT_OPERATION_H
#define PROVIDERS_LTIMG13N_POINT_OPERATION_H

#include <cstring>

#include "ltimg13n/adjustment.h"
#include "ltimg13n/tone_tables.h"

namespace provider {

// One row of 16, 24 or 32 bits. rule: Color operator()(Color) const.
template <class Rule>
void ChangeRowColors(const Pixels& source, const Pixels& target, int y, const Rule& rule) {
  const std::uint8_t* from = source.row(y);
  std::uint8_t* to = target.row(y);
  const int step = source.depth / 8;
  for (int x = 0; x < source.width; ++x, from += step, to += step) {
    if (step == 2) {
      std::uint16_t pixel = 0;
      std::memcpy(&pixel, from, sizeof pixel);
      pixel = With555(pixel, rule(ColorOf555(pixel)));
      std::memcpy(to, &pixel, sizeof pixel);
    } else {
      const Color color = rule({from[0], from[1], from[2]});
      to[0] = color.blue;
      to[1] = color.green;
      to[2] = color.red;
    }
  }
}

// Palettes change their entries and keep the pixels' indices.
template <class Rule>
int ChangeColors(Adjustment& adjustment, const Rule& rule) {
  if (adjustment.image().palette != nullptr) {
    return adjustment.changePalette([&rule](Color color) { return rule(color); });
  }
  return adjustment.changeRows([&rule](const Pixels& source, const Pixels& target, int y) {
    ChangeRowColors(source, target, y, rule);
  });
}

template <class Rule>
int ChangeColors(struct_LEAD_Bitmap* bitmap, const Rule& rule) {
  Adjustment adjustment(bitmap);
  const int obstacle = adjustment.obstacle();
  return obstacle == kVendorSuccess ? ChangeColors(adjustment, rule) : obstacle;
}

// The same by tables. A gray image whose bytes are its tones keeps its palette and changes the
// bytes: with any other palette it would no longer count as gray.
inline int ChangeTones(struct_LEAD_Bitmap* bitmap, const ToneTables& tables) {
  Adjustment adjustment(bitmap);
  if (const int obstacle = adjustment.obstacle(); obstacle != kVendorSuccess) return obstacle;
  if (!tables.keepsGray() || !adjustment.isGrayByTone()) return ChangeColors(adjustment, tables);
  return adjustment.changeRows([&tables](const Pixels& source, const Pixels& target, int y) {
    const std::uint8_t* const from = source.row(y);
    std::transform(from, from + source.width, target.row(y),
                   [&tables](std::uint8_t tone) { return tables.green[tone]; });
  });
}

}  // namespace provider

#endif  // PROVIDERS_LTIMG13N_POINT_OPERATION_H
