// The filter of descreen and the search of auto-trim against their plain forms.
#include "imaging/descreen/descreen_filter.h"
#include "imaging/plain_image.h"
#include "imaging/trim/trim_search.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using plain::Bytes;
using plain::Image;

// The windows once more, one digit an exponent.
const char* const kExponents[] = {
    "100 121 001", "21000 10110 02320 01101 00012",
    "3210000 2101110 1023210 0234320 0123201 0111012 0000123",
    "321000000 221001110 110022210 000343210 023454320 012343100 012220011 011100122 000000123"};

// The mean over those samples of the window that the image has, its last row and column left out.
void FilterPlainly(const std::uint8_t* source, std::uint8_t* target, const Image& image,
                   int level) {
  const int channels = image.depth / 8;
  const int side = 3 + 2 * level;
  const auto width = static_cast<int>(image.width);
  const auto height = static_cast<int>(image.height);
  const auto at = [&](int x, int y, int c) {
    return image.stride() * static_cast<std::size_t>(y) +
           static_cast<std::size_t>(x * channels + c);
  };
  for (int i = 0; i < width * height * channels; ++i) {
    const int x = i / channels % width;
    const int y = i / channels / width;
    unsigned sum = 0;
    unsigned weights = 0;
    for (int k = 0; k < side * side; ++k) {
      const int column = x + k % side - side / 2;
      const int row = y + k / side - side / 2;
      if (column < 0 || row < 0 || column >= width - 1 || row >= height - 1) continue;
      const int exponent = kExponents[level][k / side * (side + 1) + k % side] - '0';
      sum += static_cast<unsigned>(source[at(column, row, i % channels)]) << exponent;
      weights += 1U << exponent;
    }
    if (weights != 0) target[at(x, y, i % channels)] = static_cast<std::uint8_t>(sum / weights);
  }
}

TEST(Descreen, EqualsThePlainForm) {
  unsigned seed = 255;  // white, for flat rows
  const auto expectReference = [&](const Image& image, int content, unsigned level) {
    SCOPED_TRACE(image.name() + ", level " + std::to_string(level));
    plain::ExpectSame(
        image, plain::Fill(image, content, seed),
        [&](const std::uint8_t* from, std::uint8_t* to) {
          const auto height = static_cast<std::int32_t>(image.height);
          DescreenFilter filter({from, to, image.stride(), static_cast<std::int32_t>(image.width),
                                 height, image.depth / 8},
                                level);
          PlatformFailAllocation(1);
          EXPECT_FALSE(filter.allocate());
          ASSERT_TRUE(filter.allocate());
          for (std::int32_t y = 0; y < height; ++y) filter.filterRow(y);
        },
        [&](const std::uint8_t* from, std::uint8_t* to) {
          FilterPlainly(from, to, image, static_cast<int>(level));
        });
  };
  for (const int depth : {8, 24}) {
    for (unsigned level = 0; level <= kMostDescreenLevel; ++level) {
      for (const int content : {plain::kFlat, plain::kSteps, plain::kSoft}) {
        expectReference({70, 31, depth}, content, level);
      }
      for (std::uint32_t width = 1; width <= 40; ++width) {
        for (const std::uint32_t height : {1U, 2U, 3U, 9U, 10U, 21U}) {
          seed += 256;
          expectReference({width, height, depth}, plain::kNoise, level);
        }
      }
    }
  }
}

// --- Trim ----------------------------------------------------------------------------------------

// The four walks as they are defined, one pixel at a time.
RECT MeasurePlainly(const TrimPage& page, int limit, RECT r) {
  const int w = page.width;
  const int h = page.height;
  const int k = page.run;
  const int m = page.channels != 1 ? 0 : w < 10 || h < 10 ? 1 : 10;
  int run = 0;
  // Adds a pixel to the run; true when the run is long enough.
  const auto add = [&](int x, int y) {
    const std::uint8_t* const p =
        page.rows + page.stride * static_cast<std::size_t>(y) + x * page.channels;
    const bool dark = std::any_of(p, p + page.channels, [&](int byte) { return byte <= limit; });
    run = dark ? run + 1 : 0;
    return dark && run >= k;
  };
  const auto inRow = [&](int y) {
    run = 0;
    for (int x = m; x < w - m; ++x) {
      if (add(x, y)) return true;
    }
    return false;
  };
  const auto inColumn = [&](int x) {
    run = 0;
    for (int y = r.top; y < r.bottom; ++y) {
      if (add(x, y)) return true;
    }
    return false;
  };
  int at = m;
  while (at < h - m && !inRow(at)) ++at;
  if (at < h - m) r.top = at >= k ? at - k : at;
  for (at = h - m - 1; at > r.top && !inRow(at);) --at;
  if (at > r.top) r.bottom = at < h - k ? at + k : at;
  for (at = m; at < w - m && !inColumn(at);) ++at;
  if (at < w - m) r.left = at >= k ? at - k : at;
  for (at = w - m - 1; at > r.left && !inColumn(at);) --at;
  if (at > r.left) r.right = at < w - k ? at + k : at;
  return r;
}

// Light pages with some dark blots, among them ones as dark as the limit; some are wider than what
// one look at a row takes in.
TEST(Trim, EqualsThePlainForm) {
  std::mt19937 random(1);
  const auto upTo = [&](std::size_t most) { return random() % (most + 1); };
  for (int round = 0; round < 2400; ++round) {
    const int channels = round % 2 == 0 ? 1 : 3;
    const Image image{static_cast<std::uint32_t>(1 + upTo(round % 20 < 2 ? 1500 : 70)),
                      static_cast<std::uint32_t>(1 + upTo(60)), 8 * channels};
    const std::size_t stride = image.stride();
    const auto limit = static_cast<std::uint8_t>(25 + upTo(205));
    Bytes rows(stride * image.height);
    for (std::uint8_t& byte : rows) byte = static_cast<std::uint8_t>(limit + 1 + upTo(2));
    for (std::size_t blots = upTo(4); blots > 0; --blots) {
      const std::size_t left = upTo(stride - 1);
      const std::size_t end = std::min(stride, left + 1 + upTo(60));
      const auto tone = static_cast<std::uint8_t>(limit - upTo(1));
      for (std::size_t y = upTo(image.height - 1), n = upTo(9); y < image.height && n > 0;
           ++y, --n) {
        std::fill(&rows[y * stride + left], &rows[y * stride] + end, tone);
      }
    }
    const int runs[] = {0, 1, 3, 12, 24};
    const TrimPage page{rows.data(),
                        stride,
                        static_cast<std::int32_t>(image.width),
                        static_cast<std::int32_t>(image.height),
                        channels,
                        runs[upTo(4)]};
    const RECT start = upTo(1) == 0 ? RECT{0, 0, 1, 1} : RECT{0, 0, page.width, page.height};
    RECT got = start;
    MeasureContent(page, limit, got);
    const RECT expected = MeasurePlainly(page, limit, start);
    const auto sides = [](const RECT& r) { return std::array{r.left, r.top, r.right, r.bottom}; };
    ASSERT_EQ(sides(got), sides(expected)) << image.name() << ", run " << page.run;
  }
}

}  // namespace
