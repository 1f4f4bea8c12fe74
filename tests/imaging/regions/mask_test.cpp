// The page at its reduced size: every depth, every kind of header, and what counts as dark.
#include "imaging/regions/mask.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>

#include "methods/page_image.h"

using namespace orvo;

namespace {

// A channel's bits, highest first, repeated until there are 8.
int ToneOf(std::uint32_t pixel, std::uint32_t mask) {
  std::vector<int> bits;
  for (int bit = 31; bit >= 0; --bit) {
    if ((mask >> bit & 1U) != 0) bits.push_back(static_cast<int>(pixel >> bit & 1U));
  }
  int tone = 0;
  for (std::size_t k = 0; k < 8 && !bits.empty(); ++k) tone = tone * 2 + bits[k % bits.size()];
  return tone;
}

// Red, green, blue; y from the top.
std::array<int, 3> ColorAt(const SourceImage& image, int x, int y) {
  const auto at = static_cast<std::size_t>(x);
  const std::uint8_t* const row =
      image.rows + image.stride * static_cast<std::size_t>(image.height - 1 - y);
  if (image.depth <= 8) {
    const int perByte = 8 / image.depth;
    const int shift = 8 - image.depth * (x % perByte + 1);
    const int index = row[x / perByte] >> shift & ((1 << image.depth) - 1);
    const std::uint8_t* const color = image.palette + 4 * index;
    return {color[2], color[1], color[0]};
  }
  const std::size_t bytes = static_cast<std::size_t>(image.depth) / 8;
  std::uint32_t pixel = 0;
  std::memcpy(&pixel, row + at * bytes, bytes);
  return {ToneOf(pixel, image.masks.red), ToneOf(pixel, image.masks.green),
          ToneOf(pixel, image.masks.blue)};
}

// Pixel by pixel.
Mask ReducePlainly(const SourceImage& image, int whiteLevel) {
  const double scale = std::min(image.width, image.height) * 0.005 + 1.0;
  Mask mask{static_cast<int>(image.width / scale), static_cast<int>(image.height / scale), {}};
  std::vector<std::array<int, 3>> colors(mask.index(0, mask.height), {255, 255, 255});
  for (int y = 0; !colors.empty() && y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      auto& combined =
          colors[mask.index(x * mask.width / image.width, y * mask.height / image.height)];
      const std::array<int, 3> color = ColorAt(image, x, y);
      for (std::size_t c = 0; c < 3; ++c) combined[c] &= color[c];
    }
  }
  for (const auto& [red, green, blue] : colors) {
    mask.bytes.push_back((4 * red + 3 * green + blue) / 8 < whiteLevel ? 1 : 0);
  }
  return mask;
}

struct Kind {
  int depth;
  ChannelMasks masks;
  bool grayRamp = false;
};

// Mostly light noise, so that a mask pixel can stay light at all.
TEST(Mask, EveryKindOfPixelEqualsThePlainForm) {
  const Kind kKinds[] = {{1, {}},
                         {4, {}},
                         {8, {}},
                         {8, {}, true},
                         {16, {0x7C00, 0x03E0, 0x001F}},
                         {16, {0xF800, 0x07E0, 0x001F}},
                         {16, {0x0F00, 0x00F0, 0x000F}},
                         {16, {0xC000, 0x2000, 0}},
                         {24, {0xFF0000, 0xFF00, 0xFF}},
                         {32, {0xFF0000, 0xFF00, 0xFF}},
                         {32, {0xFF, 0xFF00, 0xFF0000}},
                         {32, {0x3FF00000, 0xFFC00, 0x3FF}}};
  const std::array<int, 2> kSizes[] = {{1, 9}, {2, 2},   {3, 40},    {17, 16},  {40, 31},
                                       {9, 1}, {99, 65}, {150, 130}, {340, 41}, {201, 301}};
  std::mt19937 random(7);
  std::ptrdiff_t dark = 0;
  std::ptrdiff_t all = 0;
  for (const Kind& kind : kKinds) {
    for (const auto& [width, height] : kSizes) {
      const auto stride = static_cast<std::size_t>((width * kind.depth + 31) / 32 * 4);
      std::vector<std::uint8_t> rows(stride * static_cast<std::size_t>(height), 0xFF);
      for (std::uint8_t& byte : rows) {
        if (random() % 64 == 0) byte = static_cast<std::uint8_t>(random());
      }
      std::vector<std::uint8_t> palette;
      for (unsigned i = 0; i < 1024; ++i) {
        palette.push_back(static_cast<std::uint8_t>(kind.grayRamp ? i / 4 : random()));
      }
      std::fill_n(&palette[((std::size_t{1} << std::min(kind.depth, 8)) - 1) * 4], 4,
                  std::uint8_t{0xFF});
      const SourceImage image{width,      height,      kind.depth, palette.data(),
                              kind.masks, rows.data(), stride};
      for (const int level : {120, 250}) {
        const Mask expected = ReducePlainly(image, level);
        const Mask got = ReduceToMask(image, MaskScale(image), level);
        ASSERT_EQ((std::array{got.width, got.height}),
                  (std::array{expected.width, expected.height}));
        ASSERT_EQ(got.bytes, expected.bytes)
            << width << " x " << height << " x " << kind.depth << ", level " << level;
        if (level == 250) dark += std::count(got.bytes.begin(), got.bytes.end(), 1);
        if (level == 250) all += std::ssize(got.bytes);
      }
    }
  }
  EXPECT_TRUE(dark > 10000 && all - dark > 10000) << dark << " of " << all;
}

