// Turning by any angle, clockwise as the picture is shown. Rows are stored from the bottom up, so
// that the turn goes the other way in stored coordinates.
//
// For each new pixel the place in the old image is found that turns into it. Places are numbers of
// 1/2^28 pixels; at quarter turns they hit the old pixels exactly, at every depth.
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

#include "common/guard.h"
#include "common/palette_search.h"
#include "common/pixel_formats.h"
#include "ltkrn13n/redrawing.h"

namespace {

using modules::Color;
using modules::ForEachRow;
using modules::Format16;
using modules::Format24;
using modules::Format32;
using modules::Format8;
using modules::Pixels;
using modules::Redrawing;
using modules::WideColor;

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

// --- Nearest pixel -------------------------------------------------------------------------------

// A colour as a pixel of an image.
template <class Value>
Value PixelOf(const Pixels& image, Color color);
template <>
std::uint8_t PixelOf(const Pixels& image, Color color) {
  std::vector<Color> entries;
  entries.reserve(static_cast<std::size_t>(image.paletteSize()));
  for (int i = 0; i < image.paletteSize(); ++i)
    entries.push_back(modules::ColorOf(image.palette[i]));
  return modules::PaletteSearch(entries).nearest(color);
}
template <>
std::uint16_t PixelOf(const Pixels& /*image*/, Color color) {
  return modules::With555(0, color);
}
template <>
Color PixelOf(const Pixels& /*image*/, Color color) {
  return color;
}
template <>
WideColor PixelOf(const Pixels& /*image*/, Color color) {
  return {color, 0};
}

template <class Format>
int DrawNearest(Format format, const Pixels& source, const Pixels& target, const PlaceMap& map,
                Color background) {
  const auto uncovered = PixelOf<typename Format::Value>(source, background);
  const Place step = map.step();
  return ForEachRow(target.height, [&](int y) {
    Place place = map.rowStart(y);
    std::uint8_t* const row = target.row(y);
    for (int i = 0; i < target.width; ++i) {
      const std::int64_t x = place.x >> kPlaceBits;
      const std::int64_t sourceY = place.y >> kPlaceBits;
      format.write(row, static_cast<std::size_t>(i),
                   Covers(source, x, sourceY) ? format.read(source.row(static_cast<int>(sourceY)),
                                                            static_cast<std::size_t>(x))
                                              : uncovered);
      place.x += step.x;
      place.y += step.y;
    }
  });
}

// --- Between four pixels -------------------------------------------------------------------------

// The channels of a pixel, to be mixed one by one.
std::array<int, 1> ChannelsOf(std::uint8_t tone) {
  return {tone};
}
std::array<int, 3> ChannelsOf(Color color) {
  return {color.blue, color.green, color.red};
}
std::array<int, 3> ChannelsOf(std::uint16_t pixel) {
  return ChannelsOf(modules::ColorOf555(pixel));
}
std::array<int, 4> ChannelsOf(WideColor pixel) {
  return {pixel.color.blue, pixel.color.green, pixel.color.red, pixel.rest};
}

void FromChannels(const std::array<int, 1>& channels, std::uint8_t& tone) {
  tone = static_cast<std::uint8_t>(channels[0]);
}
void FromChannels(const std::array<int, 3>& channels, Color& color) {
  color = {static_cast<std::uint8_t>(channels[0]), static_cast<std::uint8_t>(channels[1]),
           static_cast<std::uint8_t>(channels[2])};
}
void FromChannels(const std::array<int, 3>& channels, std::uint16_t& pixel) {
  Color color;
  FromChannels(channels, color);
  pixel = modules::With555(0, color);
}
void FromChannels(const std::array<int, 4>& channels, WideColor& pixel) {
  FromChannels({channels[0], channels[1], channels[2]}, pixel.color);
  pixel.rest = static_cast<std::uint8_t>(channels[3]);
}

constexpr int kFractionBits = 8;
constexpr int kFractions = 1 << kFractionBits;

template <class Value>
Value Mixed(const std::array<Value, 4>& pixels, int fractionX, int fractionY) {
  const std::array<int, 4> weights{(kFractions - fractionX) * (kFractions - fractionY),
                                   fractionX * (kFractions - fractionY),
                                   (kFractions - fractionX) * fractionY, fractionX * fractionY};
  auto sums = ChannelsOf(Value{});
  sums.fill(kFractions * kFractions / 2);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const auto channels = ChannelsOf(pixels[i]);
    for (std::size_t c = 0; c < sums.size(); ++c) sums[c] += weights[i] * channels[c];
  }
  for (int& sum : sums) sum >>= 2 * kFractionBits;
  Value mixed;
  FromChannels(sums, mixed);
  return mixed;
}

