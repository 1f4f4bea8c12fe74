// Adjustments against plain arithmetic in real numbers, at every depth, watched and in place.
#include <limits>
#include <numeric>

#include "modules/fixture.h"

namespace {

using rig::Color;
using rig::Do;
using rig::kKinds;
using rig::ModuleTest;
using rig::Operation;
using rig::OwnedDib;
using rig::Picture;
using rig::View;

struct Adjustment {
  std::string name;
  Operation run;
  std::function<Color(const View& image, int x, int y)> plain;  // unclamped
  bool isSharpening = false;
  bool keepsGray = true;
};

template <class Tone>
Color Each(Color color, const Tone& tone) {
  for (std::size_t c = 0; c < 3; ++c) color[c] = tone(color[c]);
  return color;
}

Color Saturated(const Color& color, double factor) {
  const double luma = 0.299 * color[0] + 0.587 * color[1] + 0.114 * color[2];
  return Each(color, [=](double tone) { return luma + (tone - luma) * factor; });
}

// By value, chroma and the distance from each channel's own place on the circle.
Color Turned(const Color& color, double degrees) {
  const auto [r, g, b, rest] = color;
  const double value = std::max({r, g, b});
  const double chroma = value - std::min({r, g, b});
  if (chroma == 0) return color;
  const double hue = value == r   ? (g - b) / chroma
                     : value == g ? (b - r) / chroma + 2
                                  : (r - g) / chroma + 4;
  const auto channel = [&](double place) {
    const double k = std::fmod(std::fmod(place + hue + degrees / 60, 6) + 6, 6);
    return value - chroma * std::clamp(std::min(k, 4 - k), 0.0, 1.0);
  };
  return {channel(5), channel(3), channel(1), rest};
}

// Away from the mean of the nine pixels, those beyond the border taken from the nearest inside.
Color Sharpened(const View& image, int x, int y, int change) {
  const Color here = image.color(x, y);
  Color mean{};
  for (int i = 0; i < 9; ++i) {
    const Color near = image.color(std::clamp(x + i % 3 - 1, 0, image.width() - 1),
                                   std::clamp(y + i / 3 - 1, 0, image.height() - 1));
    for (std::size_t c = 0; c < 3; ++c) mean[c] += near[c] / 9;
  }
  Color sharp = here;
  for (std::size_t c = 0; c < 3; ++c) {
    sharp[c] += (here[c] - mean[c]) * (change > 0 ? change / 250.0 : change / 1000.0);
  }
  return sharp;
}

constexpr unsigned Remapped(unsigned tone) {
  return tone * 7 % 301;  // some lie beyond 255
}

std::vector<Adjustment> Adjustments() {
  std::vector<Adjustment> all;
  const auto add = [&](const std::string& name, auto entry, auto argument, auto plain) {
    all.push_back({name + " " + std::to_string(argument), Do(entry, argument),
                   [=](const View& image, int x, int y) { return plain(image.color(x, y)); }});
  };
  for (const auto& [change, factor] :
       {std::pair{-1000, 0.0}, {-600, 0.25}, {0, 1.0}, {200, 1.5}, {1000, 1e9}}) {
    add("contrast", L_ChangeBitmapContrast, change, [factor = factor](const Color& color) {
      return Each(color, [=](double v) { return 127.5 + (v - 127.5) * factor; });
    });
  }
  for (const int change : {-1000, -333, 0, 1, 700, 1000}) {
    add("intensity", L_ChangeBitmapIntensity, change, [change](const Color& color) {
      return Each(color, [=](double v) { return v + 255 * change / 1000.0; });
    });
    add("saturation", L_ChangeBitmapSaturation, change,
        [change](const Color& color) { return Saturated(color, 1 + change / 1000.0); });
  }
  for (const unsigned gamma : {1U, 45U, 100U, 200U, 4294967295U}) {
    add("gamma", L_GammaCorrectBitmap, gamma, [gamma](const Color& color) {
      return Each(color, [=](double v) { return 255 * std::pow(v / 255, 100.0 / gamma); });
    });
  }
  for (const int change : {0, 1234, -7777, 12000, -36000, std::numeric_limits<int>::max(),
                           std::numeric_limits<int>::min()}) {
    add("hue", L_ChangeBitmapHue, change,
        [change](const Color& color) { return Turned(color, change / 100.0); });
  }
  for (const int change : {-1000, -400, 0, 130, 1000}) {
    all.push_back({"sharpness " + std::to_string(change), Do(L_SharpenBitmap, change),
                   [=](const View& image, int x, int y) { return Sharpened(image, x, y, change); },
                   true});
  }
  for (int channel = -1; channel <= 3; ++channel) {  // -1: inverted
    const auto run = [channel](auto* bitmap) {
      if (channel < 0) return L_InvertBitmap(bitmap);
      std::array<unsigned, 256> table{};
      for (unsigned i = 0; i < 256; ++i) table[i] = Remapped(i);
      return L_RemapBitmapIntensity(bitmap, table.data(), 256, channel);
    };
    const auto plain = [channel](const View& image, int x, int y) {
      Color color = image.color(x, y);
      for (int i = 1; i <= 3; ++i) {
        double& tone = color[static_cast<std::size_t>(i - 1)];
        if (channel < 0) tone = 255 - tone;
        if (channel == 0 || channel == i) tone = Remapped(static_cast<unsigned>(tone));
      }
      return color;
    };
    all.push_back({"remap " + std::to_string(channel), run, plain, false, channel <= 0});
  }
  return all;
}

double Distance(const Color& a, const Color& b) {
  return std::pow(a[0] - b[0], 2) + std::pow(a[1] - b[1], 2) + std::pow(a[2] - b[2], 2);
}

void ExpectPlain(const Adjustment& adjustment, const View& before, const View& after) {
  const bool byPalette =
      adjustment.isSharpening && before.depth() <= 8 && before.entry(1) != Color{1, 1, 1};
  // Half a tone, and at 5-5-5 half of one of 31 steps and what their widened form is off by.
  const double slack = before.depth() == 16 ? 1.3 + 255 / 62.0 : 0.5 + 1e-6;
  for (int i = 0; i < before.width() * before.height(); ++i) {
    const int x = i % before.width();
    const int y = i / before.width();
    Color expected = adjustment.plain(before, x, y);
    for (double& tone : expected) tone = std::clamp(tone, 0.0, 255.0);
    const Color got = after.color(x, y);
    if (byPalette) {  // the entry nearest to the rounded colour
      for (double& tone : expected) tone = std::floor(tone + 0.5 + 1e-6);
      for (unsigned entry = 0; entry < 1U << before.depth(); ++entry) {
        ASSERT_LE(Distance(got, expected), Distance(before.entry(entry), expected))
            << x << ", " << y;
      }
      continue;
    }
    for (std::size_t c = 0; c < 4; ++c) {
      ASSERT_LE(std::abs(expected[c] - got[c]), slack) << "channel " << c << ", " << x << ", " << y;
    }
  }
}

// The first byte that changed without holding colour: header, padding, the palette or else the
// pixels, the bits of either that are no colour. -1 when there is none.
std::ptrdiff_t StrayChange(const OwnedDib& before, const OwnedDib& after, bool inPalette) {
  const rig::Bytes a = pictures::BytesOf(before.get());
  const rig::Bytes b = pictures::BytesOf(after.get());
  const orvo::DibLayout layout = rig::Locked(before.get()).layout();
  const auto bits = static_cast<std::size_t>(layout.width * layout.depth);
  for (std::size_t i = 0; i < a.size(); ++i) {
    const bool isEntry = i >= orvo::kDibHeaderBytes && i < layout.pixelOffset;
    const std::size_t at = (i - layout.pixelOffset) % layout.stride;
    const bool isPixel = i >= layout.pixelOffset && at * 8 < bits;
    const bool last = at % 4 == 3 && layout.depth == 32;
    int free = 0;
    if (inPalette && isEntry && i % 4 != 3) free = 0xFF;
    if (!inPalette && isPixel && !last) free = at * 8 + 4 == bits ? 0xF0 : 0xFF;
    if (layout.depth == 16 && at % 2 == 1) free &= 0x7F;
    if (((a[i] ^ b[i]) & ~free) != 0) return static_cast<std::ptrdiff_t>(i);
  }
  return -1;
}

TEST_F(ModuleTest, adjustments_agree_with_plain_arithmetic_and_touch_nothing_else) {
  constexpr int kSizes[][2] = {{1, 1}, {1, 5}, {6, 1}, {2, 2}, {3, 9}, {131, 41}};
  const std::vector<Adjustment> adjustments = Adjustments();
  for (const rig::Kind kind : kKinds) {
    if (kind.depth == 1) continue;
    for (const auto& [width, height] : kSizes) {
      const OwnedDib source = Picture(kind, width, height);
      for (const Adjustment& adjustment : adjustments) {
        if (width < 131 && !adjustment.isSharpening) continue;
        SCOPED_TRACE(testing::Message() << adjustment.name << " at " << kind.depth << " bits, "
                                        << width << " by " << height);
        const OwnedDib got = rig::Changed(source, adjustment.run);
        ASSERT_NO_FATAL_FAILURE(ExpectPlain(adjustment, View(source), View(got)));
        // A gray image keeps the palette that makes it one, unless it becomes colourful.
        const bool inPalette =
            kind.depth <= 8 && !adjustment.isSharpening && !(kind.gray && adjustment.keepsGray);
        ASSERT_EQ(StrayChange(source, got, inPalette), -1);
        if (adjustment.name.ends_with(" 0") && !adjustment.name.starts_with("remap")) {
          ASSERT_EQ(pictures::Difference(source.get(), got.get()), "");
        }
        const rig::Watch watch;
        const OwnedDib watched = rig::Changed(source, adjustment.run);
        ASSERT_EQ(pictures::Difference(got.get(), watched.get()), "");
      }
    }
  }
}

TEST_F(ModuleTest, a_repeated_palette_colour_keeps_its_index_when_sharpened) {
  const OwnedDib source = Picture({8, false}, 31, 12);
  std::fill_n(View(source).palette(), 256, RGBQUAD{9, 8, 7, 6});
  const OwnedDib got = rig::Changed(source, Do(L_SharpenBitmap, 1000));
  EXPECT_EQ(pictures::Difference(source.get(), got.get()), "");
}

}  // namespace