// --- Blocks --------------------------------------------------------------------------------------

// A block of 5 x 3 pixels with this header, long enough for most, and marks where fields may lie.
std::vector<std::uint8_t> BlockWith(int depth, std::uint32_t compression, std::uint32_t size) {
  std::vector<std::uint8_t> block(70000);
  BITMAPINFOHEADER header{};
  header.biSize = size;
  header.biWidth = 5;
  header.biHeight = 3;
  header.biBitCount = static_cast<std::uint16_t>(depth);
  header.biCompression = compression;
  std::memcpy(block.data(), &header, sizeof header);
  const std::uint32_t fields[] = {0xF00F800, 0x7E0, 0x1F};
  std::memcpy(&block[sizeof header], fields, sizeof fields);
  return block;
}

TEST(SourceImage, TellsWherePixelsLieAndWhatTheyMean) {
  const struct {
    int depth;
    std::uint32_t compression;
    std::uint32_t size;
    std::ptrdiff_t palette;  // 0 for none
    std::ptrdiff_t rows;
    std::size_t stride;
    std::array<std::uint32_t, 3> masks;
  } kRows[] = {{1, BI_RGB, 40, 40, 48, 4, {}},
               {4, BI_RGB, 40, 40, 104, 4, {}},
               {8, BI_RGB, 40, 40, 1064, 8, {}},
               {8, BI_RGB, 124, 124, 1148, 8, {}},
               {8, BI_RGB, 65536 + 124, 124, 1148, 8, {}},
               {8, BI_RGB, 65000, 40, 1064, 8, {}},
               {8, BI_RGB, 0, 40, 1064, 8, {}},
               {8, BI_BITFIELDS, 40, 52, 1076, 8, {}},
               {16, BI_RGB, 40, 0, 40, 12, {0x7C00, 0x3E0, 0x1F}},
               {24, BI_RGB, 124, 0, 124, 16, {0xFF0000, 0xFF00, 0xFF}},
               {24, BI_BITFIELDS, 40, 0, 52, 16, {0xFF0000, 0xFF00, 0xFF}},
               {32, BI_RGB, 40, 0, 40, 20, {0xFF0000, 0xFF00, 0xFF}},
               {16, BI_BITFIELDS, 40, 0, 52, 12, {0xF800, 0x7E0, 0x1F}},
               {32, BI_BITFIELDS, 40, 0, 52, 20, {0xF00F800, 0x7E0, 0x1F}}};
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.depth << " bits, " << row.size);
    const std::vector<std::uint8_t> block = BlockWith(row.depth, row.compression, row.size);
    const std::size_t bytes = static_cast<std::size_t>(row.rows) + 3 * row.stride;
    EXPECT_FALSE(DescribeImage(block.data(), bytes - 1)) << "the last byte is missing";
    const auto image = DescribeImage(block.data(), bytes);
    ASSERT_TRUE(image);
    EXPECT_EQ((std::array{image->width, image->height, image->depth}),
              (std::array{5, 3, row.depth}));
    EXPECT_EQ(image->palette, row.palette == 0 ? nullptr : block.data() + row.palette);
    EXPECT_EQ(image->rows - block.data(), row.rows);
    EXPECT_EQ(image->stride, row.stride);
    if (row.depth > 8) {
      EXPECT_EQ((std::array{image->masks.red, image->masks.green, image->masks.blue}), row.masks);
    }
  }
}

TEST(SourceImage, BlocksThatCannotBeReadAreNone) {
  const auto isRead = [](const std::vector<std::uint8_t>& block) {
    return DescribeImage(block.data(), block.size()).has_value();
  };
  EXPECT_TRUE(isRead(BlockWith(8, BI_RGB, 40)));
  for (const int depth : {0, 2, 15, 64}) EXPECT_FALSE(isRead(BlockWith(depth, BI_RGB, 40)));
  for (const int compression : {1, 2, 4}) {
    EXPECT_FALSE(isRead(BlockWith(8, static_cast<std::uint32_t>(compression), 40)));
  }
  EXPECT_FALSE(DescribeImage(nullptr, 100));
  EXPECT_FALSE(DescribeImage(BlockWith(8, BI_RGB, 40).data(), sizeof(BITMAPINFOHEADER) - 1));
}

}  // namespace
