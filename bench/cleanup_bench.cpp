// Descreen of a 12-megapixel picture and auto-trim of A4 pages at 300 dots per inch, beside a
// peer's work on the same pixels.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "imaging/descreen/descreen_filter.h"
#include "imaging/trim/trim_search.h"
#include "pictures.h"

#ifdef ORVO_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "imaging/descreen/descreen_weights.h"
#endif

using namespace orvo;

namespace {

constexpr std::int32_t kPageWidth = 2480;
constexpr std::int32_t kPageHeight = 3508;
constexpr std::int32_t kRunAt300Dpi = 12;

void Descreen(benchmark::State& state) {
  const auto channels = static_cast<std::int32_t>(state.range(1)) / 8;
  const auto source =
      bench::Photo(bench::kPhotoWidth, bench::kPhotoHeight, static_cast<std::uint32_t>(channels));
  std::vector<std::uint8_t> target(source);
  const bool inPlace = state.range(2) != 0;
  DescreenImage image{.source = inPlace ? target.data() : source.data(),
                      .target = target.data(),
                      .stride = source.size() / bench::kPhotoHeight,
                      .width = static_cast<std::int32_t>(bench::kPhotoWidth),
                      .height = static_cast<std::int32_t>(bench::kPhotoHeight),
                      .channels = channels};
  for (auto _ : state) {
    DescreenFilter filter(image, static_cast<std::uint32_t>(state.range(0)));
    if (!filter.allocate()) state.SkipWithError("no memory");
    for (std::int32_t y = 0; y < image.height; ++y) filter.filterRow(y);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * bench::kPhotoWidth * bench::kPhotoHeight);
}
BENCHMARK(Descreen)
    ->ArgNames({"level", "depth", "in_place"})
    ->ArgsProduct({{0, 1, 2, 3}, {8, 24}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// A white page, with a block of dark lines in its middle or blank.
std::vector<std::uint8_t> Page(std::int32_t channels, bool blank) {
  const std::size_t stride = (static_cast<std::size_t>(kPageWidth * channels) + 3) / 4 * 4;
  std::vector<std::uint8_t> page(stride * kPageHeight, 250);
  for (std::int32_t y = 300; !blank && y < kPageHeight - 300; ++y) {
    if (y % 40 > 12) continue;
    std::fill_n(page.begin() + static_cast<std::ptrdiff_t>(stride * static_cast<std::size_t>(y)) +
                    300 * channels,
                (kPageWidth - 600) * channels, std::uint8_t{30});
  }
  return page;
}

// One measurement; the search of a blank page makes eleven from a threshold of 100.
void TrimMeasurement(benchmark::State& state) {
  const auto channels = static_cast<std::int32_t>(state.range(0)) / 8;
  const auto rows = Page(channels, state.range(1) != 0);
  const TrimPage page{.rows = rows.data(),
                      .stride = rows.size() / kPageHeight,
                      .width = kPageWidth,
                      .height = kPageHeight,
                      .channels = channels,
                      .run = kRunAt300Dpi};
  for (auto _ : state) {
    RECT rect{0, 0, 1, 1};
    MeasureContent(page, 155, rect);
    benchmark::DoNotOptimize(rect);
  }
  state.SetItemsProcessed(state.iterations() * kPageWidth * kPageHeight);
}
BENCHMARK(TrimMeasurement)
    ->ArgNames({"depth", "blank"})
    ->ArgsProduct({{8, 24}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

#ifdef ORVO_HAVE_OPENCV
void PeerFilter(benchmark::State& state) {
  cv::setNumThreads(1);
  const auto level = static_cast<std::uint32_t>(state.range(0));
  const int type = state.range(1) == 8 ? CV_8UC1 : CV_8UC3;
  auto pixels = bench::Photo(bench::kPhotoWidth, bench::kPhotoHeight,
                             static_cast<std::uint32_t>(state.range(1)) / 8);
  const cv::Mat source(bench::kPhotoHeight, bench::kPhotoWidth, type, pixels.data());
  cv::Mat target;
  const int side = DescreenSide(level);
  cv::Mat kernel(side, side, CV_32F);
  for (int i = 0; i < side * side; ++i) {
    kernel.at<float>(i / side, i % side) = static_cast<float>(1U << DescreenExponents(level)[i]) /
                                           static_cast<float>(DescreenWeightSum(level));
  }
  for (auto _ : state) cv::filter2D(source, target, -1, kernel);
  state.SetItemsProcessed(state.iterations() * bench::kPhotoWidth * bench::kPhotoHeight);
}
BENCHMARK(PeerFilter)
    ->ArgNames({"level", "depth"})
    ->ArgsProduct({{0, 1, 2, 3}, {8, 24}})
    ->Unit(benchmark::kMillisecond);

void PeerBounds(benchmark::State& state) {
  cv::setNumThreads(1);
  const auto channels = static_cast<std::int32_t>(state.range(0)) / 8;
  auto rows = Page(channels, state.range(1) != 0);
  const cv::Mat page(kPageHeight, kPageWidth, channels == 1 ? CV_8UC1 : CV_8UC3, rows.data());
  for (auto _ : state) {
    cv::Mat gray = page;
    if (channels == 3) cv::cvtColor(page, gray, cv::COLOR_BGR2GRAY);
    cv::Mat dark;
    cv::threshold(gray, dark, 155, 255, cv::THRESH_BINARY_INV);
    benchmark::DoNotOptimize(cv::boundingRect(dark));
  }
  state.SetItemsProcessed(state.iterations() * kPageWidth * kPageHeight);
}
BENCHMARK(PeerBounds)
    ->ArgNames({"depth", "blank"})
    ->ArgsProduct({{8, 24}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
#endif

}  // namespace
