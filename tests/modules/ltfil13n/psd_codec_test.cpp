// Photoshop documents: what is written comes back, what others write shows the same pixels, and
// documents made byte by byte show what their bytes mean.
#include "platform/fault_injection.h"
#include "rare_files.h"

namespace {

using files::Builder;
using files::Bytes;

class Psd : public files::FolderTest {
 protected:
  void SetUp() override { blocks_ = PlatformLiveBlocks(); }
  void TearDown() override {
    EXPECT_EQ(PlatformLiveBlocks(), blocks_);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
  }

  orvo::OwnedDib loaded(const Bytes& bytes, int* code = nullptr) {
    files::Write(at("a.psd"), bytes);
    return files::Load(at("a.psd"), code);
  }
  int codeOf(const Bytes& bytes) {
    int code = 0;
    (void)loaded(bytes, &code);
    return code;
  }

 private:
  std::size_t blocks_ = 0;
};

struct Document {
  int version = 1;
  int channels = 1;
  int height = 1;
  int width = 1;
  int bits = 8;
  int mode = 1;
  Bytes resources{};
  int compression = 0;
  Bytes picture{};
};

Bytes BytesOf(const Document& document) {
  Builder file;
  file.add({'8', 'B', 'P', 'S'}).big16({document.version}).zeros(6);
  file.big16({document.channels}).big32({document.height, document.width});
  file.big16({document.bits, document.mode}).big32({0});
  file.big32({static_cast<int>(document.resources.size())}).add(document.resources);
  return file.big32({0}).big16({document.compression}).add(document.picture);
}

TEST_F(Psd, pixels_depth_and_resolution_come_back) {
  struct Row {
    int depth;
    bool inColor;
    int depthReturned;
  };
  for (const Row& row :
       {Row{1, false, 1}, Row{1, true, 8}, Row{4, true, 8}, Row{8, false, 8}, Row{8, true, 8},
        Row{16, false, 24}, Row{24, false, 24}, Row{32, false, 24}}) {
    for (const int width : {1, 7, 8, 33, 130, 400}) {
      SCOPED_TRACE(std::to_string(row.depth) + " bits, width " + std::to_string(width));
      const orvo::OwnedDib saved = row.inColor ? pictures::NoiseInColor(width, 5, row.depth, 1)
                                               : pictures::Noise(width, 5, row.depth, 2);
      pictures::Locked(saved.get()).header()->biYPelsPerMeter = 5001;  // no whole dots per inch
      ASSERT_EQ(files::Save(saved.get(), at("a.psd"), kFormatPsd), kModuleSuccess);
      const orvo::OwnedDib back = files::Load(at("a.psd"));
      ASSERT_TRUE(back);
      EXPECT_EQ(files::ShownPixels(back.get()), files::ShownPixels(saved.get()));
      const BITMAPINFOHEADER header = *pictures::Locked(back.get()).header();
      EXPECT_EQ(header.biBitCount, row.depthReturned);
      EXPECT_EQ(header.biXPelsPerMeter, 11811);
      EXPECT_EQ(header.biYPelsPerMeter, 5001);
    }
  }
}

TEST_F(Psd, black_on_white_and_white_on_black_stay_1_bit) {
  const orvo::OwnedDib image = pictures::Noise(21, 4, 1, 3);
  {
    const pictures::Locked locked(image.get());
    std::swap(locked.palette()[0], locked.palette()[1]);
  }
  ASSERT_EQ(files::Save(image.get(), at("a.psd"), kFormatPsd), kModuleSuccess);
  const orvo::OwnedDib back = files::Load(at("a.psd"));
  EXPECT_EQ(pictures::Locked(back.get()).layout().depth, 1);
  EXPECT_EQ(files::ShownPixels(back.get()), files::ShownPixels(image.get()));
}

TEST_F(Psd, runs_shorten_flat_pictures) {
  const orvo::OwnedDib flat = pictures::Blank(1000, 100, 24);
  ASSERT_EQ(files::Save(flat.get(), at("a.psd"), kFormatPsd), kModuleSuccess);
  EXPECT_LT(files::Read(at("a.psd")).size(), 7000U);
}

TEST_F(Psd, shows_what_others_write_and_see) {
  if (!files::HasProgram("convert")) GTEST_SKIP() << "needs imagemagick";
  struct Row {
    const char* arguments;
    int depth;
    int tolerance;
  };
  const std::string scene = "cd " + at("") + " && convert -size 61x43 plasma:red-blue -seed 4 ";
  for (const Row& row : {Row{"", 24, 0}, Row{"-depth 16", 24, 1}, Row{"-colorspace Gray", 8, 0},
                         Row{"-colorspace Gray -depth 16", 8, 1}, Row{"-monochrome", 8, 0},
                         Row{"-colorspace CMYK", 24, 2}, Row{"\\( -clone 0 -negate \\)", 24, 0}}) {
    for (const char* const compression : {" -compress None", " -compress RLE"}) {
      const bool isPlain = std::string(row.arguments).empty();
      if (!isPlain && compression == std::string(" -compress None")) continue;
      SCOPED_TRACE(std::string(row.arguments) + compression);
      const std::string command = scene + "-depth 8 " + row.arguments + compression +
                                  " -units PixelsPerInch -density 300x150 a.psd 2>&1";
      ASSERT_EQ(std::system(command.c_str()), 0) << command;
      const orvo::OwnedDib image = files::Load(at("a.psd"));
      ASSERT_TRUE(image);
      const Bytes expected =
          files::OutputOf("convert '" + at("a.psd[0]") + "' -colorspace sRGB -depth 8 bgr:-");
      EXPECT_LE(files::LargestDifference(files::ShownPixels(image.get()), expected), row.tolerance);
      const BITMAPINFOHEADER header = *pictures::Locked(image.get()).header();
      EXPECT_EQ(header.biBitCount, row.depth);
      EXPECT_EQ(orvo::DotsPerInch(header.biXPelsPerMeter), 300);
      EXPECT_EQ(orvo::DotsPerInch(header.biYPelsPerMeter), 150);
    }
  }
}

TEST_F(Psd, others_see_what_is_written) {
  if (!files::HasProgram("convert")) GTEST_SKIP() << "needs imagemagick";
  for (const int depth : {1, 8, 24}) {
    const orvo::OwnedDib image = pictures::Noise(37, 21, depth, 3);
    ASSERT_EQ(files::Save(image.get(), at("a.psd"), kFormatPsd), kModuleSuccess);
    EXPECT_EQ(files::OutputOf("convert '" + at("a.psd[0]") + "' -depth 8 bgr:- 2>&1"),
              files::ShownPixels(image.get()))
        << depth;
  }
}

TEST_F(Psd, rows_of_runs_may_hold_idle_bytes_and_nothing_but_a_row) {
  Document document{.height = 2, .width = 5, .compression = 1};
  const auto rows = [&](const Bytes& first, const Bytes& second) {
    document.picture = Builder()
                           .big16({static_cast<int>(first.size()), static_cast<int>(second.size())})
                           .add(first)
                           .add(second);
    return BytesOf(document);
  };
  const Bytes plain = Builder().add({4, 1, 2, 3, 4, 5});
  const orvo::OwnedDib image = loaded(rows(Builder().add({128, 0, 9, 253, 7}), plain));
  ASSERT_TRUE(image);
  EXPECT_EQ(files::Reds(image.get()), (std::vector{9, 7, 7, 7, 7, 1, 2, 3, 4, 5}));

  EXPECT_EQ(codeOf(rows(Builder().add({253, 7}), plain)), kFileFormatDamaged) << "short row";
  EXPECT_EQ(codeOf(rows(Builder().add({251, 7}), plain)), kFileFormatDamaged) << "long row";
  EXPECT_EQ(codeOf(rows(Builder().add({5, 1, 2}), plain)), kFileFormatDamaged) << "cut bytes";
}

TEST_F(Psd, inks_samples_of_16_bits_and_further_channels) {
  // Cyan, magenta, yellow, black as 255 for none, then a mask. Two pixels.
  const Document inks{.channels = 5,
                      .width = 2,
                      .mode = 4,
                      .picture = Builder().add({255, 100, 255, 200, 0, 50, 255, 128, 9, 9})};
  EXPECT_EQ(files::ShownPixels(loaded(BytesOf(inks)).get()),
            Bytes(Builder().add({0, 255, 255, 25, 100, 50})));

  const Document fine{.width = 3, .bits = 16, .picture = Builder().big16({0xFFFF, 0x7F7F, 0x00C0})};
  EXPECT_EQ(files::Reds(loaded(BytesOf(fine)).get()), (std::vector{255, 127, 1}));
}

TEST_F(Psd, the_resolution_is_found_behind_named_and_odd_resources) {
  const Bytes resources =
      Builder()
          .add({'8', 'B', 'I', 'M', 4, 0, 2, 'a', 'b', 0, 0, 0, 0, 3, 1, 2, 3, 0})
          .add({'8', 'B', 'I', 'M', 3, 0xED, 0, 0, 0, 0, 0, 16})
          .big32({600 << 16})
          .big16({1, 1})
          .big32({150 << 16})
          .big16({1, 1});
  const orvo::OwnedDib image =
      loaded(BytesOf({.resources = resources, .picture = Builder().add({77})}));
  ASSERT_TRUE(image);
  const BITMAPINFOHEADER header = *pictures::Locked(image.get()).header();
  EXPECT_EQ(orvo::DotsPerInch(header.biXPelsPerMeter), 600);
  EXPECT_EQ(orvo::DotsPerInch(header.biYPelsPerMeter), 150);
  EXPECT_EQ(files::Reds(image.get()), std::vector{77});
}

TEST_F(Psd, documents_that_lie_or_are_cut_have_a_code) {
  const Bytes one = Builder().add({1});
  EXPECT_EQ(codeOf(BytesOf({.version = 2, .picture = one})), kFileFormatNotRead);
  EXPECT_EQ(codeOf(BytesOf({.mode = 9, .picture = one})), kFileFormatNotRead);
  EXPECT_EQ(codeOf(BytesOf({.bits = 32, .picture = one})), kFileFormatNotRead);
  EXPECT_EQ(codeOf(BytesOf({.compression = 2, .picture = one})), kFileFormatNotRead);
  EXPECT_EQ(codeOf(BytesOf({.mode = 3, .picture = one})), kFileFormatDamaged) << "one channel";
  EXPECT_EQ(codeOf(BytesOf({.height = 60000, .width = 60000})), kFileFormatDamaged);
  EXPECT_EQ(codeOf(BytesOf({.height = 30000, .width = 30000})), kModuleReadFailed);
  EXPECT_EQ(codeOf(BytesOf({.height = 30000, .width = 30000, .compression = 1})),
            kModuleReadFailed);

  const orvo::OwnedDib saved = pictures::NoiseInColor(19, 6, 8, 5);
  ASSERT_EQ(files::Save(saved.get(), at("b.psd"), kFormatPsd), kModuleSuccess);
  const Bytes whole = files::Read(at("b.psd"));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_NE(codeOf({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}),
              kModuleSuccess)
        << length;
  }
}

}  // namespace
