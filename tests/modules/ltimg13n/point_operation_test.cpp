#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "adjusted.h"

namespace {

using adjusted::Adjust;
using adjusted::Apply;
using adjusted::ColorAt;
using adjusted::Rgb;
using adjusted::StrayChange;
using pictures::Locked;

struct Operation {
  std::string name;
  Adjust adjust;
  std::function<Rgb(Rgb)> reference;  // in real numbers, unclamped, the slow way
  bool keepsGray = true;
};

Rgb Each(Rgb rgb, const std::function<double(double)>& tone) {
  return {tone(rgb[0]), tone(rgb[1]), tone(rgb[2])};
}

Rgb Saturated(Rgb rgb, double factor) {
  const double luma = 0.299 * rgb[0] + 0.587 * rgb[1] + 0.114 * rgb[2];
  return Each(rgb, [=](double tone) { return luma + (tone - luma) * factor; });
}

// By value, chroma and the distance from each channel's own place on the circle.
Rgb Turned(Rgb rgb, double degrees) {
  const auto [r, g, b] = rgb;
  const double value = std::max({r, g, b});
  const double chroma = value - std::min({r, g, b});
  if (chroma == 0) return rgb;
  const double hue = value == r   ? (g - b) / chroma
                     : value == g ? (b - r) / chroma + 2
                                  : (r - g) / chroma + 4;
  const auto channel = [&](double place) {
    const double k = std::fmod(std::fmod(place + hue + degrees / 60, 6) + 6, 6);
    return value - chroma * std::clamp(std::min(k, 4 - k), 0.0, 1.0);
  };
  return {channel(5), channel(3), channel(1)};
}

// Some results lie beyond 255.
constexpr unsigned Remapped(unsigned tone) {
  return tone * 7 % 301;
}

std::vector<Operation> Operations() {
  std::vector<Operation> all;
  const auto add = [&](std::string name, auto entry, auto argument, auto reference) {
    name.append(" ").append(std::to_string(argument));
    all.push_back({name, [=](auto* bitmap) { return entry(bitmap, argument); }, reference});
  };
  for (const auto& [change, factor] :
       {std::pair{-1000, 0.0}, {-600, 0.25}, {200, 1.5}, {1000, 1e9}}) {
    add("contrast", L_ChangeBitmapContrast, change, [factor = factor](Rgb rgb) {
      return Each(rgb, [=](double v) { return 127.5 + (v - 127.5) * factor; });
    });
  }
  for (const int change : {-1000, -333, 1, 700, 1000}) {
    add("intensity", L_ChangeBitmapIntensity, change, [change](Rgb rgb) {
      return Each(rgb, [=](double v) { return v + 255 * change / 1000.0; });
    });
    add("saturation", L_ChangeBitmapSaturation, change,
        [change](Rgb rgb) { return Saturated(rgb, 1 + change / 1000.0); });
  }
  for (const unsigned gamma : {1U, 45U, 200U, 4294967295U}) {
    add("gamma", L_GammaCorrectBitmap, gamma, [gamma](Rgb rgb) {
      return Each(rgb, [=](double v) { return 255 * std::pow(v / 255, 100.0 / gamma); });
    });
  }
  for (const int change : {1234, -7777, 12000, 2147483647, -2147483647 - 1}) {
    add("hue", L_ChangeBitmapHue, change,
        [change](Rgb rgb) { return Turned(rgb, change / 100.0); });
  }
  all.push_back({"invert", L_InvertBitmap,
                 [](Rgb rgb) { return Each(rgb, [](double v) { return 255 - v; }); }});
  for (int channel = 0; channel <= 3; ++channel) {
    const auto remap = [channel](struct_LEAD_Bitmap* bitmap) {
      std::array<unsigned, 256> table{};
      for (unsigned i = 0; i < 256; ++i) table[i] = Remapped(i);
      return L_RemapBitmapIntensity(bitmap, table.data(), 256, channel);
    };
    const auto reference = [channel](Rgb rgb) {
      for (int i = 1; i <= 3; ++i) {
        double& tone = rgb[static_cast<std::size_t>(i - 1)];
        if (channel == 0 || channel == i) tone = Remapped(static_cast<unsigned>(tone));
      }
      return rgb;
    };
    all.push_back(
        {std::string("remap ").append(std::to_string(channel)), remap, reference, channel == 0});
  }
  return all;
}

void ExpectAsReference(const Operation& operation, const Locked& before, const Locked& after) {
  const orvo::DibLayout layout = before.layout();
  for (int y = 0; y < layout.height; ++y) {
    for (int x = 0; x < layout.width; ++x) {
      const Rgb expected = operation.reference(ColorAt(before, x, y));
      const Rgb got = ColorAt(after, x, y);
      for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_LE(std::abs(std::clamp(expected[i], 0.0, 255.0) - got[i]),
                  adjusted::Slack(layout.depth))
            << "channel " << i << " at " << x << ", " << y;
      }
    }
  }
}

