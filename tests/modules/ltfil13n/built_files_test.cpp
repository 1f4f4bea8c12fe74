// Files made byte by byte: the rare forms of each format and those that lie. A check sum for each
// format holds what they show and tell, or the codes that refuse them.
#include "files.h"

namespace {

using rig::FileTest;
using rig::Of;

// Sixteen colours: red 16 i + 1, green i, blue 255 - i.
const std::string kSixteen =
    "1 0 FF 11 1 FE 21 2 FD 31 3 FC 41 4 FB 51 5 FA 61 6 F9 71 7 F8 81 8 F7 91 9 F6 A1 A F5 "
    "B1 B F4 C1 C F3 D1 D F2 E1 E F1 F1 F F0 ";

// Behind the first 14 bytes. A slash stands for 300 by 150 dots per inch.
const std::vector<std::string> kBitmaps = {
    "i40 i1 i-2 s1 s24 i0 / i0 i0 | 1 2 3 0 4 5 6 0",  // top down
    "i12 s2 s1 s1 s1 0 0 FF FF 0 0 | 40 0 0 0",
    "i40 i2 i1 s1 s4 i0 / i2 i0 0 0 FF 0 FF 0 0 0 | 1F 0 0 0",  // half a palette
    "i40 i2 i1 s1 s1 i0 / i1000 i0 0 0 FF 0 FF 0 0 0 | 80 0 0 0",
    "i40 i1 i1 s1 s24 i0 / i0 i0 7 8 9 0",
    "i40 i2 i1 s1 s16 i3 / i0 i0 i63488 i2016 i31 | 0 F8 E0 7",
    "i40 i2 i1 s1 s16 i3 / i0 i0 i3840 i240 i15 | 48 C 1 0",
    "i40 i1 i1 s1 s32 i3 / i0 i0 i255 i65280 i16711680 | 1 2 3 4",
    "i40 i1 i1 s1 s32 i6 / i0 i0 i65280 i255 i16711680 i4278190080 | 1 2 3 4",
    "i108 i1 i1 s1 s32 i3 / i0 i0 i1072693248 i1047552 i1023 i0 z52 | FF 3 0 20",
    "i56 i2 i1 s1 s16 i3 / i0 i0 i31744 i992 i31 i32768 | 0 FC E0 3",          // one bit of opacity
    "i56 i2 i1 s1 s32 i3 / i0 i0 i16711680 i65280 i255 i0 | 1 2 3 4 5 6 7 8",  // none
    "i40 i2 i1 s1 s4 i0 / i4 i0 31 0 FF 0 FF 0 0 0 |54 0 FF 0 0 9 8 7 0",  // pixels in the palette
    "i40 i4 i2 s1 s8 i1 / i3 i0 z4 0 0 FF 0 FF 0 0 0 | 0 3 1 2 1 0 0 0 0 2 2 0 2 1 0 1",
    "i40 i5 i1 s1 s4 i2 / i3 i0 z4 0 0 FF 0 FF 0 0 0 | 3 12 2 22 0 1",
    "i40 i5 i1 s1 s4 i2 / i3 i0 z4 0 0 FF 0 FF 0 0 0 | 0 5 12 1 20 0",
    "i40 i1 i1 s1 s16 i3 / i0 i0 i63488 i4064 i31 | 0 0 0 0",  // masks overlap
    "i40 i1 i1 s1 s16 i3 / i0 i0 i63488 i1504 i31 | 0 0 0 0",  // one has a hole
    "i40 i1 i1 s1 s16 i3 / i0 i0 i983040 i2016 i31 | 0 0 0 0",
    "i40 i1 i1 s1 s16 i3 / i0 i0 i63488 i2016 i0 | 0 0 0 0",
    "i40 i1 i-2 s1 s8 i1 / i2 i0 z4 0 0 FF 0 | 1 1 0 0 1 0 0 1",  // runs from the top
    // Pixels behind the palette after all, and nothing that fills up the last row.
    "i40 i1 i2 s1 s4 i0 / i2 i0 0 0 FF 0 0 FF 0 0 |54 10 0 0 0 0",
    "i40 i1 i1 s1 s4 i1 / i1 i0 z4 | 0 1", "i40 i1 i1 s1 s8 i2 / i1 i0 z4 | 0 1",
    "i40 i1 i1 s1 s24 i3 / i0 i0 | 0 0 0 0",
    "i40 i1 i1 s1 s8 i1 / i1 i0 z4 | 0 0 1 0 0 1",  // above the last row
    "i40 i2 i2 s1 s8 i1 / i1 i0 z4 | 0 2 9 0 1 0 0 1",
    "i40 i2 i2 s1 s8 i1 / i1 i0 z4 | 0 2 0 9 1 0 0 1",
    "i40 i2 i2 s1 s8 i1 / i1 i0 z4 | 2 0 0 0 1 0", "i40 i1 i1 s1 s24 i0 / i0 i0 |5000 1 2 3 0",
    "i40 i2 i1 s1 s24 i0 / i0 i0 | 0 0 0 0", "i40 i1 i1 s1 s5 i0 / i0 i0 | 0 0 0 0",
    "i40 i1 i1 s1 s24 i4 / i0 i0 | 0 0 0 0",  // a JPEG inside
    "i40 i1 i-2147483648 s1 s24 i0 / i0 i0 | 0 0 0 0", "i40 i0 i1 s1 s24 i0 / i0 i0 | 0 0 0 0",
    "i40 i1 i0 s1 s24 i0 / i0 i0 | 0 0 0 0", "i12 s1 s0 s1 s24 | 0 0 0 0",
    "i40 i60000 i60000 s1 s24 i0 / i0 i0 | 0 0 0 0", "i300 i1 i1 s1 s24 i0 / i0 i0 z260 | 0 0 0 0"};

const std::vector<std::string> kDocuments = {
    // Runs: sound ones, then those that go beyond a row or end within it.
    "S1 I2 I5 S8 S1 I0 I0 I0 S1 S5 S6 80 0 9 FD 7 4 1 2 3 4 5",
    "S1 I2 I5 S8 S1 I0 I0 I0 S1 S2 S6 FD 7 4 1 2 3 4 5",
    "S1 I2 I5 S8 S1 I0 I0 I0 S1 S2 S6 FB 7 4 1 2 3 4 5",
    "S1 I2 I5 S8 S1 I0 I0 I0 S1 S3 S6 5 1 2 4 1 2 3 4 5",
    "S1 I2 I5 S8 S1 I0 I0 I0 S1 S1 S6 FC 4 1 2 3 4 5",
    // Four inks, 255 for none, and opacity; 16 bits; a duotone.
    "S5 I1 I2 S8 S4 I0 I0 I0 S0 FF 64 FF C8 0 32 FF 80 9 9",
    "S1 I1 I3 S16 S1 I0 I0 I0 S0 FF FF 7F 7F 0 C0", "S1 I1 I3 S8 S8 I0 I0 I0 S0 3 2 1",
    // Colours on white, plain ones, and two channels with the sign that one is opacity.
    "S4 I1 I2 S8 S3 I0 I0 I0 S0 80 C0 80 FF 80 80 80 C0", "S4 I1 I1 S8 S3 I0 I0 I0 S0 1 2 3 80",
    "S3 I1 I1 S16 S1 I0 I0 I6 I2 S-1 S0 S32768 S65535 S9", "S2 I1 I1 S8 S1 I0 I0 I6 I2 S1 S0 7 8",
    // The resolution, 600 by 150, stands behind a named resource of odd length.
    "S1 I1 I1 S8 S1 I0 I46 '8BIM S1024 2 61 62 0 I3 1 2 3 0 "
    "'8BIM S1005 S0 I16 I39321600 S1 S1 I9830400 S1 S1 I0 S0 4D",
    "S1 I1 I1 S8 S9 I0 I0 I0 S0 1", "S1 I1 I1 S32 S1 I0 I0 I0 S0 1", "S1 I1 I1 S8 S0 I0 I0 I0 S0 1",
    "S1 I1 I1 S16 S2 I0 I0 I0 S0 1", "S1 I1 I1 S8 S1 I0 I0 I0 S2 1", "S2 I1 I1 S8 S3 I0 I0 I0 S0 1",
    "S0 I1 I1 S8 S1 I0 I0 I0 S0 1", "S57 I1 I1 S8 S1 I0 I0 I0 S0 1", "S1 I0 I1 S8 S1 I0 I0 I0 S0 1",
    "S1 I1 I30001 S8 S1 I0 I0 I0 S0 1", "S1 I30000 I30000 S8 S1 I0 I0 I0 S0 1",
    "S1 I1 I4 S8 S1 I0 I0 I0 S0 1", "S1 I9999 I9999 S8 S1 I0 I0 I0 S1 1"};

// The frame takes a part of the canvas, or all; indexes beyond the palette; no palette; cut.
const std::vector<std::string> kFrames = {
    "s3 s2 80 0 0 FF 0 0 0 FF 0 2C s1 s1 s2 s1 0 2 2 44 A 0 3B",
    "s2 s1 80 0 0 FF 0 0 0 FF 0 2C s0 s0 s2 s1 0 2 2 44 A 0 3B",
    "s0 s0 80 0 0 FF 0 0 0 FF 0 21 F9 4 1 s0 1 0 2C s0 s0 s2 s1 0 2 2 44 A 0",
    "s2 s1 0 0 0 2C s0 s0 s2 s1 82 z21 9 8 7 4 3 F0 A4 8 0 3B",
    "s2 s1 80 0 0 FF 0 0 0 FF 0 2C s0 s0 s2 s1 0 2 2 DC A 0 3B",
    "s2 s1 0 0 0 2C s0 s0 s2 s1 0 2 2 44 A 0 3B",
    "s65535 s65535 80 0 0 FF 0 0 0 FF 0 2C s1 s1 s2 s1 0 2 2 44 A 0 3B",
    "s2 s1 80 0 0 FF 0 0 0 FF 0 2C s0 s0 s2 s1 0 2 2 44"};

// Three samples: signed by a stated range; white in each of the two forms of Lab.
const std::string kPage = "s256 s3 i1 i3 s257 s3 i1 i1 s258 s3 i1 ";
const std::vector<std::string> kPages = {
    "s11 " + kPage +
        "i16 s259 s3 i1 i1 s262 s3 i1 i1 s273 s4 i1 i146 s277 s3 i1 i1 s279 s4 i1 i6 "
        "s339 s3 i1 i2 s340 s8 i1 s-1000 s0 s341 s8 i1 s3000 s0 i0 s-1000 s1000 s3000",
    "s8 " + kPage +
        "i8 s259 s3 i1 i1 s262 s3 i1 i8 s273 s4 i1 i110 s277 s3 i1 i3 s279 s4 i1 i9 "
        "i0 0D 0 0 80 0 0 80 F0 10",
    "s8 " + kPage +
        "i16 s259 s3 i1 i1 s262 s3 i1 i9 s273 s4 i1 i110 s277 s3 i1 i3 s279 s4 i1 i18 "
        "i0 s65280 s32768 s32768 s32768 s32768 s32768 s32768 s28672 s36864",
    "s8 " + kPage +
        "i16 s259 s3 i1 i1 s262 s3 i1 i8 s273 s4 i1 i110 s277 s3 i1 i3 s279 s4 i1 i18 "
        "i0 s65535 s0 s0 s32768 s8192 s57344 s28672 s61440 s4096"};

TEST_F(FileTest, rare_files_show_what_they_mean) {
  const struct {
    std::string name, start;
    std::uint64_t sum;
    std::vector<std::string> rests;
  } rows[] = {
      {"a.bmp", "'BM z12 ", 0xFFB0C98DBDF65B1E, kBitmaps},
      {"a.psd", "'8BPS S1 z6 ", 0x58D709EA8F4174D8, kDocuments},
      {"b.psd", "'8BPS S2 z6 ", 0x7879558D1E77522C, {"S1 I1 I1 S8 S1 I0 I0 I0 S0 1"}},
      {"a.gif", "'GIF89a ", 0xD4CA46C013F3F7F7, kFrames},
      {"a.tif", "'II s42 i8 ", 0xDFF8AADB9BE55D30, kPages},
      // Four planes, the lowest bit's first. What looks like a run is written as a run of one.
      {"a.pcx",
       "A 5 1 1 s0 s0 s15 s0 s300 s200 ",
       0x6EB0B0DA88610AE4,
       {kSixteen + "0 4 s2 s1 z58 55 55 33 33 F F 0 C1 FF"}},
      {"a.tga", "0 0 2 z9 ", 0x771B951D52B2AB27, {"s4 s1 10 20 s31 s992 s31744 s5285"}},
      {"a.wpg",
       "FF 'WPC s16 s0 1 16 1 0 0 0 0 0 F 6 1 0 s1000 s1000 E 34 s0 s16 ",
       0x991C6908E1EA6F28,
       {kSixteen + "B 10 s4 s2 s4 s75 s75 2 12 34 2 56 78 10 0"}}};
  for (const auto& [name, start, expected, rests] : rows) {
    rig::Sum sum;
    for (std::string rest : rests) {
      if (rest.find('/') != std::string::npos) rest.replace(rest.find('/'), 1, "i0 i11811 i5906");
      addFile(sum, name, Of(start + rest));
    }
    sum.expect(expected, name);
  }
}

// Pixels of two by one or one by two, red, green, blue and opacity each.
TEST_F(FileTest, targa_shows_opacity_and_begins_at_any_corner) {
  const struct {
    std::string bytes, shown;
    int depth;
  } rows[] = {{"0 0 3 z9 s2 s1 10 28 40 80 FF 0", "40 40 40 80 FF FF FF 0", 32},
              {"0 0 B z9 s2 s1 10 8 81 40 80", "40 40 40 80 40 40 40 80", 32},
              {"0 0 2 z9 s2 s1 10 21 1F 80 0 7C", "0 0 FF FF FF 0 0 0", 32},
              {"0 0 2 z9 s2 s1 10 20 1F 80 0 7C", "0 0 FF 0 FF 0 0 0", 16},
              {"0 0 A z9 s2 s1 20 38 1 1 2 3 4 5 6 7 8", "7 6 5 8 3 2 1 4", 32},
              {"2 0 2 z9 s1 s2 18 0 'id 1 2 3 5 6 7", "7 6 5 0 3 2 1 0", 24},
              {"0 1 9 s4 s2 20 z4 s2 s1 8 20 1 2 3 4 5 6 7 8 1 5 4", "7 6 5 8 3 2 1 4", 32},
              {"0 1 1 s0 s2 20 z4 s2 s1 8 20 1 2 3 0 5 6 7 0 0 1", "3 2 1 0 7 6 5 0", 8},
              {"0 1 1 s4 s2 18 z4 s2 s1 8 20 1 2 3 5 6 7 5 3", "", 0},  // below the palette
              {"0 1 1 s0 s2 18 z4 s2 s1 8 20 1 2 3 5 6 7 1 2", "", 0},
              {"0 0 2 z9 s2 s1 18 20 1 2 3 5 6", "", 0},
              {"0 0 A z9 s2 s1 18 20 1 1 2 3 5 6", "", 0},
              {"0 0 A z9 s65535 s65535 20 20 FF 1 2 3 4", "", 0}};
  for (const auto& [bytes, shown, depth] : rows) {
    SCOPED_TRACE(bytes);
    const rig::OwnedDib image = load("a.tga", Of(bytes));
    ASSERT_EQ(code_, depth == 0 ? kFileFormatDamaged : kModuleSuccess);
    if (depth == 0) continue;
    EXPECT_EQ(rig::HeaderOf(image).biBitCount, depth);
    rig::Bytes seen = rig::Shown(image, true);
    for (std::size_t i = 3; depth == 16 && i < seen.size(); i += 4) seen[i] = 0;
    EXPECT_EQ(seen, Of(shown));
  }
}

// 100 by 50 pixels: blue, then the left half red.
TEST_F(FileTest, drawings_are_drawn_or_refused) {
  const rig::Bytes drawing =
      Of("D7 CD C6 9A s0 s0 s0 s100 s50 s72 s0 s0 s22287 s1 s9 s768 s68 s0 s3 s8 s0 s0 s5 s0 s523 "
         "s0 s0 s5 s0 s524 s50 s100 s8 s0 s762 s5 s0 s0 s0 s0 s4 s0 s301 s0 s7 s0 s764 s0 s0 s255 "
         "s0 s4 s0 s301 s1 s7 s0 s1051 s50 s100 s0 s0 s7 s0 s764 s0 s255 s0 s0 s4 s0 s301 s2 "
         "s7 s0 s1051 s50 s50 s0 s0 s3 s0 s0");
  const auto image = load("a.wmf", drawing);
  ASSERT_TRUE(image);
  const rig::Bytes shown = rig::Shown(image);
  ASSERT_EQ(shown.size(), 100U * 50 * 3);
  const auto pixel = shown.begin() + 25 * 300;
  EXPECT_EQ(rig::Bytes(pixel + 60, pixel + 63), (rig::Bytes{255, 0, 0}));
  EXPECT_EQ(rig::Bytes(pixel + 240, pixel + 243), (rig::Bytes{0, 0, 255}));
  // A pen beyond the slots, a record beyond the end and one of no length: each would be trusted.
  for (const auto& [at, value] : {std::pair{106, 9}, {40, 200}, {40, 0}, {32, 1}, {24, 8}}) {
    rig::Bytes wrong = drawing;
    wrong[static_cast<std::size_t>(at)] = static_cast<std::uint8_t>(value);
    EXPECT_FALSE(load("a.wmf", wrong)) << at;
    EXPECT_EQ(code_, kFileFormatDamaged) << at;
  }
}

}  // namespace
