// Sharpness of a 12-megapixel photograph beside a plain copy of it and beside a peer's 5x5 filter.
#include <benchmark/benchmark.h>

#include <cstring>

#include "imaginglib/sharpness.h"
#include "pictures.h"

#ifdef ORVO_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr std::uint8_t kLevel = 10;

struct Buffers {
  explicit Buffers(int depth)
      : source(bench::Photo(bench::kPhotoWidth, bench::kPhotoHeight,
                            static_cast<std::uint32_t>(depth) / 8)),
        target(source.size()) {}
  std::vector<std::uint8_t> source;
  std::vector<std::uint8_t> target;
};

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * bench::kPhotoWidth * bench::kPhotoHeight);
}

void Copy(benchmark::State& state) {
  Buffers buffers(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::memcpy(buffers.target.data(), buffers.source.data(), buffers.source.size());
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
BENCHMARK(Copy)->Arg(8)->Arg(24)->Unit(benchmark::kMillisecond);

void Sharpness(benchmark::State& state) {
  Buffers buffers(static_cast<int>(state.range(0)));
  const bool inPlace = state.range(1) != 0;
  for (auto _ : state) {
    const int code = ImgSharpnessAdjust(
        inPlace ? buffers.target.data() : buffers.source.data(), buffers.target.data(),
        bench::kPhotoWidth, bench::kPhotoHeight, static_cast<std::uint8_t>(state.range(0)), kLevel);
    if (code != 0) state.SkipWithError("sharpness failed");
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
BENCHMARK(Sharpness)
    ->ArgNames({"depth", "in_place"})
    ->ArgsProduct({{8, 24}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

#ifdef ORVO_HAVE_OPENCV
cv::Mat Kernel() {
  const float a = -0.1F;
  const float b = 0.4F;
  return (cv::Mat_<float>(5, 5) << a, a, a, a, a, a, 0, b, 0, a, a, b, 1, b, a, a, 0, b, 0, a, a, a,
          a, a, a);
}

void PeerFilter(benchmark::State& state) {
  cv::setNumThreads(1);
  Buffers buffers(static_cast<int>(state.range(0)));
  const int type = state.range(0) == 8 ? CV_8UC1 : CV_8UC3;
  const cv::Mat source(bench::kPhotoHeight, bench::kPhotoWidth, type, buffers.source.data());
  cv::Mat target(bench::kPhotoHeight, bench::kPhotoWidth, type, buffers.target.data());
  const cv::Mat kernel = Kernel();
  for (auto _ : state) {
    if (state.range(0) == 8) {
      cv::filter2D(source, target, -1, kernel);
    } else {
      // Equal work on colour: luma filtered, its change added to each channel.
      cv::Mat gray;
      cv::Mat filtered;
      cv::Mat change;
      cv::Mat changes;
      cv::cvtColor(source, gray, cv::COLOR_BGR2GRAY);
      cv::filter2D(gray, filtered, CV_16S, kernel);
      cv::subtract(filtered, gray, change, cv::noArray(), CV_16S);
      cv::merge(std::vector<cv::Mat>{change, change, change}, changes);
      cv::add(source, changes, target, cv::noArray(), CV_8U);
    }
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
BENCHMARK(PeerFilter)->Arg(8)->Arg(24)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
