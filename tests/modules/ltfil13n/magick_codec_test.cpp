// The rare formats: what is written comes back and is read alike by another program, what others
// write shows the same pixels, and nothing but the format asked for is ever decoded.
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <map>

#include "platform/fault_injection.h"
#include "rare_files.h"

namespace {

using files::Bytes;

// Nothing is printed, left in the folder for temporary files, or kept in memory.
class Rare : public files::FolderTest {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(at("temporary"));
    setenv("TMPDIR", at("temporary").c_str(), 1);
    blocks_ = PlatformLiveBlocks();
    testing::internal::CaptureStderr();
  }
  void TearDown() override {
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(PlatformLiveBlocks(), blocks_);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
    EXPECT_TRUE(std::filesystem::is_empty(at("temporary")));
    unsetenv("TMPDIR");
  }

  orvo::OwnedDib loaded(const std::string& name, const Bytes& bytes, int* code = nullptr) {
    files::Write(at(name), bytes);
    return files::Load(at(name), code);
  }
  int codeOf(const std::string& name, const Bytes& bytes) {
    int code = 0;
    (void)loaded(name, bytes, &code);
    return code;
  }

  // Small files of every kind that is read, by name.
  std::map<std::string, Bytes> samples() {
    std::map<std::string, Bytes> made{{"planes.pcx", files::PcxOfPlanes()},
                                      {"16.tga", files::TgaOf16Bits()},
                                      {"a.wmf", files::Metafile()},
                                      {"a.wpg", files::WordPerfectBitmap()}};
    struct Kind {
      const char* name;
      int format;
      int depth;
    };
    for (const Kind& kind : {Kind{"8.pcx", kFormatPcx, 8}, Kind{"24.tga", kFormatTga, 24},
                             Kind{"8.ras", kFormatRas, 8}, Kind{"24.pct", kFormatPct, 24}}) {
      const orvo::OwnedDib image = pictures::Noise(23, 11, kind.depth, 1);
      EXPECT_EQ(files::Save(image.get(), at(kind.name), kind.format), kModuleSuccess);
      made[kind.name] = files::Read(at(kind.name));
    }
    return made;
  }

 private:
  std::size_t blocks_ = 0;
};

struct Row {
  const char* name;
  int format;
  const char* extension;
  int depth;
  bool inColor;
  int depthReturned;
  bool keepsResolution;
};

class RareRoundTrip : public Rare, public testing::WithParamInterface<Row> {};

constexpr Row kRows[] = {
    {"pcx_1", kFormatPcx, "pcx", 1, false, 1, true},
    {"pcx_1_in_colors", kFormatPcx, "pcx", 1, true, 8, true},
    {"pcx_4", kFormatPcx, "pcx", 4, true, 8, true},
    {"pcx_8", kFormatPcx, "pcx", 8, true, 8, true},
    {"pcx_16", kFormatPcx, "pcx", 16, false, 24, true},
    {"pcx_24", kFormatPcx, "pcx", 24, false, 24, true},
    {"pcx_32", kFormatPcx, "pcx", 32, false, 24, true},
    {"tga_1", kFormatTga, "tga", 1, false, 8, false},
    {"tga_4", kFormatTga, "tga", 4, true, 8, false},
    {"tga_8_gray", kFormatTga, "tga", 8, false, 8, false},
    {"tga_8", kFormatTga, "tga", 8, true, 8, false},
    {"tga_16", kFormatTga, "tga", 16, false, 24, false},
    {"tga_24", kFormatTga, "tga", 24, false, 24, false},
    {"tga_32", kFormatTga, "tga", 32, false, 32, false},
    {"ras_1", kFormatRas, "ras", 1, false, 1, false},
    {"ras_4", kFormatRas, "ras", 4, true, 8, false},
    {"ras_8", kFormatRas, "ras", 8, true, 8, false},
    {"ras_24", kFormatRas, "ras", 24, false, 24, false},
    {"ras_32", kFormatRas, "ras", 32, false, 24, false},
    {"pct_1", kFormatPct, "pct", 1, false, 24, true},
    {"pct_8", kFormatPct, "pct", 8, true, 24, true},
    {"pct_24", kFormatPct, "pct", 24, false, 24, true},
};