// Pixels at the rim are mixed with the background.
template <class Format>
int DrawMixed(Format format, const Pixels& source, const Pixels& target, const PlaceMap& map,
              Color background) {
  using Value = typename Format::Value;
  const auto uncovered = PixelOf<Value>(source, background);
  const auto pixelAt = [&](std::int64_t x, std::int64_t y) {
    return Covers(source, x, y)
               ? format.read(source.row(static_cast<int>(y)), static_cast<std::size_t>(x))
               : uncovered;
  };
  const Place step = map.step();
  const auto fraction = [](std::int64_t place) {
    return static_cast<int>(place >> (kPlaceBits - kFractionBits) & (kFractions - 1));
  };
  return ForEachRow(target.height, [&](int y) {
    // Counted from the middles of pixels.
    constexpr std::int64_t kHalf = std::int64_t{1} << (kPlaceBits - 1);
    Place place = map.rowStart(y);
    place.x -= kHalf;
    place.y -= kHalf;
    std::uint8_t* const row = target.row(y);
    for (int i = 0; i < target.width; ++i) {
      const std::int64_t x = place.x >> kPlaceBits;
      const std::int64_t above = place.y >> kPlaceBits;
      const std::array<Value, 4> pixels{pixelAt(x, above), pixelAt(x + 1, above),
                                        pixelAt(x, above + 1), pixelAt(x + 1, above + 1)};
      format.write(row, static_cast<std::size_t>(i),
                   Mixed(pixels, fraction(place.x), fraction(place.y)));
      place.x += step.x;
      place.y += step.y;
    }
  });
}

// -------------------------------------------------------------------------------------------------

int Draw(const Pixels& source, const Pixels& target, const Turn& turn, Color background) {
  const PlaceMap map(source, target, turn);
  const bool mixes = !turn.quarters && (source.depth > 8 || modules::BytesAreTones(source));
  return modules::WithFormat(source.depth, [&](auto format) {
    if constexpr (requires { ChannelsOf(typename decltype(format)::Value{}); }) {
      if (mixes) return DrawMixed(format, source, target, map, background);
    }
    return DrawNearest(format, source, target, map, background);
  });
}

int Rotate(struct_LEAD_Bitmap* bitmap, int angle, unsigned flags, Color background) {
  Redrawing drawing(bitmap);
  if (!drawing.hasSource()) return kModuleNoBitmap;
  const Pixels& source = drawing.source();
  const Turn turn = TurnBy(angle);
  const auto extent =
      (flags & kRotateGrows) != 0 ? GrownExtent(source, turn) : Extent{source.width, source.height};
  if (!extent) return kModuleNoMemory;
  int code = drawing.begin(extent->width, extent->height, source.depth);
  if (code == kModuleSuccess) code = Draw(source, drawing.target(), turn, background);
  if (code != kModuleSuccess) return code;
  drawing.finish(*bitmap);
  // What ran across runs down now.
  if (turn.quarters && *turn.quarters % 2 == 1) {
    std::swap(bitmap->xResolution, bitmap->yResolution);
  }
  return kModuleSuccess;
}

}  // namespace

// color: red in the lowest byte, then green and blue.
int L_RotateBitmap(struct_LEAD_Bitmap* bitmap, int angle, unsigned flags, unsigned color) {
  const auto channel = [color](int shift) { return static_cast<std::uint8_t>(color >> shift); };
  const Color background{channel(16), channel(8), channel(0)};
  return modules::Guarded([=] { return Rotate(bitmap, angle, flags, background); });
}
