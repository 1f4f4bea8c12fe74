// Turning by any angle, clockwise as the picture is shown. Rows are stored from the bottom up, so
// that the turn goes the other way in stored coordinates.
//
// For each new pixel the place in the old image is found that turns into it. Places are numbers of
// 1/2^28 pixels. Quarter turns onto a canvas that fits move the old pixels, at every depth.
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

#include "common/color_rows.h"
#include "common/guard.h"
#include "common/palette_search.h"
#include "common/pixel_formats.h"
#include "common/pixel_turns.h"
#include "ltkrn13n/redrawing.h"

namespace {

using modules::Color;
using modules::ForEachRow;
using modules::Pixels;
using modules::Redrawing;

constexpr int kPlaceBits = 28;
constexpr double kPlaceUnit = 1 << kPlaceBits;
constexpr int kFullTurn = 36000;  // hundredths of a degree
constexpr int kQuarterTurn = 9000;

struct Turn {
  double cosine;
  double sine;
  std::optional<int> quarters;  // 0..3 for a turn by just so many right angles
};

Turn TurnBy(int angle) {
  const int within = (angle % kFullTurn + kFullTurn) % kFullTurn;
  if (within % kQuarterTurn == 0) {
    constexpr std::array<int, 4> kSines{0, 1, 0, -1};
    const int quarters = within / kQuarterTurn;
    const auto sineOf = [&](int n) { return double(kSines[static_cast<std::size_t>(n % 4)]); };
    return {sineOf(quarters + 1), sineOf(quarters), quarters};
  }
  const double radians = within * 2 * std::numbers::pi / kFullTurn;
  return {std::cos(radians), std::sin(radians), std::nullopt};
}

struct Extent {
  int width;
  int height;
};

// The smallest size that holds the whole turned image; nothing when it is beyond all numbers. Only
// quarter turns make whole numbers, and those are exact.
std::optional<Extent> GrownExtent(const Pixels& image, const Turn& turn) {
  const auto length = [&](double alongWidth, double alongHeight) {
    return std::ceil(image.width * std::fabs(alongWidth) + image.height * std::fabs(alongHeight));
  };
  const double width = length(turn.cosine, turn.sine);
  const double height = length(turn.sine, turn.cosine);
  if (std::fmax(width, height) > std::numeric_limits<int>::max()) return std::nullopt;
  return Extent{static_cast<int>(width), static_cast<int>(height)};
}

struct Place {
  std::int64_t x;
  std::int64_t y;
};

// From new pixels to old places, middle on middle.
class PlaceMap {
 public:
  PlaceMap(const Pixels& source, const Pixels& target, const Turn& turn)
      : source_(source), target_(target), turn_(turn) {}

  // Place of the middle of the first pixel of a new row, and the way from each pixel to the next.
  [[nodiscard]] Place rowStart(int y) const {
    const double dx = 0.5 - target_.width / 2.0;
    const double dy = y + 0.5 - target_.height / 2.0;
    return {inUnits(source_.width / 2.0 + dx * turn_.cosine - dy * turn_.sine),
            inUnits(source_.height / 2.0 + dx * turn_.sine + dy * turn_.cosine)};
  }
  [[nodiscard]] Place step() const { return {inUnits(turn_.cosine), inUnits(turn_.sine)}; }

 private:
  static std::int64_t inUnits(double pixels) { return std::llround(pixels * kPlaceUnit); }

  const Pixels& source_;
  const Pixels& target_;
  const Turn& turn_;
};

bool Covers(const Pixels& image, std::int64_t x, std::int64_t y) {
  return x >= 0 && x < image.width && y >= 0 && y < image.height;
}

// A colour as a pixel of an image.
template <class Value>
Value PixelOf(const Pixels& image, Color color) {
  if constexpr (sizeof(Value) == 1) {
    return modules::PaletteSearch(modules::PaletteColors(image)).nearest(color);
  } else {
    return modules::Recolored(Value{}, color);
  }
}

// The channels of a pixel, to be mixed one by one.
template <class Value>
auto ChannelsOf(Value pixel) {
  return std::bit_cast<std::array<std::uint8_t, sizeof pixel>>(pixel);
}
auto ChannelsOf(std::uint16_t pixel) {
  return ChannelsOf(modules::ColorOf(pixel));
}
template <class Value, class Channels>
Value FromChannels(const Channels& channels) {
  if constexpr (std::is_same_v<Value, std::uint16_t>) {
    return modules::With555(0, std::bit_cast<Color>(channels));
  } else {
    return std::bit_cast<Value>(channels);
  }
}

constexpr int kFractionBits = 8;
constexpr int kFractions = 1 << kFractionBits;

template <class Value>
Value Mixed(const std::array<Value, 4>& pixels, int fractionX, int fractionY) {
  const std::array<int, 4> weights{(kFractions - fractionX) * (kFractions - fractionY),
                                   fractionX * (kFractions - fractionY),
                                   (kFractions - fractionX) * fractionY, fractionX * fractionY};
  auto channels = ChannelsOf(Value{});
  std::array<int, channels.size()> sums{};
  sums.fill(kFractions * kFractions / 2);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    channels = ChannelsOf(pixels[i]);
    for (std::size_t c = 0; c < sums.size(); ++c) sums[c] += weights[i] * channels[c];
  }
  for (std::size_t c = 0; c < sums.size(); ++c) {
    channels[c] = static_cast<std::uint8_t>(sums[c] >> 2 * kFractionBits);
  }
  return FromChannels<Value>(channels);
}

