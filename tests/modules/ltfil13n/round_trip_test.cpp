// What is saved comes back: pixels, depth and resolution, for each format and depth; and other
// programs find nothing wrong with the files.
#include <string>

#include "files.h"

namespace {

using files::Load;
using files::Save;
using files::ShownPixels;

struct Row {
  const char* name;
  int format;
  const char* extension;
  int depth;
  bool inColor;       // the palette has colours
  int depthReturned;  // when it is loaded again
};

class RoundTrip : public files::FolderTest, public testing::WithParamInterface<Row> {};

constexpr Row kRows[] = {
    {"bmp_1", kFormatBmp, "bmp", 1, true, 1},
    {"bmp_4", kFormatBmp, "bmp", 4, true, 4},
    {"bmp_8", kFormatBmp, "bmp", 8, true, 8},
    {"bmp_16", kFormatBmp, "bmp", 16, false, 16},
    {"bmp_24", kFormatBmp, "bmp", 24, false, 24},
    {"bmp_32", kFormatBmp, "bmp", 32, false, 32},
    {"png_1", kFormatPng, "png", 1, false, 1},
    {"png_1_colors", kFormatPng, "png", 1, true, 1},
    {"png_4", kFormatPng, "png", 4, false, 4},
    {"png_4_colors", kFormatPng, "png", 4, true, 4},
    {"png_8", kFormatPng, "png", 8, false, 8},
    {"png_8_colors", kFormatPng, "png", 8, true, 8},
    {"png_16_becomes_24", kFormatPng, "png", 16, false, 24},
    {"png_24", kFormatPng, "png", 24, false, 24},
    {"png_32", kFormatPng, "png", 32, false, 32},
    {"tiff_1", kFormatTiff, "tif", 1, false, 1},
    {"tiff_1_colors", kFormatTiff, "tif", 1, true, 1},
    {"tiff_4", kFormatTiff, "tif", 4, false, 4},
    {"tiff_4_colors", kFormatTiff, "tif", 4, true, 4},
    {"tiff_8", kFormatTiff, "tif", 8, false, 8},
    {"tiff_8_colors", kFormatTiff, "tif", 8, true, 8},
    {"tiff_16_becomes_24", kFormatTiff, "tif", 16, false, 24},
    {"tiff_24", kFormatTiff, "tif", 24, false, 24},
    {"tiff_32", kFormatTiff, "tif", 32, false, 32},
    {"tiff_g4", kFormatTiffCompressed, "tif", 1, false, 1},
    {"tiff_lzw_1_colors", kFormatTiffCompressed, "tif", 1, true, 1},
    {"tiff_lzw_4", kFormatTiffCompressed, "tif", 4, false, 4},
    {"tiff_lzw_8", kFormatTiffCompressed, "tif", 8, false, 8},
    {"tiff_lzw_8_colors", kFormatTiffCompressed, "tif", 8, true, 8},
    {"tiff_lzw_24", kFormatTiffCompressed, "tif", 24, false, 24},
    {"tiff_lzw_32", kFormatTiffCompressed, "tif", 32, false, 32},
};

TEST_P(RoundTrip, keeps_pixels_depth_and_resolution) {
  const Row& row = GetParam();
  const std::string path = at(std::string("picture.") + row.extension);
  for (const int width : {1, 2, 7, 8, 31, 33, 250}) {
    const int height = width == 250 ? 300 : 5;
    const orvo::OwnedDib saved = row.inColor ? pictures::NoiseInColor(width, height, row.depth, 1)
                                             : pictures::Noise(width, height, row.depth, 2);
    pictures::Locked(saved.get()).header()->biYPelsPerMeter = 5001;  // no whole dots per inch
    const files::Bytes before = pictures::BytesOf(saved.get());
    ASSERT_EQ(Save(saved.get(), path, row.format), kModuleSuccess);
    EXPECT_EQ(pictures::BytesOf(saved.get()), before) << "the source changed";

    const orvo::OwnedDib loaded = Load(path);
    ASSERT_TRUE(loaded);
    const bool withFourth = row.depth == 32;
    EXPECT_EQ(ShownPixels(loaded.get(), withFourth), ShownPixels(saved.get(), withFourth)) << width;
    const BITMAPINFOHEADER header = *pictures::Locked(loaded.get()).header();
    EXPECT_EQ(header.biBitCount, row.depthReturned);
    EXPECT_EQ(header.biXPelsPerMeter, 11811);
    EXPECT_EQ(header.biYPelsPerMeter, 5001);

    LTFILEINFO info{};
    ASSERT_EQ(L_FileInfo(path.c_str(), &info, 0, nullptr), kModuleSuccess);
    EXPECT_EQ(info.format, row.format);
    EXPECT_EQ(info.width, width);
    EXPECT_EQ(info.height, height);
    EXPECT_EQ(info.bitsPerPixel, row.depthReturned);
    EXPECT_EQ(info.xResolution, 300);
    EXPECT_EQ(info.pageCount, 1);
    EXPECT_EQ(static_cast<std::size_t>(info.sizeInMemory), GlobalSize(loaded.get()));
    EXPECT_EQ(static_cast<std::size_t>(info.sizeOnDisk), files::Read(path).size());
  }
}

// Seen by other programs: the same pixels and 300 dots per inch.
TEST_P(RoundTrip, is_read_alike_by_other_programs) {
  if (!files::HasProgram("convert")) GTEST_SKIP() << "needs imagemagick";
  const Row& row = GetParam();
  const std::string path = at(std::string("picture.") + row.extension);
  const orvo::OwnedDib saved = row.inColor ? pictures::NoiseInColor(37, 21, row.depth, 3)
                                           : pictures::Noise(37, 21, row.depth, 4);
  ASSERT_EQ(Save(saved.get(), path, row.format), kModuleSuccess);
  // Transparent pixels are compared with their colours.
  EXPECT_EQ(files::OutputOf("convert " + path + " -alpha off -depth 8 bgr:- 2>&1"),
            ShownPixels(saved.get()));
  const auto density =
      files::OutputOf("identify -units PixelsPerInch -format '%[fx:round(resolution.x)]' " + path);
  EXPECT_EQ(std::string(density.begin(), density.end()), "300");
  const char* const checker = std::string(row.extension) == "png"   ? "pngcheck -q "
                              : std::string(row.extension) == "tif" ? "tiffinfo -D "
                                                                    : nullptr;
  if (checker != nullptr && files::HasProgram("pngcheck") && files::HasProgram("tiffinfo")) {
    const std::string quiet = checker[0] == 'p' ? "" : " >/dev/null";
    EXPECT_EQ(std::system((checker + path + quiet).c_str()), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, RoundTrip, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

using JpegTest = files::FolderTest;

TEST_F(JpegTest, keeps_a_scene_closely_and_gray_gray) {
  for (const int depth : {8, 24, 32}) {
    const orvo::OwnedDib scene = files::Scene(123, 77, depth);
    ASSERT_EQ(Save(scene.get(), at("a.jpg"), kFormatJpeg, 100), kModuleSuccess);
    const orvo::OwnedDib loaded = Load(at("a.jpg"));
    ASSERT_TRUE(loaded);
    EXPECT_LE(files::LargestDifference(ShownPixels(loaded.get()), ShownPixels(scene.get())), 4);
    const BITMAPINFOHEADER header = *pictures::Locked(loaded.get()).header();
    EXPECT_EQ(header.biBitCount, depth == 8 ? 8 : 24);
    EXPECT_EQ(header.biXPelsPerMeter, 11811);
  }
}

// Depths that JPEG lacks are brought to gray or to colours, whichever the image has.
TEST_F(JpegTest, takes_every_depth) {
  for (const int depth : {1, 4, 8, 16}) {
    const bool hasPalette = depth <= 8;
    orvo::OwnedDib image = pictures::Blank(64, 64, depth);
    const pictures::Locked pixels(image.get());
    if (hasPalette) pixels.palette()[0] = RGBQUAD{30, 200, 90, 0};
    ASSERT_EQ(Save(image.get(), at("a.jpg"), kFormatJpeg, 95), kModuleSuccess);
    const orvo::OwnedDib colored = Load(at("a.jpg"));
    EXPECT_LE(files::LargestDifference(ShownPixels(colored.get()), ShownPixels(image.get())), 2);

    if (hasPalette) pixels.palette()[0] = RGBQUAD{90, 90, 90, 0};
    ASSERT_EQ(Save(image.get(), at("b.jpg"), kFormatJpeg, 95), kModuleSuccess);
    const orvo::OwnedDib gray = Load(at("b.jpg"));
    EXPECT_LE(files::LargestDifference(ShownPixels(gray.get()), ShownPixels(image.get())), 2);
    EXPECT_EQ(pictures::Locked(gray.get()).header()->biBitCount, hasPalette ? 8 : 24);
  }
}

TEST_F(JpegTest, quality_is_a_scale_of_1_to_100_with_90_as_default) {
  const orvo::OwnedDib image = pictures::Noise(64, 64, 24, 9);
  const auto bytesAt = [&](int quality) {
    EXPECT_EQ(Save(image.get(), at("a.jpg"), kFormatJpeg, quality), kModuleSuccess);
    return files::Read(at("a.jpg"));
  };
  EXPECT_LT(bytesAt(1).size(), bytesAt(50).size());
  EXPECT_LT(bytesAt(50).size(), bytesAt(100).size());
  EXPECT_EQ(bytesAt(0), bytesAt(90));
  EXPECT_EQ(bytesAt(-5), bytesAt(90));
  EXPECT_EQ(bytesAt(101), bytesAt(100));
}

// Padding bytes of 0 are no transparency.
TEST_F(JpegTest, empty_fourth_bytes_are_no_alpha_in_formats_that_have_one) {
  for (const int format : {kFormatPng, kFormatTiff}) {
    const orvo::OwnedDib image = files::Scene(9, 9, 32);
    ASSERT_EQ(Save(image.get(), at("a"), format), kModuleSuccess);
    const orvo::OwnedDib loaded = Load(at("a"));
    EXPECT_EQ(pictures::Locked(loaded.get()).header()->biBitCount, 24);
    EXPECT_EQ(ShownPixels(loaded.get()), ShownPixels(image.get()));
  }
}

}  // namespace