TEST_P(RareRoundTrip, keeps_pixels_and_is_read_alike_by_another_program) {
  const Row& row = GetParam();
  const std::string path = at(std::string("a.") + row.extension);
  for (const int width : {1, 9, 32, 255, 300}) {
    SCOPED_TRACE(width);
    if (row.format == kFormatPct && width < 8) continue;
    const orvo::OwnedDib saved = row.inColor ? pictures::NoiseInColor(width, 6, row.depth, 1)
                                             : pictures::Noise(width, 6, row.depth, 2);
    ASSERT_EQ(files::Save(saved.get(), path, row.format), kModuleSuccess);
    const orvo::OwnedDib back = files::Load(path);
    ASSERT_TRUE(back);
    const bool withFourth = row.depthReturned == 32;
    EXPECT_EQ(files::ShownPixels(back.get(), withFourth),
              files::ShownPixels(saved.get(), withFourth));
    const BITMAPINFOHEADER header = *pictures::Locked(back.get()).header();
    EXPECT_EQ(header.biBitCount, row.depthReturned);
    EXPECT_EQ(header.biXPelsPerMeter, row.keepsResolution ? 11811 : 0);

    LTFILEINFO info{};
    ASSERT_EQ(L_FileInfo(path.c_str(), &info, 0, nullptr), kModuleSuccess);
    EXPECT_EQ(info.format, row.format);
    EXPECT_EQ(info.width, width);
    EXPECT_EQ(info.bitsPerPixel, row.depthReturned);
    EXPECT_EQ(info.xResolution, row.keepsResolution ? 300 : 0);

    // That program takes the two colours of a 1-bit PCX the other way round.
    const bool isReadAlike = row.format != kFormatPcx || row.depthReturned != 1;
    if (width == 255 && isReadAlike && files::HasProgram("convert")) {
      EXPECT_EQ(files::OutputOf("convert " + path + " -auto-orient -alpha off -depth 8 bgr:- 2>&1"),
                files::ShownPixels(saved.get()));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, RareRoundTrip, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

// A PICT this narrow would not be read back as it was.
TEST_F(Rare, what_a_format_cannot_hold_is_not_written) {
  EXPECT_EQ(files::Save(pictures::Noise(7, 5, 8, 1).get(), at("a.pct"), kFormatPct),
            kFileFormatNotWritten);
  EXPECT_EQ(files::Save(pictures::Noise(40000, 1, 8, 1).get(), at("a.pcx"), kFormatPcx),
            kFileFormatNotWritten);
  EXPECT_EQ(fileCount(), 1U) << "more than the folder for temporary files";
}

TEST_F(Rare, shows_what_others_write) {
  if (!files::HasProgram("gm")) GTEST_SKIP() << "needs graphicsmagick";
  struct Variant {
    const char* arguments;
    const char* file;
    int depth;
  };
  for (const Variant& variant :
       {Variant{"-compress None", "a.pcx", 24}, Variant{"-monochrome", "a.pcx", 1},
        Variant{"-colors 20", "a.dcx", 8}, Variant{"", "a.ras", 24},
        Variant{"-monochrome", "a.ras", 1}, Variant{"-compress RLE", "a.tga", 24},
        Variant{"-colors 90 -compress RLE", "a.tga", 8}, Variant{"-colorspace Gray", "a.tga", 8},
        Variant{"", "a.pct", 24}}) {
    SCOPED_TRACE(std::string(variant.arguments) + " " + variant.file);
    const std::string inFolder = "cd " + at("") + " && gm convert ";
    const std::string scene = "-size 61x43 gradient:red-blue ";
    ASSERT_EQ(std::system((inFolder + scene + variant.arguments + " -depth 8 seen.ppm && " +
                           inFolder + "seen.ppm " + variant.arguments + " " + variant.file)
                              .c_str()),
              0);
    const orvo::OwnedDib image = files::Load(at(variant.file));
    ASSERT_TRUE(image);
    EXPECT_EQ(pictures::Locked(image.get()).layout().depth, variant.depth);
    Bytes seen = files::OutputOf(inFolder + variant.file + " -depth 8 rgb:-");
    for (std::size_t i = 0; i + 2 < seen.size(); i += 3) std::swap(seen[i], seen[i + 2]);
    EXPECT_EQ(files::ShownPixels(image.get()), seen);
  }
}

TEST_F(Rare, pages_of_dcx_and_the_fixed_size_of_pcd) {
  if (!files::HasProgram("gm")) GTEST_SKIP() << "needs graphicsmagick";
  ASSERT_EQ(
      std::system(("cd " + at("") + " && gm convert -size 8x6 xc:red -size 9x7 xc:blue a.dcx" +
                   " && gm convert -size 90x60 xc:red a.pcd")
                      .c_str()),
      0);
  LTFILEINFO info{};
  LTLOADOPTIONS second{sizeof second, 2};
  ASSERT_EQ(L_FileInfo(at("a.dcx").c_str(), &info, 0, nullptr), kModuleSuccess);
  EXPECT_EQ(info.pageCount, 2);
  EXPECT_EQ(info.width, 8);
  ASSERT_EQ(L_FileInfo(at("a.dcx").c_str(), &info, kInfoUsesOptions, &second), kModuleSuccess);
  EXPECT_EQ(info.width, 9);
  EXPECT_EQ(info.page, 2);
  second.page = 3;
  EXPECT_EQ(L_FileInfo(at("a.dcx").c_str(), &info, kInfoUsesOptions, &second), kModuleBadParameter);

  const orvo::OwnedDib disc = files::Load(at("a.pcd"));
  ASSERT_TRUE(disc);
  EXPECT_EQ(pictures::Locked(disc.get()).layout().width, 768);
  EXPECT_EQ(pictures::Locked(disc.get()).layout().depth, 24);
}

TEST_F(Rare, files_made_byte_by_byte_show_what_they_mean) {
  const orvo::OwnedDib planes = loaded("a.pcx", files::PcxOfPlanes());
  ASSERT_TRUE(planes);
  EXPECT_EQ(pictures::Locked(planes.get()).layout().depth, 4);
  const std::vector<int> reds = files::Reds(planes.get());
  for (int x = 0; x < 16; ++x) EXPECT_EQ(reds[static_cast<std::size_t>(x)], 16 * x + 1);

  const orvo::OwnedDib narrow = loaded("a.tga", files::TgaOf16Bits());
  ASSERT_TRUE(narrow);
  const pictures::Locked pixels(narrow.get());
  EXPECT_EQ(pixels.layout().depth, 16);
  for (int x = 0; x < 32; ++x) {
    const int pixel = pixels.row(0)[2 * x] | pixels.row(0)[2 * x + 1] << 8;
    EXPECT_EQ(pixel & 0x7FFF, x << 10 | (31 - x) << 5 | 7);
  }

  const orvo::OwnedDib words = loaded("a.wpg", files::WordPerfectBitmap());
  ASSERT_TRUE(words);
  EXPECT_EQ(pictures::Locked(words.get()).layout().depth, 4);
  EXPECT_EQ(files::Reds(words.get()), (std::vector{10, 20, 30, 40, 50, 60, 70, 80}));

  const orvo::OwnedDib drawing = loaded("a.wmf", files::Metafile());
  ASSERT_TRUE(drawing);
  const Bytes shown = files::ShownPixels(drawing.get());
  ASSERT_EQ(shown.size(), 3U * 100 * 50);
  const auto pixelAt = [&](std::size_t x) {
    const auto begin = shown.begin() + static_cast<std::ptrdiff_t>(3 * (25 * 100 + x));
    return Bytes(begin, begin + 3);
  };
  EXPECT_EQ(pixelAt(20), (Bytes{0, 0, 255}));
  EXPECT_EQ(pixelAt(80), (Bytes{255, 0, 0}));
}

TEST_F(Rare, a_name_never_opens_another_decoder) {
  const auto text = [](const char* words) { return Bytes(words, words + std::strlen(words)); };
  const orvo::OwnedDib image = pictures::Noise(30, 30, 24, 1);
  ASSERT_EQ(files::Save(image.get(), at("a.png"), kFormatPng), kModuleSuccess);
  const Bytes script = text("push graphic-context image over 0,0 0,0 '/etc/passwd' pop");
  const Bytes markup = text("<svg xmlns='http://www.w3.org/2000/svg'><image href='/etc/a'/></svg>");
  const Bytes postscript = text("%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 9 9\nshowpage\n");
  for (const char* const name : {"a.pct", "a.pcd", "a.tga", "a.wmf", "a.wpg", "a.eps", "a.mvg"}) {
    for (const Bytes& content : {script, markup, postscript}) {
      Bytes padded = content;
      padded.resize(4000, ' ');
      EXPECT_NE(codeOf(name, padded), kModuleSuccess) << name;
    }
  }
  EXPECT_EQ(codeOf("b.eps", postscript), kFileFormatNotRead);
  EXPECT_EQ(codeOf("png.tga", files::Read(at("a.png"))), kModuleSuccess) << "a PNG all the same";
}

// Cut or scrambled, they may load in part where the format cannot tell, but do no harm.
TEST_F(Rare, damaged_files_do_no_harm) {
  std::mt19937 random(7);
  for (const auto& [name, whole] : samples()) {
    const std::size_t step = std::max<std::size_t>(whole.size() / 60, 1);
    for (std::size_t length = 0; length < whole.size(); length += step) {
      const int code = codeOf("cut-" + name,
                              {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
      if (length < whole.size() / 2) {
        EXPECT_NE(code, kModuleSuccess) << name << " at " << length;
      }
    }
    for (int round = 0; round < 60; ++round) {
      Bytes bytes = whole;
      for (int i = 0; i <= round % 4; ++i) {
        bytes[random() % std::min<std::size_t>(bytes.size(), 130)] =
            static_cast<std::uint8_t>(random());
      }
      const int code = codeOf("scrambled-" + name, bytes);
      LTFILEINFO info{};
      const int infoCode = L_FileInfo(at("scrambled-" + name).c_str(), &info, 0, nullptr);
      if (code == kModuleSuccess) {
        EXPECT_EQ(infoCode, kModuleSuccess) << name;
      }
    }
  }
}

TEST_F(Rare, claims_of_60000_by_60000_pixels_fail) {
  std::map<std::string, Bytes> all = samples();
  const auto lie = [&](const char* name, std::size_t offset, Bytes measure) {
    Bytes bytes = all.at(name);
    std::copy(measure.begin(), measure.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    EXPECT_NE(codeOf(name, bytes), kModuleSuccess) << name;
  };
  lie("8.pcx", 8, {0x5F, 0xEA, 0x5F, 0xEA});
  lie("24.tga", 12, {0x60, 0xEA, 0x60, 0xEA});
  lie("8.ras", 4, {0, 0, 0xEA, 0x60, 0, 0, 0xEA, 0x60});
  lie("a.wpg", 80, {0x60, 0xEA, 0x60, 0xEA});
}

TEST_F(Rare, progress_rises_and_a_stop_leaves_nothing) {
  static std::vector<int> seen;
  static int stopAt = 0;
  const auto callback = [](int percent, void* /*userData*/) {
    seen.push_back(percent);
    return percent >= stopAt ? 16 : 0;
  };
  const orvo::OwnedDib image = pictures::Noise(200, 150, 24, 1);
  const std::string path = at("a.pcx");
  L_SetStatusCallBack(callback, nullptr);
  for (const int stop : {101, 70, 20}) {
    stopAt = stop;
    const int expected = stop > 100 ? kModuleSuccess : kModuleAborted;
    for (const bool saves : {true, false}) {
      SCOPED_TRACE(std::to_string(stop) + (saves ? " saving" : " loading"));
      seen.clear();
      int code = 0;
      if (saves) {
        std::filesystem::remove(path);
        code = files::Save(image.get(), path, kFormatPcx);
        EXPECT_EQ(std::filesystem::exists(path), stop > 100);
      } else {
        stopAt = 101;
        ASSERT_EQ(files::Save(image.get(), path, kFormatPcx), kModuleSuccess);
        seen.clear();
        stopAt = stop;
        EXPECT_EQ(static_cast<bool>(files::Load(path, &code)), stop > 100);
      }
      EXPECT_EQ(code, expected);
      EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end(), std::less_equal<>()));
      EXPECT_GE(seen.size(), 4U);
      EXPECT_EQ(seen.back() >= stop, stop <= 100);
      if (stop > 100) {
        EXPECT_EQ(seen.back(), 100);
      }
    }
  }
  L_SetStatusCallBack(nullptr, nullptr);
}

// The bytes between the marks of a PostScript file's data, which are deflated pixels written as
// groups of five letters for four bytes.
Bytes PostscriptPixels(const Bytes& file, std::size_t size) {
  const std::string text(file.begin(), file.end());
  const std::string lastNumber = "\n4\n";  // of those that describe the pixels to follow
  std::size_t place = text.find(lastNumber, text.find("DisplayImage\n")) + lastNumber.size();
  Bytes packed;
  std::uint32_t group = 0;
  int letters = 0;
  for (; place < text.size() && text[place] != '~'; ++place) {
    const char letter = text[place];
    if (letter == 'z') packed.insert(packed.end(), 4, 0);
    if (letter < '!' || letter > 'u') continue;
    group = group * 85 + static_cast<std::uint32_t>(letter - '!');
    if (++letters < 5) continue;
    for (int shift = 24; shift >= 0; shift -= 8) {
      packed.push_back(static_cast<std::uint8_t>(group >> shift));
    }
    group = 0;
    letters = 0;
  }
  for (int i = letters; letters > 0 && i < 5; ++i) group = group * 85 + 84;
  for (int i = 0; i + 1 < letters; ++i) {
    packed.push_back(static_cast<std::uint8_t>(group >> (24 - 8 * i)));
  }
  Bytes pixels(size);
  uLongf count = size;
  if (uncompress(pixels.data(), &count, packed.data(), packed.size()) != Z_OK) return {};
  return pixels;
}

TEST_F(Rare, eps_holds_the_pixels_in_their_size_on_paper) {
  const orvo::OwnedDib image = pictures::Noise(150, 75, 24, 1);
  ASSERT_EQ(files::Save(image.get(), at("a.eps"), kFormatEps), kModuleSuccess);
  const Bytes file = files::Read(at("a.eps"));
  const std::string text(file.begin(), file.end());
  EXPECT_EQ(text.find("%!PS-Adobe-3.0 EPSF-3.0"), 0U);
  EXPECT_NE(text.find("\n%%BoundingBox: 0 0 36 18\n"), std::string::npos);
  EXPECT_TRUE(std::all_of(file.begin(), file.end(), [](std::uint8_t b) { return b < 128; }));
  Bytes pixels = PostscriptPixels(file, 3U * 150 * 75);
  for (std::size_t i = 0; i + 2 < pixels.size(); i += 3) std::swap(pixels[i], pixels[i + 2]);
  EXPECT_EQ(pixels, files::ShownPixels(image.get()));
}

}  // namespace
