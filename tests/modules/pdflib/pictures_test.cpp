// Pictures of all kinds come out of a document as they went in, coded as their kind asks.
#include <tiffio.h>

#include <cmath>

#include "documents.h"

namespace documents {
namespace {

class PictureTest : public DocumentTest {};

struct Row {
  const char* arguments;  // of convert
  const char* file;
  const char* kind;        // colours, components, bits, coding
  int mostDifference = 0;  // of a tone; JPEG decoders and ink mixing differ
};

constexpr Row kRows[] = {
    // JPEG, as it is
    {"", "baseline.jpg", "rgb 3 8 jpeg", 3},
    {"-interlace JPEG", "progressive.jpg", "rgb 3 8 jpeg", 3},
    {"-sampling-factor 4:2:0 -quality 70", "subsampled.jpg", "rgb 3 8 jpeg", 3},
    {"-colorspace Gray", "gray.jpg", "gray 1 8 jpeg", 1},
    {"-set colorspace RGB -define jpeg:colorspace=RGB", "rgb.jpg", "rgb 3 8 jpeg", 3},
    // 1 bit
    {"-monochrome -compress Group4", "g4.tif", "gray 1 1 ccitt"},
    {"-monochrome -compress Group4 -define quantum:polarity=min-is-white", "g4w.tif",
     "gray 1 1 ccitt"},
    {"-monochrome -compress Group4 -define tiff:rows-per-strip=8", "g4strips.tif",
     "gray 1 1 ccitt"},
    {"-monochrome -compress Group4 -define tiff:fill-order=lsb", "g4lsb.tif", "gray 1 1 ccitt"},
    {"-monochrome -depth 1 -compress None -define quantum:polarity=min-is-white", "plain1w.tif",
     "gray 1 1 ccitt"},
    {"-monochrome -compress Fax", "g3.tif", "gray 1 1 ccitt"},
    {"-colors 2 -type Palette -depth 1 -compress None", "palette1.tif", "index 1 1 ccitt"},
    {"-monochrome", "mono.png", "gray 1 1 ccitt"},
    {"-colors 2", "two.gif", "index 1 1 ccitt"},
    // gray and palettes at their own depth
    {"-colorspace Gray -depth 8 -compress LZW", "gray8.tif", "gray 1 8 image"},
    {"-colorspace Gray -depth 4 -compress Zip", "gray4.tif", "gray 1 4 image"},
    {"-colorspace Gray -depth 2 -compress None", "gray2.tif", "gray 1 2 image"},
    {"-colorspace Gray -depth 8 -define quantum:polarity=min-is-white", "gray8w.tif",
     "gray 1 8 image"},
    {"-colors 200 -type Palette -compress RLE", "palette8.tif", "index 1 8 image", 1},
    {"-colors 13 -type Palette -depth 4 -define tiff:tile-geometry=32x16", "tiles4.tif",
     "index 1 4 image"},
    {"-colorspace Gray -depth 4 -define png:bit-depth=4", "gray4.png", "gray 1 4 image"},
    {"-colorspace Gray -depth 2 -interlace PNG", "gray2.png", "gray 1 2 image"},
    {"-colors 100", "palette8.png", "index 1 8 image"},
    {"-colors 3", "three.gif", "index 1 2 image"},
    {"-colors 10 -interlace GIF", "interlaced.gif", "index 1 4 image"},
    {"-transparent white -fuzz 30% -transparent red -colors 60", "clear.gif", "index 1 8 image"},
    // the rest
    {"-compress None", "rgb.tif", "rgb 3 8 image"},
    {"-compress LZW -define tiff:tile-geometry=32x32", "tiles.tif", "rgb 3 8 image"},
    {"-compress Zip -interlace plane", "planes.tif", "rgb 3 8 image"},
    {"-compress JPEG -quality 95", "jpeg.tif", "rgb 3 8 image", 4},
    {"-colorspace YCbCr -compress LZW", "ycbcr.tif", "rgb 3 8 image", 3},
    {"-orient BottomLeft", "mirrored.tif", "rgb 3 8 image"},
    {"-alpha set -channel A -evaluate multiply 0.6 +channel", "alpha.tif", "rgb 3 8 image", 1},
    {"-depth 8", "rgb.png", "rgb 3 8 image"},
    {"-depth 16 -interlace PNG", "deep.png", "rgb 3 8 image", 1},
    {"-alpha set -channel A -evaluate multiply 0.3 +channel", "alpha.png", "rgb 3 8 image", 1},
    {"-colorspace Gray -alpha set -channel A -evaluate multiply 0.5 +channel", "grayalpha.png",
     "gray 1 8 image", 1},
    {"-transparent red -colors 50 PNG8:-|convert -", "clear.png", "index 1 8 image", 1},
};

TEST_F(PictureTest, ComeBackPixelByPixel) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.file);
    make(row.arguments, row.file);
    ASSERT_EQ(convert(row.file), ORVO_OK);
    expectSound();
    EXPECT_EQ(imageKind(), row.kind);
    EXPECT_EQ(info("Page size"), "70 x 46 pts");  // a point a pixel
    EXPECT_LE(files::LargestDifference(shown(row.file), drawn(1, 72)), row.mostDifference);
  }
}

