#include "ltimg13n/tone_tables.h"

#include <cmath>

namespace modules {
namespace {

constexpr int kScale = 1000;  // a change's thousandths

template <class NewTone>
ToneTable Table(const NewTone& newTone) {
  ToneTable table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = newTone(static_cast<int>(i));
  return table;
}

template <class NewTone>
ToneTables SameForAll(const NewTone& newTone) {
  const ToneTable table = Table(newTone);
  return {table, table, table};
}

}  // namespace

ToneTables ContrastTables(int change) {
  return SameForAll([change](int tone) {
    // The new tone as a fraction; at the strongest change its unit is 0 and the sign decides.
    const int unit = 2 * (kScale - change);
    const int scaled = 255 * (kScale - change) + (2 * tone - 255) * (kScale + change);
    if (scaled <= 0) return ClampedTone(0);
    if (scaled >= 255 * unit) return ClampedTone(255);
    return ClampedTone((scaled + unit / 2) / unit);
  });
}

ToneTables IntensityTables(int change) {
  return SameForAll([change](int tone) {
    const int scaled = tone * kScale + 255 * change;
    return ClampedTone(scaled <= 0 ? 0 : (scaled + kScale / 2) / kScale);
  });
}

ToneTables GammaTables(unsigned gamma) {
  const double exponent = 100.0 / gamma;
  return SameForAll([exponent](int tone) {
    return ClampedTone(static_cast<int>(std::lround(255 * std::pow(tone / 255.0, exponent))));
  });
}

ToneTables NegativeTables() {
  return SameForAll([](int tone) { return ClampedTone(255 - tone); });
}

ToneTables RemapTables(const unsigned* table, int channel) {
  const ToneTable same = Table([](int tone) { return ClampedTone(tone); });
  const ToneTable mapped =
      Table([table](int tone) { return static_cast<std::uint8_t>(std::min(table[tone], 255U)); });
  const auto tableOf = [&](int which) { return channel == 0 || channel == which ? mapped : same; };
  return {tableOf(3), tableOf(2), tableOf(1)};
}

}  // namespace modules
