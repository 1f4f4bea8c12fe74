// Red-eye on a 12-megapixel portrait beside a plain copy of it; the colour test beside the measure
// of angles that it stands for.
#include <benchmark/benchmark.h>

#include <cstring>

#include "imaging/adjust/ycbcr.h"
#include "imaging/redeye/auto_red_eye.h"
#include "imaging/redeye/color_tests.h"
#include "imaging/redeye/outline_angles.h"
#include "imaging/redeye/reduce.h"
#include "pictures.h"

using namespace orvo;

namespace {

constexpr std::uint32_t kWidth = bench::kPhotoWidth;
constexpr std::uint32_t kHeight = bench::kPhotoHeight;
constexpr std::size_t kStride = std::size_t{kWidth} * 3;
constexpr double kFaceX = 2000;
constexpr double kFaceY = 1500;  // rows as stored
constexpr double kEyeY = kFaceY + 180;

struct Tone {
  int red, green, blue;
};

double InEllipse(double x, double y, double centreX, double centreY, double radiusX,
                 double radiusY) {
  const double dx = (x - centreX) / radiusX;
  const double dy = (y - centreY) / radiusY;
  return dx * dx + dy * dy;
}

// A face of this half-width on a gray ground, with two red pupils.
Tone PortraitTone(double x, double y, double halfWidth) {
  for (const double side : {-0.4, 0.4}) {
    const double eyeX = kFaceX + side * halfWidth;
    const double pupil = InEllipse(x, y, eyeX, kEyeY, 26, 26);
    if (pupil < 1) return {200, 30, 30};
    if (pupil < 4) return {70, 60, 50};
    if (InEllipse(x, y, eyeX, kEyeY, 110, 50) < 1) return {205, 200, 196};
  }
  if (InEllipse(x, y, kFaceX, kFaceY, halfWidth, 1.3 * halfWidth) < 1) return {205, 150, 120};
  return {90, 95, 100};
}

std::vector<std::uint8_t> Portrait(double halfWidth) {
  std::vector<std::uint8_t> pixels(kStride * kHeight);
  std::uint32_t grain = 1;
  for (std::uint32_t y = 0; y < kHeight; ++y) {
    for (std::uint32_t x = 0; x < kWidth; ++x) {
      grain = grain * 1664525U + 1013904223U;
      const int noise = static_cast<int>(grain >> 28);
      const Tone tone = PortraitTone(x, y, halfWidth);
      std::uint8_t* const pixel = &pixels[kStride * y + 3 * std::size_t{x}];
      pixel[0] = static_cast<std::uint8_t>(tone.blue + noise);
      pixel[1] = static_cast<std::uint8_t>(tone.green + noise);
      pixel[2] = static_cast<std::uint8_t>(tone.red + noise);
    }
  }
  return pixels;
}

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void PlainCopy(benchmark::State& state) {
  const auto source = Portrait(600);
  std::vector<std::uint8_t> target(source);
  for (auto _ : state) {
    std::memcpy(target.data(), source.data(), source.size());
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
BENCHMARK(PlainCopy)->Unit(benchmark::kMillisecond);

void AutoRedEye(benchmark::State& state) {
  const auto halfWidth = static_cast<double>(state.range(0));
  const auto source = Portrait(halfWidth);
  std::vector<std::uint8_t> target(source);
  for (auto _ : state) {
    const int result = ImgAutoRedEye(source.data(), target.data(), kWidth, kHeight);
    if ((result == 0) != (halfWidth > 0)) state.SkipWithError("not what the portrait shows");
  }
  CountPixels(state);
  state.counters["face_megapixels"] = 5.2e-6 * halfWidth * halfWidth;  // rectangle of the skin
}
BENCHMARK(AutoRedEye)->ArgName("face")->Arg(0)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);

void SearchAtPoint(benchmark::State& state) {
  const auto source = Portrait(600);
  const auto y = static_cast<std::uint32_t>(kEyeY);
  PupilCircle found{};
  for (auto _ : state) {
    const int result = ImgSearchRedEyeRegion(source.data(), kWidth, kHeight, 2240, y, &found);
    if (result != 0) state.SkipWithError("no pupil");
  }
}
BENCHMARK(SearchAtPoint)->Unit(benchmark::kMicrosecond);

void ReduceInPlace(benchmark::State& state) {
  auto pixels = Portrait(600);
  const PupilCircle pupil{2240, static_cast<std::uint32_t>(kEyeY), 26};
  for (auto _ : state) ImgReduceRedEye(pixels.data(), pixels.data(), kWidth, kHeight, pupil);
}
BENCHMARK(ReduceInPlace)->Unit(benchmark::kMicrosecond);

// Colours as a region of skin with eyes and lips has them.
std::vector<YCbCrBytes> Colors() {
  std::vector<YCbCrBytes> colors;
  for (int red = 40; red < 256; red += 3) {
    for (int green = 0; green < red; green += 3) {
      for (int blue = 0; blue < red; blue += 6) colors.push_back(ToYCbCrBytes(red, green, blue));
    }
  }
  return colors;
}

template <class Test>
void ColorTest(benchmark::State& state, Test test) {
  const auto colors = Colors();
  for (auto _ : state) {
    int count = 0;
    for (const YCbCrBytes& color : colors) count += test(color) ? 1 : 0;
    benchmark::DoNotOptimize(count);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(colors.size()));
}
BENCHMARK_CAPTURE(ColorTest, table,
                  [](const YCbCrBytes& c) { return ImgIsRedEyeColor(c.y, c.cb, c.cr); });
BENCHMARK_CAPTURE(ColorTest, angles, [](const YCbCrBytes& c) {
  return IsWithinOutline(RedEyeOutlines[c.y], c.cb, c.cr);
});

}  // namespace