// Readers make colours of inks each in its own way; an inverted picture would still be far off.
TEST_F(PictureTest, InksAreNotInverted) {
  make("-colorspace CMYK", "inks.jpg");
  make("-colorspace CMYK -interlace JPEG", "progressive.jpg");
  make("-colorspace CMYK", "inks.tif");
  for (const char* file : {"inks.jpg", "progressive.jpg", "inks.tif"}) {
    ASSERT_EQ(convert(file), ORVO_OK) << file;
    expectSound();
    EXPECT_EQ(imageKind(), file[5] == 't' ? "rgb 3 8 image" : "cmyk 4 8 jpeg");
    const files::Bytes expected = shown(file);
    const files::Bytes got = drawn(1, 72);
    ASSERT_EQ(expected.size(), got.size()) << file;
    double sum = 0;
    for (std::size_t i = 0; i < got.size(); ++i) sum += std::abs(expected[i] - got[i]);
    EXPECT_LT(sum / static_cast<double>(got.size()), 30) << file;
  }
}

TEST_F(PictureTest, JpegDataPassThroughByteForByte) {
  for (const char* arguments : {"", "-interlace JPEG", "-colorspace Gray", "-colorspace CMYK"}) {
    make(arguments, "in.jpg");
    ASSERT_EQ(convert("in.jpg"), ORVO_OK);
    run("pdfimages -j " + at("out.pdf") + " " + at("raw"));
    EXPECT_EQ(files::Read(at("raw-000.jpg")), files::Read(at("in.jpg"))) << arguments;
  }
}

TEST_F(PictureTest, GroupFourDataPassThroughByteForByte) {
  make("-resize 900% -monochrome -compress Group4 -define tiff:rows-per-strip=10000", "in.tif");
  ASSERT_EQ(convert("in.tif"), ORVO_OK);
  TIFF* const tiff = TIFFOpen(at("in.tif").c_str(), "r");
  ASSERT_NE(tiff, nullptr);
  ASSERT_EQ(TIFFNumberOfStrips(tiff), 1U);
  files::Bytes strip(TIFFGetStrileByteCount(tiff, 0));
  TIFFReadRawStrip(tiff, 0, strip.data(), static_cast<tmsize_t>(strip.size()));
  TIFFClose(tiff);
  run("pdfimages -ccitt " + at("out.pdf") + " " + at("raw"));
  EXPECT_EQ(files::Read(at("raw-000.ccitt")), strip);
}

TEST_F(PictureTest, OfAnAnimationTheFirstFrameIsTaken) {
  run("convert -size 20x10 xc:red xc:blue " + at("in.gif"));
  ASSERT_EQ(convert("in.gif"), ORVO_OK);
  EXPECT_EQ(info("Pages"), "1");
  const files::Bytes page = drawn(1, 72);
  ASSERT_EQ(page.size(), 600U);
  EXPECT_EQ(page[0], 255);
  EXPECT_EQ(page[2], 0);
}

}  // namespace
}  // namespace documents