// Fills all rows with pixelAt(place).
template <class Format, class PixelAt>
void DrawPlaces(Format format, const Pixels& target, const PlaceMap& map, const PixelAt& pixelAt) {
  const Place step = map.step();
  ForEachRow(target.height, [&](int y) {
    Place place = map.rowStart(y);
    std::uint8_t* const row = target.row(y);
    for (std::size_t i = 0; i < static_cast<std::size_t>(target.width); ++i) {
      format.write(row, i, pixelAt(place));
      place.x += step.x;
      place.y += step.y;
    }
  });
}

// Takes the nearest pixel, or mixes the four around; those at the rim with the background.
template <class Format>
void Draw(Format format, const Pixels& source, const Pixels& target, const PlaceMap& map,
          Color background, bool mixes) {
  const auto uncovered = PixelOf<typename Format::Value>(source, background);
  const auto pixelAt = [&](std::int64_t x, std::int64_t y) {
    return Covers(source, x, y)
               ? format.read(source.row(static_cast<int>(y)), static_cast<std::size_t>(x))
               : uncovered;
  };
  if (!mixes) {
    return DrawPlaces(format, target, map, [&](Place place) {
      return pixelAt(place.x >> kPlaceBits, place.y >> kPlaceBits);
    });
  }
  const auto fraction = [](std::int64_t place) {
    return static_cast<int>(place >> (kPlaceBits - kFractionBits) & (kFractions - 1));
  };
  DrawPlaces(format, target, map, [&](Place place) {
    // Counted from the middles of pixels.
    constexpr std::int64_t kHalf = std::int64_t{1} << (kPlaceBits - 1);
    place = {place.x - kHalf, place.y - kHalf};
    const std::int64_t x = place.x >> kPlaceBits;
    const std::int64_t above = place.y >> kPlaceBits;
    return Mixed(std::array{pixelAt(x, above), pixelAt(x + 1, above), pixelAt(x, above + 1),
                            pixelAt(x + 1, above + 1)},
                 fraction(place.x), fraction(place.y));
  });
}

void Draw(const Pixels& source, const Pixels& target, const Turn& turn, Color background) {
  const PlaceMap map(source, target, turn);
  const bool mixes = !turn.quarters && (source.depth > 8 || modules::BytesAreTones(source));
  modules::WithFormat(source.depth,
                      [&](auto format) { Draw(format, source, target, map, background, mixes); });
}

// The target has the source's sides, swapped by an odd number of quarters.
void DrawQuarters(const Pixels& source, const Pixels& target, int quarters) {
  const modules::PixelTurn turn{quarters % 2 == 1, quarters == 1 || quarters == 2,
                                quarters == 2 || quarters == 3};
  ForEachRow(target.height, [&](int y) {
    if (y % modules::kTurnedBand == 0) modules::DrawTurnedBand(source, target, turn, y);
  });
}

int Rotate(struct_LEAD_Bitmap* bitmap, int angle, unsigned flags, Color background) {
  Redrawing drawing(bitmap);
  const Pixels& source = drawing.source();
  const Turn turn = TurnBy(angle);
  const auto extent =
      (flags & kRotateGrows) != 0 ? GrownExtent(source, turn) : Extent{source.width, source.height};
  modules::Require(extent, kModuleNoMemory);
  drawing.begin(extent->width, extent->height, source.depth);
  if (turn.quarters && ((flags & kRotateGrows) != 0 || *turn.quarters % 2 == 0)) {
    DrawQuarters(source, drawing.target(), *turn.quarters);
  } else {
    Draw(source, drawing.target(), turn, background);
  }
  drawing.finish(*bitmap);
  // What ran across runs down now.
  if (turn.quarters && *turn.quarters % 2 == 1) {
    std::swap(bitmap->xResolution, bitmap->yResolution);
  }
  return kModuleSuccess;
}

}  // namespace

int L_RotateBitmap(struct_LEAD_Bitmap* bitmap, int angle, unsigned flags, unsigned color) {
  return modules::Guarded(
      [=] { return Rotate(bitmap, angle, flags, modules::ColorOfReference(color)); });
}
