// Files made byte by byte: the rare forms of each format, those that lie, and what they show.
#include <sstream>

#include "files.h"

namespace {

using rig::Builder;
using rig::Bytes;
using rig::FileTest;
using rig::OwnedDib;

// A bitmap by its numbers: width, height, depth, compression, colours used, bytes of the header and
// offset of the pixels (-1 the true one); behind strokes, in hexadecimal, masks, palette and
// pixels.
Bytes BitmapOf(const std::string& numbers) {
  std::vector<std::int64_t> parts[4];
  std::size_t part = 0;
  std::istringstream words(numbers);
  for (std::string word; words >> word;) {
    if (word == "/") {
      ++part;
    } else {
      parts[part].push_back(std::stoll(word, nullptr, part == 0 ? 10 : 16));
    }
  }
  const auto& [measures, masks, palette, pixels] = parts;
  const std::int64_t size = measures[5];
  Builder body;
  body.little32({size});
  if (size == 12) {
    body.little16({measures[0], measures[1], 1, measures[2]});
  } else {
    body.little32({measures[0], measures[1]}).little16({1, measures[2]});
    body.little32({measures[3], 0, 11811, 5906, measures[4], 0});
  }
  for (const std::int64_t mask : masks) body.little32({mask});
  const Bytes& written = body;
  if (size > 56) body.zeros(static_cast<std::size_t>(size) - written.size());
  for (const std::int64_t color : palette) {
    body.little16({color}).add({color >> 16});
    if (size != 12) body.add({0});
  }
  const auto behind = static_cast<std::int64_t>(14 + written.size());
  Builder file;
  file.add({'B', 'M'}).little32({0, 0, measures[6] < 0 ? behind : measures[6]}).add(written);
  for (const std::int64_t byte : pixels) file.add({byte});
  return file;
}

TEST_F(FileTest, bitmaps_in_rare_forms_show_the_right_pixels) {
  const std::pair<const char*, Bytes> rows[] = {
      {"1 -2 24 0 0 40 -1 / / / 1 2 3 0 4 5 6 0", {3, 2, 1, 6, 5, 4}},  // top down
      {"2 1 1 0 0 12 -1 / / FF0000 FF / 40 0 0 0", {255, 0, 0, 0, 0, 255}},
      {"2 1 4 0 2 40 -1 / / FF0000 FF / 1F 0 0 0", {0, 0, 255, 0, 0, 0}},  // half a palette
      {"2 1 1 0 1000 40 -1 / / FF0000 FF / 80 0 0 0", {0, 0, 255, 255, 0, 0}},
      {"1 1 24 0 0 40 0 / / / 7 8 9 0", {9, 8, 7}},
      {"2 1 16 3 0 40 -1 / F800 7E0 1F / / 0 F8 E0 7", {255, 0, 0, 0, 255, 0}},
      {"2 1 16 3 0 40 -1 / F00 F0 F / / 48 C 1 0", {206, 66, 140, 0, 0, 16}},
      {"1 1 32 3 0 40 -1 / FF FF00 FF0000 / / 1 2 3 4", {1, 2, 3, 0}},
      {"1 1 32 6 0 40 -1 / FF00 FF FF0000 FF000000 / / 1 2 3 4", {2, 1, 3, 4}},
      {"1 1 32 3 0 108 -1 / 3FF00000 FFC00 3FF 0 / / FF 3 0 20", {128, 0, 255, 0}},
      {"4 2 8 1 3 40 -1 / / 0 FF0000 FF / 0 3 1 2 1 0 0 0 0 2 2 0 2 1 0 1",
       {0, 0, 0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 0}},
      {"5 1 4 2 3 40 -1 / / 0 FF0000 FF / 3 12 2 22 0 1",
       {255, 0, 0, 0, 0, 255, 255, 0, 0, 0, 0, 255, 0, 0, 255}},
      {"5 1 4 2 3 40 -1 / / 0 FF0000 FF / 0 5 12 1 20 0",
       {255, 0, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 0, 255}}};
  for (const auto& [numbers, shown] : rows) {
    SCOPED_TRACE(numbers);
    const OwnedDib image = load("a.bmp", BitmapOf(numbers));
    ASSERT_EQ(code_, kModuleSuccess);
    EXPECT_EQ(rig::Shown(image, shown.size() == 4), shown);
    expectInfo("a.bmp", image, shown.size() > 12 ? "RLE" : "none");
    EXPECT_EQ(info("a.bmp").yResolution, std::string(numbers).find(" 12 ") < 20 ? 0 : 150);
  }
  const std::pair<const char*, int> bad[] = {
      {"1 1 16 3 0 40 -1 / F800 FE0 1F / / 0 0 0 0", kFileFormatDamaged},  // masks overlap
      {"1 1 16 3 0 40 -1 / F800 5E0 1F / / 0 0 0 0", kFileFormatDamaged},  // one has a hole
      {"1 1 16 3 0 40 -1 / F0000 7E0 1F / / 0 0 0 0", kFileFormatDamaged},
      {"1 1 16 3 0 40 -1 / F800 7E0 0 / / 0 0 0 0", kFileFormatDamaged},
      {"1 -1 8 1 1 40 -1 / / 0 / 0 1", kFileFormatDamaged},  // runs from the top
      {"1 1 4 1 1 40 -1 / / 0 / 0 1", kFileFormatDamaged},
      {"1 1 8 2 1 40 -1 / / 0 / 0 1", kFileFormatDamaged},
      {"1 1 24 3 0 40 -1 / / / 0 0 0 0", kFileFormatDamaged},
      {"1 1 8 1 1 40 -1 / / 0 / 0 0 1 0 0 1", kFileFormatDamaged},  // above the last row
      {"2 2 8 1 1 40 -1 / / 0 / 0 2 9 0 1 0 0 1", kFileFormatDamaged},
      {"2 2 8 1 1 40 -1 / / 0 / 0 2 0 9 1 0 0 1", kFileFormatDamaged},
      {"2 2 8 1 1 40 -1 / / 0 / 2 0 0 0 1 0", kModuleReadFailed},
      {"1 1 24 0 0 40 5000 / / / 1 2 3 0", kModuleReadFailed},
      {"2 1 24 0 0 40 -1 / / / 0 0 0 0", kModuleReadFailed},
      {"1 1 5 0 0 40 -1 / / / 0 0 0 0", kModuleDepthNotSupported},
      {"1 1 24 4 0 40 -1 / / / 0 0 0 0", kFileFormatNotRead},  // a JPEG inside
      {"1 -2147483648 24 0 0 40 -1 / / / 0 0 0 0", kFileFormatDamaged},
      {"0 1 24 0 0 40 -1 / / / 0 0 0 0", kFileFormatDamaged},
      {"1 0 24 0 0 40 -1 / / / 0 0 0 0", kFileFormatDamaged},
      {"1 0 24 0 0 12 -1 / / / 0 0 0 0", kFileFormatDamaged},
      {"60000 60000 24 0 0 40 -1 / / / 0 0 0 0", kModuleReadFailed},
      {"1 1 24 0 0 300 -1 / / / 0 0 0 0", kFileFormatNotRead}};
  for (const auto& [numbers, code] : bad) {
    EXPECT_FALSE(load("a.bmp", BitmapOf(numbers))) << numbers;
    EXPECT_EQ(code_, code) << numbers;
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
  // version, channels, height, width, bits, mode, compression and the code
  constexpr int kBad[][8] = {{2, 1, 1, 1, 8, 1, 0, kFileFormatNotRead},
                             {1, 1, 1, 1, 8, 9, 0, kFileFormatNotRead},
                             {1, 1, 1, 1, 32, 1, 0, kFileFormatNotRead},
                             {1, 1, 1, 1, 8, 0, 0, kFileFormatNotRead},
                             {1, 1, 1, 1, 16, 2, 0, kFileFormatNotRead},
                             {1, 1, 1, 1, 8, 1, 2, kFileFormatNotRead},
                             {1, 2, 1, 1, 8, 3, 0, kFileFormatDamaged},
                             {1, 0, 1, 1, 8, 1, 0, kFileFormatDamaged},
                             {1, 57, 1, 1, 8, 1, 0, kFileFormatDamaged},
                             {1, 1, 0, 1, 8, 1, 0, kFileFormatDamaged},
                             {1, 1, 1, 30001, 8, 1, 0, kFileFormatDamaged},
                             {1, 1, 30000, 30000, 8, 1, 0, kModuleReadFailed},
                             {1, 1, 1, 4, 8, 1, 0, kModuleReadFailed},
                             {1, 1, 9999, 9999, 8, 1, 1, kModuleReadFailed}};
  for (const auto& row : kBad) {
    EXPECT_EQ(reds({row[0], row[1], row[2], row[3], row[4], row[5], {}, row[6]}), Bytes());
    EXPECT_EQ(code_, row[7]) << &row - kBad;
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
