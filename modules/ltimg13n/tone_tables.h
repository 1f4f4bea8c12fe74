// Adjustments that give each tone of a channel a new one, as tables of 256.
#ifndef MODULES_LTIMG13N_TONE_TABLES_H
#define MODULES_LTIMG13N_TONE_TABLES_H

#include <array>
#include <cstdint>

#include "common/color.h"

namespace modules {

using ToneTable = std::array<std::uint8_t, 256>;

// A table for each channel.
struct ToneTables {
  ToneTable blue;
  ToneTable green;
  ToneTable red;

  // Whether what was gray stays gray.
  [[nodiscard]] bool keepsGray() const { return blue == green && green == red; }
  Color operator()(Color color) const {
    return {blue[color.blue], green[color.green], red[color.red]};
  }
};

// Spreads tones about mid-gray by (1000 + change) / (1000 - change), so that a change and its
// opposite undo each other: -1000 leaves mid-gray (128), 1000 leaves black and white.
ToneTables ContrastTables(int change);
// Shifts tones by change thousandths of the scale.
ToneTables IntensityTables(int change);
// Raises tones, as parts of white, to the power 100 / gamma; gamma is not 0.
ToneTables GammaTables(unsigned gamma);
ToneTables NegativeTables();
// `table` has 256 entries, those above 255 count as 255. channel: 0 all, 1 red, 2 green, 3 blue.
ToneTables RemapTables(const unsigned* table, int channel);

}  // namespace modules

#endif  // MODULES_LTIMG13N_TONE_TABLES_H
