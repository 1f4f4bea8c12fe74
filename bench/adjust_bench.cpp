// The adjust functions on a 12-megapixel photograph, beside a plain copy of it and beside a peer's
// equal work on the same pixels.
#include <benchmark/benchmark.h>

#include <cstring>

#include "imaging/adjust/exposure.h"
#include "imaging/adjust/histogram.h"
#include "imaging/adjust/sharpness.h"
#include "pictures.h"

#ifdef ORVO_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

using namespace orvo;

namespace {

constexpr std::uint8_t kLevel = 10;

// Source and target of one benchmark; its first argument is the depth.
struct Buffers {
  explicit Buffers(const benchmark::State& state)
      : depth(static_cast<std::uint8_t>(state.range(0))),
        source(bench::Photo(bench::kPhotoWidth, bench::kPhotoHeight, depth / 8U)),
        target(source) {}
  std::uint8_t depth;
  std::vector<std::uint8_t> source;
  std::vector<std::uint8_t> target;
};

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * bench::kPhotoWidth * bench::kPhotoHeight);
}

void Copy(benchmark::State& state) {
  Buffers buffers(state);
  for (auto _ : state) {
    std::memcpy(buffers.target.data(), buffers.source.data(), buffers.source.size());
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
BENCHMARK(Copy)->ArgName("depth")->Arg(8)->Arg(24)->Unit(benchmark::kMillisecond);

using Adjust = int (*)(const std::uint8_t*, std::uint8_t*, std::uint32_t, std::uint32_t,
                       std::uint8_t, std::uint8_t) noexcept;

void Run(benchmark::State& state, Adjust adjust) {
  Buffers buffers(state);
  const bool inPlace = state.range(1) != 0;
  for (auto _ : state) {
    const int code =
        adjust(inPlace ? buffers.target.data() : buffers.source.data(), buffers.target.data(),
               bench::kPhotoWidth, bench::kPhotoHeight, buffers.depth, kLevel);
    if (code != 0) state.SkipWithError("the adjustment failed");
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
#define ORVO_ADJUST_BENCHMARK(name, function) \
  BENCHMARK_CAPTURE(Run, name, function)      \
      ->ArgNames({"depth", "in_place"})       \
      ->ArgsProduct({{8, 24}, {0, 1}})        \
      ->Unit(benchmark::kMillisecond)
ORVO_ADJUST_BENCHMARK(sharpness, ImgSharpnessAdjust);
ORVO_ADJUST_BENCHMARK(histogram, ImgHistogramAdjust);
ORVO_ADJUST_BENCHMARK(exposure, ImgExposureAdjust);

#ifdef ORVO_HAVE_OPENCV
cv::Mat Kernel() {
  const float a = -0.1F;
  const float b = 0.4F;
  return (cv::Mat_<float>(5, 5) << a, a, a, a, a, a, 0, b, 0, a, a, b, 1, b, a, a, 0, b, 0, a, a, a,
          a, a, a);
}

using PeerWork = void (*)(const cv::Mat& source, cv::Mat& target);

void PeerSharpness(const cv::Mat& source, cv::Mat& target) {
  if (source.channels() == 1) {
    cv::filter2D(source, target, -1, Kernel());
    return;
  }
  // Luma filtered, its change added to each channel.
  cv::Mat gray;
  cv::Mat filtered;
  cv::Mat change;
  cv::Mat changes;
  cv::cvtColor(source, gray, cv::COLOR_BGR2GRAY);
  cv::filter2D(gray, filtered, CV_16S, Kernel());
  cv::subtract(filtered, gray, change, cv::noArray(), CV_16S);
  cv::merge(std::vector<cv::Mat>{change, change, change}, changes);
  cv::add(source, changes, target, cv::noArray(), CV_8U);
}

// A tone operation on gray pixels, or on the luma of colours.
template <class ToneWork>
void OnTones(const cv::Mat& source, cv::Mat& target, const ToneWork& work) {
  if (source.channels() == 1) {
    work(source, target);
    return;
  }
  cv::Mat ycrcb;
  std::vector<cv::Mat> planes;
  cv::cvtColor(source, ycrcb, cv::COLOR_BGR2YCrCb);
  cv::split(ycrcb, planes);
  cv::Mat tones;
  work(planes[0], tones);
  planes[0] = tones;
  cv::merge(planes, ycrcb);
  cv::cvtColor(ycrcb, target, cv::COLOR_YCrCb2BGR);
}

void PeerHistogram(const cv::Mat& source, cv::Mat& target) {
  OnTones(source, target, [](const cv::Mat& tones, cv::Mat& mapped) {
    cv::Mat histogram;
    const int size = 256;
    const float range[] = {0, 256};
    const float* ranges = range;
    cv::calcHist(&tones, 1, nullptr, cv::noArray(), histogram, 1, &size, &ranges);
    cv::Mat table(1, 256, CV_8U);
    for (int i = 0; i < 256; ++i) {
      table.at<std::uint8_t>(i) = cv::saturate_cast<std::uint8_t>((i - 20) * 255 / 215);
    }
    cv::LUT(tones, table, mapped);
  });
}

void PeerExposure(const cv::Mat& source, cv::Mat& target) {
  OnTones(source, target, [](const cv::Mat& tones, cv::Mat& mapped) {
    cv::createCLAHE(4.0, cv::Size(32, 24))->apply(tones, mapped);
  });
}

void Peer(benchmark::State& state, PeerWork work) {
  cv::setNumThreads(1);
  Buffers buffers(state);
  const int type = buffers.depth == 8 ? CV_8UC1 : CV_8UC3;
  const cv::Mat source(bench::kPhotoHeight, bench::kPhotoWidth, type, buffers.source.data());
  cv::Mat target(bench::kPhotoHeight, bench::kPhotoWidth, type, buffers.target.data());
  for (auto _ : state) {
    work(source, target);
    benchmark::ClobberMemory();
  }
  CountPixels(state);
}
#define ORVO_PEER_BENCHMARK(name, work) \
  BENCHMARK_CAPTURE(Peer, name, work)   \
      ->ArgName("depth")                \
      ->Arg(8)                          \
      ->Arg(24)                         \
      ->Unit(benchmark::kMillisecond)
ORVO_PEER_BENCHMARK(filter2D, PeerSharpness);
ORVO_PEER_BENCHMARK(calcHist_LUT, PeerHistogram);
ORVO_PEER_BENCHMARK(CLAHE, PeerExposure);
#endif

}  // namespace
