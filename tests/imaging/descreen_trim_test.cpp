// The filter of descreen and the search of auto-trim on small pictures.
#include "imaging/descreen/descreen_filter.h"
#include "imaging/plain_image.h"
#include "imaging/trim/trim_search.h"
#include "platform/fault_injection.h"

using namespace orvo;

namespace {

using plain::Image;

TEST(Descreen, AllSizesDepthsAndLevels) {
  plain::CheckSum sum;
  unsigned seed = 255;  // white, for flat rows
  for (const int depth : {8, 24}) {
    for (unsigned level = 0; level <= kMostDescreenLevel; ++level) {
      const auto add = [&](std::int32_t width, std::int32_t height, int content) {
        const Image image{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                          depth};
        sum.addBoth(
            plain::Fill(image, content, seed), [&](const std::uint8_t* from, std::uint8_t* to) {
              DescreenFilter filter({from, to, image.stride(), width, height, depth / 8}, level);
              PlatformFailAllocation(1);
              EXPECT_FALSE(filter.allocate());
              EXPECT_TRUE(filter.allocate());
              for (std::int32_t y = 0; y < height; ++y) filter.filterRow(y);
              return 0;
            });
      };
      for (const int content : {plain::kFlat, plain::kSteps, plain::kSoft}) add(70, 31, content);
      for (std::int32_t width = 1; width <= 40; ++width) {
        for (const std::int32_t height : {1, 2, 3, 9, 10, 21}) {
          seed += 256;
          add(width, height, plain::kNoise);
        }
      }
    }
  }
  EXPECT_EQ(sum.value(), 4391093438601267490U);
}

// Light pages with some dark blots, among them ones as dark as the limit; some are wider than what
// one look at a row takes in.
TEST(Trim, PagesWithBlots) {
  plain::CheckSum sum;
  std::mt19937 random(1);
  const auto upTo = [&](std::size_t most) { return random() % (most + 1); };
  for (int round = 0; round < 2400; ++round) {
    const int channels = round % 2 == 0 ? 1 : 3;
    const Image image{static_cast<std::uint32_t>(1 + upTo(round % 20 < 2 ? 1500 : 70)),
                      static_cast<std::uint32_t>(1 + upTo(60)), 8 * channels};
    const std::size_t stride = image.stride();
    const auto limit = static_cast<std::uint8_t>(25 + upTo(205));
    plain::Bytes rows(stride * image.height);
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
    RECT rect = upTo(1) == 0 ? RECT{0, 0, 1, 1} : RECT{0, 0, page.width, page.height};
    MeasureContent(page, limit, rect);
    sum.addSides(rect);
  }
  EXPECT_EQ(sum.value(), 5926176953171815592U);
}

}  // namespace
