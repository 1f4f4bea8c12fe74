// Files made byte by byte: the rare forms of each format, those that lie, and what they show.
#include "files.h"

namespace {

using rig::Builder;
using rig::Bytes;
using rig::FileTest;
using rig::OwnedDib;

struct Bmp {
  std::int64_t width, height;
  int depth;
  std::uint32_t compression = BI_RGB;
  std::int64_t colorsUsed = 0;
  std::size_t headerBytes = 40;
  std::vector<std::int64_t> masks{};    // behind or in the header
  std::vector<std::int64_t> palette{};  // 0x00RRGGBB
  Bytes pixels{0, 0, 0, 0};
  std::int64_t offset = -1;  // of the pixels; -1 the true one
};

Bytes FileOf(const Bmp& bmp) {
  Builder body;
  body.little32({static_cast<std::int64_t>(bmp.headerBytes)});
  if (bmp.headerBytes == 12) {
    body.little16({bmp.width, bmp.height, 1, bmp.depth});
  } else {
    body.little32({bmp.width, bmp.height}).little16({1, bmp.depth});
    body.little32({bmp.compression, 0, 11811, 5906, bmp.colorsUsed, 0});
  }
  for (const std::int64_t mask : bmp.masks) body.little32({mask});
  const Bytes& written = body;
  if (written.size() < bmp.headerBytes) body.zeros(bmp.headerBytes - written.size());
  for (const std::int64_t color : bmp.palette) {
    body.little16({color}).add({color >> 16});
    if (bmp.headerBytes != 12) body.add({0});
  }
  Builder file;
  file.add({'B', 'M'}).little32({0, 0});
  file.little32({bmp.offset < 0 ? static_cast<std::int64_t>(14 + written.size()) : bmp.offset});
  return file.add(written).add(bmp.pixels);
}

constexpr std::int64_t kRed = 0xFF0000;
constexpr std::int64_t kBlue = 0x0000FF;

TEST_F(FileTest, bitmaps_in_rare_forms_show_the_right_pixels) {
  const std::vector<std::int64_t> two{kRed, kBlue};
  const std::vector<std::int64_t> three{0, kRed, kBlue};
  struct Row {
    const char* name;
    Bmp bmp;
    Bytes shown;  // the colours of the pixels from the top left
  };
  const Row rows[] = {
      {"top_down",
       {1, -2, 24, BI_RGB, 0, 40, {}, {}, {1, 2, 3, 0, 4, 5, 6, 0}},
       {3, 2, 1, 6, 5, 4}},
      {"core_header", {2, 1, 1, BI_RGB, 0, 12, {}, two, {0x40, 0, 0, 0}}, {255, 0, 0, 0, 0, 255}},
      {"partial_palette", {2, 1, 4, BI_RGB, 2, 40, {}, two, {0x1F, 0, 0, 0}}, {0, 0, 255, 0, 0, 0}},
      {"more_colors_than_the_depth_has",
       {2, 1, 1, BI_RGB, 1000, 40, {}, two, {0x80, 0, 0, 0}},
       {0, 0, 255, 255, 0, 0}},
      {"offset_of_zero", {1, 1, 24, BI_RGB, 0, 40, {}, {}, {7, 8, 9, 0}, 0}, {9, 8, 7}},
      {"565",
       {2, 1, 16, BI_BITFIELDS, 0, 40, {0xF800, 0x07E0, 0x001F}, {}, {0, 0xF8, 0xE0, 7}},
       {255, 0, 0, 0, 255, 0}},
      {"444",
       {2, 1, 16, BI_BITFIELDS, 0, 40, {0xF00, 0x0F0, 0x00F}, {}, {0x48, 0x0C, 1, 0}},
       {206, 66, 140, 0, 0, 16}},
      {"another_order",
       {1, 1, 32, BI_BITFIELDS, 0, 40, {0xFF, 0xFF00, 0xFF0000}, {}, {1, 2, 3, 4}},
       {1, 2, 3}},
      {"alpha",
       {1, 1, 32, 6, 0, 40, {0xFF00, 0xFF, 0xFF0000, 0xFF000000}, {}, {1, 2, 3, 4}},
       {2, 1, 3, 4}},
      {"10_bit_channels",
       {1, 1, 32, BI_BITFIELDS, 0, 108, {0x3FF00000, 0xFFC00, 0x3FF, 0}, {}, {0xFF, 3, 0, 0x20}},
       {128, 0, 255}},
      {"runs_8",
       {4, 2, 8, BI_RLE8, 3, 40, {}, three, {0, 3, 1, 2, 1, 0, 0, 0, 0, 2, 2, 0, 2, 1, 0, 1}},
       {0, 0, 0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 0}},
      {"runs_4",
       {5, 1, 4, BI_RLE4, 3, 40, {}, three, {3, 0x12, 2, 0x22, 0, 1}},
       {255, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 255, 0, 0, 255}},
      {"literals_4",
       {5, 2, 4, BI_RLE4, 3, 40, {}, three, {0, 5, 0x12, 0x01, 0x20, 0, 0, 0, 0, 2, 1, 0, 9, 0x21}},
       {0,   0, 0, 0, 0, 255, 255, 0, 0, 0,   0, 255, 255, 0, 0,
        255, 0, 0, 0, 0, 255, 0,   0, 0, 255, 0, 0,   0,   0, 255}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const OwnedDib image = load("a.bmp", FileOf(row.bmp));
    ASSERT_EQ(code_, kModuleSuccess);
    EXPECT_EQ(rig::Shown(image, row.shown.size() == 4), row.shown);
    EXPECT_EQ(rig::DepthOf(image), row.bmp.depth);
    expectInfo("a.bmp", image,
               row.bmp.compression == BI_RLE8 || row.bmp.compression == BI_RLE4 ? "RLE" : "none");
    EXPECT_EQ(info("a.bmp").yResolution, row.bmp.headerBytes == 12 ? 0 : 150);
  }
  const std::pair<Bmp, int> bad[] = {
      {{1, 1, 16, BI_BITFIELDS, 0, 40, {0xF800, 0x0FE0, 0x001F}}, kFileFormatDamaged},  // overlap
      {{1, 1, 16, BI_BITFIELDS, 0, 40, {0xF800, 0x05E0, 0x001F}}, kFileFormatDamaged},  // a hole
      {{1, 1, 16, BI_BITFIELDS, 0, 40, {0xF0000, 0x07E0, 0x001F}}, kFileFormatDamaged},
      {{1, 1, 16, BI_BITFIELDS, 0, 40, {0xF800, 0x07E0, 0}}, kFileFormatDamaged},
      {{1, -1, 8, BI_RLE8, 1, 40, {}, {0}, {0, 1}}, kFileFormatDamaged},  // from the top
      {{1, 1, 4, BI_RLE8, 1, 40, {}, {0}, {0, 1}}, kFileFormatDamaged},
      {{1, 1, 8, BI_RLE4, 1, 40, {}, {0}, {0, 1}}, kFileFormatDamaged},
      {{1, 1, 24, BI_BITFIELDS}, kFileFormatDamaged},
      {{1, 1, 8, BI_RLE8, 1, 40, {}, {0}, {0, 0, 1, 0, 0, 1}}, kFileFormatDamaged},  // a second row
      {{2, 2, 8, BI_RLE8, 1, 40, {}, {0}, {0, 2, 9, 0, 1, 0, 0, 1}}, kFileFormatDamaged},
      {{2, 2, 8, BI_RLE8, 1, 40, {}, {0}, {0, 2, 0, 9, 1, 0, 0, 1}}, kFileFormatDamaged},
      {{2, 2, 8, BI_RLE8, 1, 40, {}, {0}, {2, 0, 0, 0, 1, 0}}, kModuleReadFailed},
      {{1, 1, 24, BI_RGB, 0, 40, {}, {}, {1, 2, 3, 0}, 5000}, kModuleReadFailed},
      {{2, 1, 24}, kModuleReadFailed},
      {{1, 1, 5}, kModuleDepthNotSupported},
      {{1, 1, 24, 4}, kFileFormatNotRead},  // a JPEG inside
      {{1, INT32_MIN, 24}, kFileFormatDamaged},
      {{0, 1, 24}, kFileFormatDamaged},
      {{1, 0, 24}, kFileFormatDamaged},
      {{1, 0, 24, BI_RGB, 0, 12}, kFileFormatDamaged},
      {{60000, 60000, 24}, kModuleReadFailed},
      {{1, 1, 24, BI_RGB, 0, 300}, kFileFormatNotRead},
  };
  for (std::size_t i = 0; i < std::size(bad); ++i) {
    EXPECT_FALSE(load("a.bmp", FileOf(bad[i].first)));
    EXPECT_EQ(code_, bad[i].second) << i;
  }
}

struct Psd {
  int version = 1, channels = 1, height = 1, width = 1, bits = 8, mode = 1;
  Bytes resources{};
  int compression = 0;
  Bytes picture{1};
};

Bytes FileOf(const Psd& psd) {
  Builder file;
  file.add({'8', 'B', 'P', 'S'}).big16({psd.version}).zeros(6);
  file.big16({psd.channels}).big32({psd.height, psd.width}).big16({psd.bits, psd.mode}).big32({0});
  file.big32({static_cast<int>(psd.resources.size())}).add(psd.resources);
  return file.big32({0}).big16({psd.compression}).add(psd.picture);
}

TEST_F(FileTest, photoshop_documents_mean_what_their_bytes_say) {
  const auto reds = [&](const Psd& psd) {
    Bytes tones;
    const OwnedDib image = load("a.psd", FileOf(psd));
    const Bytes shown = image ? rig::Shown(image) : Bytes();
    for (std::size_t i = 0; i < shown.size(); i += 3) tones.push_back(shown[i]);
    return tones;
  };
  const auto runs = [](const Bytes& first) {
    const Bytes plain{4, 1, 2, 3, 4, 5};
    Builder picture;
    picture.big16({static_cast<int>(first.size()), 6}).add(first).add(plain);
    return Psd{.height = 2, .width = 5, .compression = 1, .picture = picture};
  };
  EXPECT_EQ(reds(runs({128, 0, 9, 253, 7})), (Bytes{9, 7, 7, 7, 7, 1, 2, 3, 4, 5}));
  for (const Bytes& wrong : {Bytes{253, 7}, Bytes{251, 7}, Bytes{5, 1, 2}, Bytes{252}}) {
    EXPECT_EQ(reds(runs(wrong)), Bytes());
    EXPECT_EQ(code_, kFileFormatDamaged);
  }
  // Cyan, magenta, yellow, black as 255 for none, then a mask.
  const Bytes inks{255, 100, 255, 200, 0, 50, 255, 128, 9, 9};
  EXPECT_EQ(
      rig::Shown(load("a.psd", FileOf(Psd{.channels = 5, .width = 2, .mode = 4, .picture = inks}))),
      (Bytes{255, 255, 0, 50, 100, 25}));
  const Bytes fine = Builder().big16({0xFFFF, 0x7F7F, 0x00C0});
  EXPECT_EQ(reds({.width = 3, .bits = 16, .picture = fine}), (Bytes{255, 127, 1}));
  EXPECT_EQ(reds({.width = 3, .mode = 8, .picture = {3, 2, 1}}), (Bytes{3, 2, 1})) << "duotone";
  // The resolution stands behind a named resource of odd length.
  Builder resources;
  resources.add({'8', 'B', 'I', 'M', 4, 0, 2, 'a', 'b', 0, 0, 0, 0, 3, 1, 2, 3, 0})
      .add({'8', 'B', 'I', 'M', 3, 0xED, 0, 0, 0, 0, 0, 16})
      .big32({600 << 16})
      .big16({1, 1})
      .big32({150 << 16})
      .big16({1, 1});
  EXPECT_EQ(reds({.resources = resources, .picture = {77}}), Bytes{77});
  EXPECT_EQ(info("a.psd").xResolution, 600);
  EXPECT_EQ(info("a.psd").yResolution, 150);
  const std::pair<Psd, int> bad[] = {
      {{.version = 2}, kFileFormatNotRead},
      {{.mode = 9}, kFileFormatNotRead},
      {{.bits = 32}, kFileFormatNotRead},
      {{.bits = 8, .mode = 0}, kFileFormatNotRead},
      {{.bits = 16, .mode = 2}, kFileFormatNotRead},
      {{.compression = 2}, kFileFormatNotRead},
      {{.channels = 2, .mode = 3}, kFileFormatDamaged},
      {{.channels = 0}, kFileFormatDamaged},
      {{.channels = 57}, kFileFormatDamaged},
      {{.height = 0}, kFileFormatDamaged},
      {{.width = 60000}, kFileFormatDamaged},
      {{.height = 30000, .width = 30000}, kModuleReadFailed},
      {{.width = 4}, kModuleReadFailed},
      {{.height = 9999, .width = 9999, .compression = 1}, kModuleReadFailed}};
  for (std::size_t i = 0; i < std::size(bad); ++i) {
    EXPECT_EQ(reds(bad[i].first), Bytes());
    EXPECT_EQ(code_, bad[i].second) << i;
  }
}

// 16 by 1 pixels of 4 bits in four planes, the lowest bit's first: pixel x has colour x, whose red
// is 16 x + 1. What looks like a run is written as a run of one.
Bytes PcxOfPlanes() {
  Builder file;
  file.add({0x0A, 5, 1, 1}).little16({0, 0, 15, 0, 300, 200});
  for (int i = 0; i < 16; ++i) file.add({16 * i + 1, i, 255 - i});
  file.add({0, 4}).little16({2, 1}).zeros(58);
  return file.add({0x55, 0x55, 0x33, 0x33, 0x0F, 0x0F, 0x00, 0xC1, 0xFF});
}
// 32 by 1 pixels of 16 bits: red x, green 31 - x, blue 7.
Bytes TgaOf16Bits() {
  Builder file;
  file.add({0, 0, 2}).zeros(9).little16({32, 1}).add({16, 0x20});
  for (int x = 0; x < 32; ++x) file.little16({x << 10 | (31 - x) << 5 | 7});
  return file;
}
// 100 by 50 pixels: blue, then the left half red.
Bytes Metafile() {
  Builder file;
  file.add({0xD7, 0xCD, 0xC6, 0x9A}).little16({0, 0, 0, 100, 50, 72, 0, 0, 0x570F});
  file.little16({1, 9, 0x300, 68, 0, 3, 8, 0, 0, 5, 0, 0x020B, 0, 0, 5, 0, 0x020C, 50, 100});
  file.little16({8, 0, 0x02FA, 5, 0, 0, 0, 0, 4, 0, 0x012D, 0});
  file.little16({7, 0, 0x02FC, 0, 0, 0x00FF, 0, 4, 0, 0x012D, 1, 7, 0, 0x041B, 50, 100, 0, 0});
  file.little16({7, 0, 0x02FC, 0, 0x00FF, 0, 0, 4, 0, 0x012D, 2});
  return file.little16({7, 0, 0x041B, 50, 50, 0, 0, 3, 0, 0});
}
// 4 by 2 pixels of 4 bits: colours 1 2 3 4 above 5 6 7 8, colour i having red 10 i.
Bytes WordPerfectBitmap() {
  Builder file;
  file.add({0xFF, 'W', 'P', 'C'}).little16({16, 0}).add({1, 0x16, 1, 0, 0, 0, 0, 0});
  file.add({0x0F, 6, 1, 0}).little16({1000, 1000}).add({0x0E, 52}).little16({0, 16});
  for (int i = 0; i < 16; ++i) file.add({10 * i, i, 255 - i});
  file.add({0x0B, 16}).little16({4, 2, 4, 75, 75}).add({2, 0x12, 0x34, 2, 0x56, 0x78});
  return file.add({0x10, 0});
}

TEST_F(FileTest, rare_files_show_what_they_mean) {
  const OwnedDib planes = load("a.pcx", PcxOfPlanes());
  ASSERT_TRUE(planes);
  EXPECT_EQ(rig::DepthOf(planes), 4);
  EXPECT_EQ(info("a.pcx").yResolution, 200);
  for (int x = 0; x < 16; ++x) EXPECT_EQ(rig::View(planes).color(x, 0)[0], 16 * x + 1);
  const OwnedDib narrow = load("a.tga", TgaOf16Bits());
  ASSERT_TRUE(narrow);
  EXPECT_EQ(rig::DepthOf(narrow), 16);
  for (int x = 0; x < 32; ++x) {
    EXPECT_EQ(rig::View(narrow).value(x, 0) & 0x7FFF,
              static_cast<unsigned>(x << 10 | (31 - x) << 5 | 7));
  }
  const OwnedDib words = load("a.wpg", WordPerfectBitmap());
  ASSERT_TRUE(words);
  EXPECT_EQ(rig::DepthOf(words), 4);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(rig::View(words).color(i % 4, 1 - i / 4)[0], 10 * i + 10);
  const OwnedDib drawing = load("a.wmf", Metafile());
  ASSERT_TRUE(drawing);
  EXPECT_EQ(rig::View(drawing).width(), 100);
  EXPECT_EQ(rig::View(drawing).height(), 50);
  EXPECT_EQ(rig::View(drawing).color(20, 25), (rig::Color{255, 0, 0}));
  EXPECT_EQ(rig::View(drawing).color(80, 25), (rig::Color{0, 0, 255}));
  // A pen beyond the slots, a record beyond the end and one of no length: each would be trusted.
  for (const auto& [at, value] :
       {std::pair{106, 9}, {22 + 18, 200}, {22 + 18, 0}, {22 + 10, 1}, {22 + 2, 8}}) {
    Bytes wrong = Metafile();
    wrong[static_cast<std::size_t>(at)] = static_cast<std::uint8_t>(value);
    EXPECT_FALSE(load("a.wmf", wrong)) << at;
    EXPECT_EQ(code_, kFileFormatDamaged) << at;
  }
}

}  // namespace