TEST(PointOperation, agrees_with_the_slow_reference_and_touches_nothing_else) {
  for (const adjusted::Kind kind : adjusted::kKinds) {
    const orvo::OwnedDib source = Picture(kind, 131, 41);  // enough for every tone to occur
    for (const Operation& operation : Operations()) {
      SCOPED_TRACE(testing::Message() << operation.name << " at " << kind.depth << " bits");
      orvo::OwnedDib got = pictures::CopyOf(source.get());
      ASSERT_EQ(Apply(operation.adjust, got), kModuleSuccess);
      ASSERT_NO_FATAL_FAILURE(
          ExpectAsReference(operation, Locked(source.get()), Locked(got.get())));
      // A gray image keeps the palette that makes it one, unless it becomes colourful.
      const bool colorsInPalette = kind.depth <= 8 && !(kind.grayByTone && operation.keepsGray);
      ASSERT_EQ(StrayChange(source.get(), got.get(), colorsInPalette), -1);

      const adjusted::Watched callback(adjusted::GoOn);
      orvo::OwnedDib watched = pictures::CopyOf(source.get());
      ASSERT_EQ(Apply(operation.adjust, watched), kModuleSuccess);
      ASSERT_EQ(pictures::Difference(got.get(), watched.get()), "");
    }
  }
}

TEST(PointOperation, settings_that_change_nothing_are_exact) {
  std::array<unsigned, 256> same{};
  std::iota(same.begin(), same.end(), 0U);
  const Adjust identities[] = {
      [](auto* bitmap) { return L_ChangeBitmapContrast(bitmap, 0); },
      [](auto* bitmap) { return L_ChangeBitmapIntensity(bitmap, 0); },
      [](auto* bitmap) { return L_ChangeBitmapSaturation(bitmap, 0); },
      [](auto* bitmap) { return L_GammaCorrectBitmap(bitmap, 100); },
      [](auto* bitmap) { return L_SharpenBitmap(bitmap, 0); },
      [](auto* bitmap) { return L_ChangeBitmapHue(bitmap, 0); },
      [](auto* bitmap) { return L_ChangeBitmapHue(bitmap, -36000); },
      [&](auto* bitmap) { return L_RemapBitmapIntensity(bitmap, same.data(), 256, 0); },
      [](auto* bitmap) { return L_InvertBitmap(bitmap) * L_InvertBitmap(bitmap); }};
  for (const adjusted::Kind kind : adjusted::kKinds) {
    const orvo::OwnedDib source = Picture(kind, 131, 41);
    for (std::size_t i = 0; i < std::size(identities); ++i) {
      orvo::OwnedDib got = pictures::CopyOf(source.get());
      ASSERT_EQ(Apply(identities[i], got), kModuleSuccess);
      ASSERT_EQ(pictures::Difference(source.get(), got.get()), "") << i << " at " << kind.depth;
    }
  }
}

}  // namespace
