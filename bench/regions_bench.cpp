// What lies on an A4 page at 300 dots per inch: a clean page, a page of text, and the worst case,
// a lattice of specks; beside a plain read of the same bytes. The skew of the text page beside a
// peer's.
#include <benchmark/benchmark.h>

#include <cstring>
#include <numeric>

#include <orvo/raii.h>

#include "imaging/regions/region_finder.h"
#include "methods/page_image.h"

#ifdef ORVO_HAVE_LEPTONICA
#include <leptonica/allheaders.h>
#endif

using namespace orvo;

namespace {

constexpr int kWidth = 2480;
constexpr int kHeight = 3508;

enum PageKind { kClean, kText, kSpecks };

// Whether a source pixel is dark.
bool IsDark(int kind, int x, int y) {
  if (kind == kClean) return false;
  if (kind == kSpecks) {
    // One mask pixel of every 3 by 3; each covers 13.4 source pixels.
    constexpr double kScale = 13.4;
    return static_cast<int>(x / kScale) % 3 == 0 && static_cast<int>(y / kScale) % 3 == 0;
  }
  // Lines of words, tilted by about 3 degrees.
  const int line = y + x / 19;
  const bool inPrint = x > 250 && x < 2230 && y > 300 && y < 3200;
  return inPrint && line % 58 < 26 && x % 230 < 190 && (x / 5 + line / 7) % 3 != 0;
}

orvo::OwnedDib Page(int kind, int depth) {
  orvo::OwnedDib page = orvo::NewDib(orvo::DibHeaderFor(kWidth, kHeight, depth));
  const orvo::LockedImage image(page.get());
  const std::size_t colors = orvo::DibPaletteBytes(depth) / 4;
  for (std::size_t i = 0; i < colors; ++i) {
    std::memset(image.bytes() + orvo::kDibHeaderBytes + 4 * i,
                static_cast<int>(i * 255 / (colors - 1)), 3);
  }
  for (int y = 0; y < kHeight; ++y) {
    std::uint8_t* const row = image.row(kHeight - 1 - y);
    for (int x = 0; x < kWidth; ++x) {
      if (IsDark(kind, x, y)) continue;
      if (depth == 1) {
        row[x / 8] = static_cast<std::uint8_t>(row[x / 8] | 0x80 >> x % 8);
      } else {
        std::memset(row + x * depth / 8, 0xFF, static_cast<std::size_t>(depth) / 8);
      }
    }
  }
  return page;
}

void CountPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void Read(benchmark::State& state) {
  const orvo::OwnedDib page = Page(kClean, static_cast<int>(state.range(0)));
  const orvo::BlockLock lock(page.get());
  const std::size_t words = lock.size() / sizeof(std::uint64_t);
  for (auto _ : state) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < words; ++i) {
      std::uint64_t word = 0;
      std::memcpy(&word, lock.bytes() + i * sizeof word, sizeof word);
      sum ^= word;
    }
    benchmark::DoNotOptimize(sum);
  }
  CountPixels(state);
}
BENCHMARK(Read)->ArgName("depth")->Arg(1)->Arg(8)->Arg(24)->Unit(benchmark::kMillisecond);

void FindRegions(benchmark::State& state) {
  const orvo::OwnedDib page =
      Page(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for (auto _ : state) {
    RegionFinder finder({.mergeReach = static_cast<int>(state.range(2)), .whiteLevel = 250});
    CapturePage(page.get(), finder);
    finder.Segment();
    benchmark::DoNotOptimize(finder.RegionCount());
  }
  CountPixels(state);
}
// Reaches of 2, 3 (every speck meets its neighbours) and 7 mask pixels.
BENCHMARK(FindRegions)
    ->ArgNames({"page", "depth", "reach"})
    ->ArgsProduct({{kClean}, {1, 4, 8, 24, 32}, {25}})
    ->ArgsProduct({{kText}, {8, 24}, {25}})
    ->ArgsProduct({{kSpecks}, {8}, {25, 40, 94}})
    ->Unit(benchmark::kMillisecond);

void Skew(benchmark::State& state) {
  const orvo::OwnedDib page = Page(kText, static_cast<int>(state.range(0)));
  for (auto _ : state) {
    RegionFinder finder;
    CapturePage(page.get(), finder);
    finder.SegmentForDeskew();
    if (finder.RegionCount() == 0) {
      state.SkipWithError("no region");
      break;
    }
    benchmark::DoNotOptimize(finder.SkewAngle());
  }
  CountPixels(state);
}
BENCHMARK(Skew)->ArgName("depth")->Arg(1)->Arg(8)->Arg(24)->Unit(benchmark::kMillisecond);

#ifdef ORVO_HAVE_LEPTONICA
// The peer counts in two values, so its page is already of one bit.
void PeerSkew(benchmark::State& state) {
  PIX* page = pixCreate(kWidth, kHeight, 1);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      if (IsDark(kText, x, y)) pixSetPixel(page, x, y, 1);
    }
  }
  for (auto _ : state) {
    float angle = 0;
    float confidence = 0;
    pixFindSkew(page, &angle, &confidence);
    benchmark::DoNotOptimize(angle);
  }
  pixDestroy(&page);
  CountPixels(state);
}
BENCHMARK(PeerSkew)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
