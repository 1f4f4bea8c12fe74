// The page at its reduced size: every depth, every kind of header, and what counts as dark.
#include <gtest/gtest.h>

#include "methods/page_image.h"
#include "plain_finder.h"
#include "support/pictures.h"

using namespace orvo;

namespace {

Mask Reduce(DibHandle handle, int whiteLevel) {
  const pictures::Locked image(handle);
  const auto source = DescribeImage(image.bytes(), GlobalSize(handle));
  return source ? ReduceToMask(*source, MaskScale(*source), whiteLevel) : Mask{};
}

// Mostly light noise, so that a mask pixel can stay light at all; the colours of palettes too.
orvo::OwnedDib LightNoise(int width, int height, int depth, bool grayRamp, unsigned seed) {
  orvo::OwnedDib page = grayRamp ? pictures::Noise(width, height, depth, seed)
                                 : pictures::NoiseInColor(width, height, depth, seed);
  const pictures::Locked image(page.get());
  std::mt19937 random(seed);
  for (std::size_t i = image.layout().pixelOffset; i < image.layout().totalBytes; ++i) {
    if (random() % 64 != 0) image.bytes()[i] = 0xFF;
  }
  return page;
}

TEST(Mask, EveryDepthEqualsThePlainForm) {
  const POINT kSizes[] = {{1, 9}, {2, 2},   {3, 40},    {17, 16},  {40, 31},
                          {9, 1}, {99, 65}, {150, 130}, {340, 41}, {201, 301}};
  int dark = 0;
  int light = 0;
  for (const int depth : {1, 4, 8, 16, 24, 32}) {
    for (const POINT& size : kSizes) {
      for (const bool grayRamp : {true, false}) {
        const orvo::OwnedDib page = LightNoise(size.x, size.y, depth, grayRamp, 7);
        for (const int level : {0, 120, 250, 256}) {
          const Mask expected = plain::MaskOf(page.get(), level);
          const Mask mask = Reduce(page.get(), level);
          ASSERT_EQ(mask.width, expected.width);
          ASSERT_EQ(mask.height, expected.height);
          ASSERT_EQ(mask.bytes, expected.bytes)
              << size.x << " x " << size.y << " x " << depth << ", level " << level;
          if (level == 250) {
            const auto count = std::count(mask.bytes.begin(), mask.bytes.end(), 1);
            dark += static_cast<int>(count);
            light += static_cast<int>(mask.bytes.size()) - static_cast<int>(count);
          }
        }
      }
    }
  }
  EXPECT_GT(dark, 10000);
  EXPECT_GT(light, 10000);
}

TEST(Mask, SizeFollowsTheShorterSide) {
  const struct {
    POINT source;
    POINT mask;
  } kRows[] = {{{1000, 1400}, {166, 233}},
               {{1, 300}, {0, 298}},
               {{100, 100}, {66, 66}},
               {{2, 10000}, {1, 9900}},
               {{60000, 3}, {59113, 2}}};
  for (const auto& row : kRows) {
    const orvo::OwnedDib page = pictures::Blank(row.source.x, row.source.y, 1);
    const Mask mask = Reduce(page.get(), 250);
    EXPECT_EQ(mask.width, row.mask.x);
    EXPECT_EQ(mask.height, row.mask.y);
    EXPECT_EQ(mask.bytes.size(), mask.index(0, mask.height));
  }
}

// A channel's bits, highest first, repeated until there are 8.
int ToneOf(std::uint32_t value, std::uint32_t mask) {
  std::vector<int> bits;
  for (int bit = 31; bit >= 0; --bit) {
    if ((mask >> bit & 1U) != 0) bits.push_back(static_cast<int>(value >> bit & 1U));
  }
  int tone = 0;
  for (std::size_t k = 0; k < 8 && !bits.empty(); ++k) tone = tone * 2 + bits[k % bits.size()];
  return tone;
}

// The same page with every channel taken out by hand, at 24 bits.
orvo::OwnedDib InColor(const SourceImage& image, const std::uint32_t (&masks)[3]) {
  orvo::OwnedDib colors = pictures::Blank(image.width, image.height, 24);
  const pictures::Locked target(colors.get());
  const std::size_t pixelBytes = static_cast<std::size_t>(image.depth) / 8;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      std::uint32_t value = 0;
      std::memcpy(&value,
                  image.rows + image.stride * static_cast<std::size_t>(y) +
                      pixelBytes * static_cast<std::size_t>(x),
                  pixelBytes);
      for (int channel = 0; channel < 3; ++channel) {
        target.row(y)[3 * x + 2 - channel] =
            static_cast<std::uint8_t>(ToneOf(value, masks[channel]));
      }
    }
  }
  return colors;
}

