// The page at its reduced size: every depth, every kind of header, and what counts as dark.
#include "imaging/regions/mask.h"

#include <array>
#include <cstring>

#include "imaging/plain_image.h"
#include "methods/page_image.h"

using namespace orvo;

namespace {

// Mostly light noise, so that a mask pixel can stay light at all.
TEST(Mask, EveryKindOfPixelAndSize) {
  const struct {
    int depth;
    ChannelMasks masks;
    bool grayRamp = false;
  } kKinds[] = {{1, {}},
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
  plain::CheckSum sum;
  for (const auto& kind : kKinds) {
    for (const auto& [width, height] : kSizes) {
      const auto stride = static_cast<std::size_t>((width * kind.depth + 31) / 32 * 4);
      plain::Bytes rows(stride * static_cast<std::size_t>(height), 0xFF);
      for (std::uint8_t& byte : rows) {
        if (random() % 64 == 0) byte = static_cast<std::uint8_t>(random());
      }
      plain::Bytes palette;
      for (unsigned i = 0; i < 1024; ++i) {
        palette.push_back(static_cast<std::uint8_t>(kind.grayRamp ? i / 4 : random()));
      }
      std::fill_n(&palette[((std::size_t{1} << std::min(kind.depth, 8)) - 1) * 4], 4,
                  std::uint8_t{0xFF});
      const SourceImage image{width,      height,      kind.depth, palette.data(),
                              kind.masks, rows.data(), stride};
      for (const int level : {120, 250}) {
        const Mask mask = ReduceToMask(image, MaskScale(image), level);
        sum.add(mask.width, mask.height);
        sum.addAll(mask.bytes);
      }
    }
  }
  EXPECT_EQ(sum.value(), 6218552819601273880U);
}

// Grays in the palette's order are their own indexes; one entry out of order is a palette again.
TEST(Mask, OneStrangeEntryIsSeen) {
  plain::Bytes rows(64 * 64, 0);
  plain::Bytes palette;
  for (unsigned i = 0; i < 1024; ++i) palette.push_back(static_cast<std::uint8_t>(i / 4));
  for (const int black : {0, 255}) {
    std::fill_n(palette.begin(), 4, static_cast<std::uint8_t>(black));
    const SourceImage image{64, 64, 8, palette.data(), {}, rows.data(), 64};
    const Mask mask = ReduceToMask(image, MaskScale(image), 120);
    EXPECT_EQ(std::ranges::count(mask.bytes, mask.bytes[0]), std::ranges::ssize(mask.bytes));
    plain::Bytes other(rows.size(), 128);
    const SourceImage light{64, 64, 8, palette.data(), {}, other.data(), 64};
    EXPECT_EQ(ReduceToMask(light, MaskScale(light), 120).bytes == mask.bytes, black == 255);
  }
}

// --- Blocks --------------------------------------------------------------------------------------

// A block of 5 x 3 pixels with this header, long enough for most, and marks where fields may lie.
plain::Bytes BlockWith(int depth, std::uint32_t compression, std::uint32_t size) {
  plain::Bytes block(70000);
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
    const plain::Bytes block = BlockWith(row.depth, row.compression, row.size);
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
  const auto isRead = [](const plain::Bytes& block) {
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
