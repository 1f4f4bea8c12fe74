// Files that another program writes show the same pixels here as there.
#include "files.h"

namespace {

struct Row {
  const char* name;
  const char* arguments;  // of convert, between the scene and the file
  const char* file;
  int depth;
  int tolerance;  // largest difference of a byte: decoders of lossy forms may round differently
};

// Colours, smooth and sharp, 61 by 43 pixels.
const char* const kScene =
    "convert -size 61x43 gradient:red-blue \\( -size 61x43 plasma:fractal -seed 5 \\) "
    "-average -fill yellow -draw 'rectangle 5,5 20,18' -alpha off -depth 8 +repage ";

const Row kRows[] = {
    {"bmp_24", "", "BMP3:a.bmp", 24, 0},
    {"bmp_v4", "", "a.bmp", 24, 0},
    {"bmp_palette", "-colors 60", "BMP3:a.bmp", 8, 0},
    {"bmp_runs", "-colors 60 -compress RLE", "BMP3:a.bmp", 8, 0},
    {"bmp_4", "-colors 9", "BMP3:a.bmp", 4, 0},
    {"bmp_1", "-monochrome", "BMP3:a.bmp", 1, 0},
    {"bmp_os2", "", "BMP2:a.bmp", 24, 0},
    {"jpeg_420", "-quality 80 -sampling-factor 2x2", "a.jpg", 24, 0},
    {"jpeg_444", "-quality 95 -sampling-factor 1x1", "a.jpg", 24, 0},
    {"jpeg_progressive", "-interlace JPEG", "a.jpg", 24, 0},
    {"jpeg_gray", "-colorspace Gray", "a.jpg", 8, 0},
    {"jpeg_cmyk", "-colorspace CMYK", "a.jpg", 24, 2},
    {"jpeg_oriented", "-orient RightTop", "a.jpg", 24, 0},
    {"png_24", "", "a.png", 24, 0},
    {"png_interlaced", "-interlace PNG", "a.png", 24, 0},
    {"png_48", "-depth 16 -define png:bit-depth=16", "a.png", 24, 1},
    {"png_palette_8", "-colors 200 -type Palette", "PNG8:a.png", 8, 0},
    {"png_palette_2_interlaced", "-colors 4 -type Palette -interlace PNG -define png:bit-depth=2",
     "PNG8:a.png", 4, 0},
    {"png_palette_1", "-colors 2 -type Palette -define png:bit-depth=1", "PNG8:a.png", 1, 0},
    {"png_gray_16", "-colorspace Gray -depth 16 -define png:bit-depth=16", "a.png", 8, 1},
    {"png_gray_4", "-colorspace Gray -depth 4 -define png:bit-depth=4", "a.png", 4, 0},
    {"png_gray_2", "-colorspace Gray -depth 2 -define png:bit-depth=2", "a.png", 4, 0},
    {"png_gray_1", "-colorspace Gray -monochrome -define png:bit-depth=1", "a.png", 1, 0},
    {"png_alpha", "-alpha set -channel A -evaluate set 40%", "PNG32:a.png", 32, 0},
    {"png_gray_alpha", "-colorspace Gray -alpha set -channel A -evaluate set 70%",
     "-define png:color-type=4 a.png", 32, 0},
    {"png_transparent_palette", "-colors 12 -transparent yellow", "PNG8:a.png", 32, 0},
    {"tiff_24", "-compress None", "a.tif", 24, 0},
    {"tiff_lzw_predictor", "-compress LZW -define tiff:predictor=2", "a.tif", 24, 0},
    {"tiff_deflate", "-compress Zip", "a.tif", 24, 0},
    {"tiff_packbits", "-compress RLE", "a.tif", 24, 0},
    {"tiff_one_row_strips", "-define tiff:rows-per-strip=1", "a.tif", 24, 0},
    {"tiff_tiles", "-compress Zip -define tiff:tile-geometry=16x32", "a.tif", 24, 0},
    {"tiff_planes", "-compress LZW -interlace Plane", "a.tif", 24, 0},
    {"tiff_tiled_planes", "-define tiff:tile-geometry=16x16 -interlace Plane", "a.tif", 24, 0},
    {"tiff_big_endian", "-define tiff:endian=msb -depth 16", "a.tif", 24, 1},
    {"tiff_64_bit_offsets", "", "TIFF64:a.tif", 24, 0},
    {"tiff_48", "-depth 16 -compress LZW", "a.tif", 24, 1},
    {"tiff_36", "-depth 12", "a.tif", 24, 1},
    {"tiff_gray_8", "-colorspace Gray", "a.tif", 8, 0},
    {"tiff_gray_white_is_zero", "-colorspace Gray -define quantum:polarity=min-is-white", "a.tif",
     8, 0},
    {"tiff_gray_16", "-colorspace Gray -depth 16", "a.tif", 8, 1},
    {"tiff_gray_4", "-colorspace Gray -depth 4", "a.tif", 4, 0},
    {"tiff_gray_2", "-colorspace Gray -depth 2", "a.tif", 4, 0},
    {"tiff_gray_12", "-colorspace Gray -depth 12", "a.tif", 8, 1},
    {"tiff_gray_tiles_4", "-colorspace Gray -depth 4 -define tiff:tile-geometry=32x16", "a.tif", 4,
     0},
    {"tiff_palette_8", "-colors 99 -type Palette", "a.tif", 8, 1},
    {"tiff_palette_4", "-colors 14 -type Palette -depth 4", "a.tif", 4, 0},
    {"tiff_g4", "-monochrome -compress Group4", "a.tif", 1, 0},
    {"tiff_g3", "-monochrome -compress Fax", "a.tif", 1, 0},
    {"tiff_1_black_is_zero",
     "-monochrome -depth 1 -compress LZW -define quantum:polarity=min-is-black", "a.tif", 1, 0},
    {"tiff_cmyk", "-colorspace CMYK", "a.tif", 24, 2},
    {"tiff_cmyk_planes", "-colorspace CMYK -interlace Plane -compress LZW", "a.tif", 24, 2},
    {"tiff_jpeg", "-compress JPEG -quality 95", "a.tif", 24, 2},
    {"tiff_alpha", "-alpha set -channel A -evaluate set 40%", "a.tif", 32, 0},
    {"tiff_premultiplied", "-alpha set -channel A -evaluate set 40% -define tiff:alpha=associated",
     "a.tif", 32, 1},
    {"tiff_oriented", "-orient LeftBottom -compress LZW", "a.tif", 24, 0},
    {"tiff_mirrored_diagonally", "-orient LeftTop -monochrome -compress Group4", "a.tif", 1, 0},
};

class ForeignFiles : public files::FolderTest, public testing::WithParamInterface<Row> {};

TEST_P(ForeignFiles, show_the_same_pixels) {
  if (!files::HasProgram("convert")) GTEST_SKIP() << "needs imagemagick";
  const Row& row = GetParam();
  const std::string inFolder = "cd " + at("") + " && ";
  const std::string command = inFolder + kScene + row.arguments +
                              " -units PixelsPerInch -density 300x150 " + row.file + " 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  const std::string file = std::string(row.file).find(".png") != std::string::npos   ? "a.png"
                           : std::string(row.file).find(".bmp") != std::string::npos ? "a.bmp"
                           : std::string(row.file).find(".jpg") != std::string::npos ? "a.jpg"
                                                                                     : "a.tif";
  int code = 0;
  const orvo::OwnedDib loaded = files::Load(at(file), &code);
  ASSERT_EQ(code, kModuleSuccess);
  EXPECT_EQ(pictures::Locked(loaded.get()).header()->biBitCount, row.depth);

  const bool withFourth = row.depth == 32;
  // Inks are mixed as light is, without a colour profile.
  const files::Bytes expected =
      files::OutputOf(inFolder + "convert " + file + " -auto-orient -colorspace sRGB -depth 8 " +
                      (withFourth ? "bgra:-" : "-alpha off bgr:-"));
  const files::Bytes shown = files::ShownPixels(loaded.get(), withFourth);
  EXPECT_LE(files::LargestDifference(shown, expected), row.tolerance);

  LTFILEINFO info{};
  ASSERT_EQ(L_FileInfo(at(file).c_str(), &info, 0, nullptr), kModuleSuccess);
  const BITMAPINFOHEADER header = *pictures::Locked(loaded.get()).header();
  EXPECT_EQ(info.width, header.biWidth);
  EXPECT_EQ(info.height, header.biHeight);
  EXPECT_EQ(info.bitsPerPixel, row.depth);
  if (std::string(row.file) == "BMP2:a.bmp") return;  // has no resolution
  const bool turned = header.biWidth == 43;
  EXPECT_EQ(info.xResolution, turned ? 150 : 300);
  EXPECT_EQ(info.yResolution, turned ? 300 : 150);
  EXPECT_EQ(orvo::DotsPerInch(header.biXPelsPerMeter), info.xResolution);
}

INSTANTIATE_TEST_SUITE_P(Variants, ForeignFiles, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

class Orientations : public files::FolderTest, public testing::WithParamInterface<int> {};

// A letter-like shape, tagged by number in the file, against a program that knows the tags too.
TEST_P(Orientations, stand_upright_at_every_depth) {
  if (!files::HasProgram("convert")) GTEST_SKIP() << "needs imagemagick";
  for (const char* kind : {"-monochrome -compress Group4", "-depth 4 -colorspace Gray",
                           "-colorspace Gray", "", "-alpha set -channel A -evaluate set 50%"}) {
    const std::string file = at("a.tif");
    const char* const names[] = {"TopLeft", "TopRight", "BottomRight", "BottomLeft",
                                 "LeftTop", "RightTop", "RightBottom", "LeftBottom"};
    const std::string command =
        "convert -size 70x131 xc:white -fill black -draw "
        "'rectangle 3,4 20,100 rectangle 20,70 50,100' " +
        std::string(kind) + " -orient " + names[GetParam() - 1] + " " + file;
    ASSERT_EQ(std::system(command.c_str()), 0);
    const orvo::OwnedDib loaded = files::Load(file);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(files::ShownPixels(loaded.get()),
              files::OutputOf("convert " + file + " -auto-orient -alpha off -depth 8 bgr:-"))
        << kind;
  }
}

INSTANTIATE_TEST_SUITE_P(Tags, Orientations, testing::Range(1, 9));

}  // namespace