TEST(Mask, BitFieldsCarryTheChannels) {
  const struct {
    int depth;
    std::uint32_t masks[3];  // red, green, blue
  } kRows[] = {{16, {0x7C00, 0x03E0, 0x001F}},    {16, {0xF800, 0x07E0, 0x001F}},
               {16, {0x0F00, 0x00F0, 0x000F}},    {16, {0xC000, 0x2000, 0}},
               {32, {0xFF0000, 0xFF00, 0xFF}},    {32, {0xFF, 0xFF00, 0xFF0000}},
               {32, {0x3FF00000, 0xFFC00, 0x3FF}}};
  for (const auto& row : kRows) {
    std::vector<std::uint8_t> bytes =
        pictures::BytesOf(LightNoise(120, 90, row.depth, false, 3).get());
    std::uint8_t fields[sizeof row.masks];
    std::memcpy(&fields[0], &row.masks[0], sizeof fields);
    bytes.insert(bytes.begin() + orvo::kDibHeaderBytes, std::begin(fields), std::end(fields));
    bytes[offsetof(BITMAPINFOHEADER, biCompression)] = BI_BITFIELDS;
    const auto image = DescribeImage(bytes.data(), bytes.size());
    ASSERT_TRUE(image);
    EXPECT_EQ(ReduceToMask(*image, MaskScale(*image), 200).bytes,
              plain::MaskOf(InColor(*image, row.masks).get(), 200).bytes);
  }
}

TEST(Mask, RowsFollowTheSizeThatTheHeaderTells) {
  const orvo::OwnedDib page = LightNoise(60, 50, 8, false, 5);
  const Mask expected = plain::MaskOf(page.get(), 250);
  // Extra bytes of header, beside what the header says; the sum counts in 16 bits.
  const struct {
    std::size_t extra;
    std::uint32_t size;
  } kRows[] = {{0, 40}, {84, 124}, {84, 65536 + 124}, {0, 65536 + 40}, {0, 0}};
  for (const auto& row : kRows) {
    std::vector<std::uint8_t> bytes = pictures::BytesOf(page.get());
    bytes.insert(bytes.begin() + orvo::kDibHeaderBytes, row.extra, std::uint8_t{0x5A});
    std::memcpy(bytes.data(), &row.size, sizeof row.size);
    const auto image = DescribeImage(bytes.data(), bytes.size());
    ASSERT_TRUE(image);
    EXPECT_EQ(ReduceToMask(*image, MaskScale(*image), 250).bytes, expected.bytes);
    EXPECT_FALSE(DescribeImage(bytes.data(), bytes.size() - 1)) << "the last byte is missing";
  }
}

TEST(Mask, BlocksThatCannotBeReadAreNoImage) {
  const struct {
    const char* name;
    void (*change)(BITMAPINFOHEADER& header);
  } kRows[] = {
      {"no width", [](BITMAPINFOHEADER& h) { h.biWidth = 0; }},
      {"height below 0", [](BITMAPINFOHEADER& h) { h.biHeight = -5; }},
      {"more rows than bytes", [](BITMAPINFOHEADER& h) { ++h.biHeight; }},
      {"a product that overflows",
       [](BITMAPINFOHEADER& h) { h.biWidth = h.biHeight = 0x7FFFFFFF; }},
      {"runs of bytes", [](BITMAPINFOHEADER& h) { h.biCompression = BI_RLE8; }},
      {"runs of nibbles", [](BITMAPINFOHEADER& h) { h.biCompression = BI_RLE4; }},
      {"an unknown compression", [](BITMAPINFOHEADER& h) { h.biCompression = 4; }},
      {"no depth", [](BITMAPINFOHEADER& h) { h.biBitCount = 0; }},
      {"two bits", [](BITMAPINFOHEADER& h) { h.biBitCount = 2; }},
      {"a long header", [](BITMAPINFOHEADER& h) { h.biSize = 60000; }},
      {"no room for bit fields", [](BITMAPINFOHEADER& h) { h.biCompression = BI_BITFIELDS; }}};
  for (const auto& row : kRows) {
    const orvo::OwnedDib page = pictures::Blank(40, 30, 8);
    const pictures::Locked image(page.get());
    const std::size_t bytes = image.layout().totalBytes;
    ASSERT_TRUE(DescribeImage(image.bytes(), bytes));
    row.change(*image.header());
    EXPECT_FALSE(DescribeImage(image.bytes(), bytes)) << row.name;
  }
  EXPECT_FALSE(DescribeImage(nullptr, 0));
  const std::vector<std::uint8_t> shortBlock(orvo::kDibHeaderBytes - 1);
  EXPECT_FALSE(DescribeImage(shortBlock.data(), shortBlock.size()));
}

TEST(Mask, GrayWeighsTheChannels) {
  const struct {
    RGBQUAD color;
    int gray;
  } kRows[] = {{{250, 250, 250, 0}, 250}, {{249, 249, 249, 0}, 249}, {{0, 0, 255, 0}, 127},
               {{0, 255, 0, 0}, 95},      {{255, 0, 0, 0}, 31},      {{255, 255, 255, 0}, 255}};
  for (const auto& row : kRows) {
    const orvo::OwnedDib page = pictures::Blank(20, 20, 1);
    pictures::Locked(page.get()).palette()[0] = row.color;
    EXPECT_EQ(Reduce(page.get(), row.gray).bytes[0], 0);
    EXPECT_EQ(Reduce(page.get(), row.gray + 1).bytes[0], 1);
  }
}

}  // namespace
