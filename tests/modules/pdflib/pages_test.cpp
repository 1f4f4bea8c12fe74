// Pages: how many, how large, and what the document tells about itself.
#include <sys/resource.h>
#include <sys/wait.h>
#include <tiffio.h>
#include <unistd.h>

#include <random>

#include "documents.h"

namespace documents {
namespace {

class PageTest : public DocumentTest {};

TEST_F(PageTest, EachPageOfATiffHasItsOwnSizeAndPicture) {
  make("-units PixelsPerInch -density 300", "a.tif");
  make("-units PixelsPerInch -density 150 -resize 50x80! -colors 40 -type Palette", "b.tif");
  make("-units PixelsPerInch -density 72 -monochrome", "c.tif");
  run("convert " + at("a.tif") + " " + at("b.tif") + " " + at("c.tif") + " " + at("in.tif"));
  ASSERT_EQ(convert("in.tif"), ORVO_OK);
  expectSound();
  EXPECT_EQ(info("Pages"), "3");
  EXPECT_EQ(info("Page    1 size", "-f 1 -l 3"), "16.8 x 11.04 pts");
  EXPECT_EQ(info("Page    2 size", "-f 1 -l 3"), "24 x 38.4 pts");
  EXPECT_EQ(info("Page    3 size", "-f 1 -l 3"), "70 x 46 pts");
  EXPECT_EQ(files::LargestDifference(shown("a.tif"), drawn(1, 300)), 0);
  EXPECT_LE(files::LargestDifference(shown("b.tif"), drawn(2, 150)), 1);
  EXPECT_EQ(files::LargestDifference(shown("c.tif"), drawn(3, 72)), 0);
}

struct SizeRow {
  const char* arguments;
  const char* file;
  const char* size;
};

TEST_F(PageTest, SizeFollowsTheResolution) {
  const SizeRow rows[] = {
      {"-units PixelsPerInch -density 72", "a.jpg", "70 x 46 pts"},
      {"-units PixelsPerInch -density 300", "a.jpg", "16.8 x 11.04 pts"},
      {"-units PixelsPerInch -density 300x150", "a.jpg", "16.8 x 22.08 pts"},
      {"-units PixelsPerCentimeter -density 100", "a.jpg", "19.8425 x 13.0394 pts"},
      {"-units PixelsPerInch -density 300x150", "a.png", "16.8 x 22.08 pts"},
      {"-units PixelsPerInch -density 200x100", "a.tif", "25.2 x 33.12 pts"},
      {"-units PixelsPerInch -density 300x150 -orient RightTop", "turned.tif", "22.08 x 16.8 pts"},
      // Without a unit the densities tell the shape of a pixel: half as high as wide.
      {"-units Undefined -density 1x2", "a.jpg", "70 x 23 pts"},
      {"-units Undefined -density 2x1", "a.png", "70 x 92 pts"},
      {"-units Undefined -density 3x3", "a.tif", "70 x 46 pts"},
      {"", "a.gif", "70 x 46 pts"},
  };
  for (const SizeRow& row : rows) {
    make(row.arguments, row.file);
    ASSERT_EQ(convert(row.file), ORVO_OK) << row.arguments;
    EXPECT_EQ(info("Page size"), row.size) << row.file << " " << row.arguments;
  }
}

// Cameras tell how they were held in a block that follows the file's first two bytes.
TEST_F(PageTest, PicturesStandUpright) {
  make("-resize 40x20!", "in.jpg");
  for (std::uint8_t orientation = 1; orientation <= 8; ++orientation) {
    files::Bytes bytes = files::Read(at("in.jpg"));
    const std::uint8_t exif[] = {0xFF, 0xE1, 0, 34, 'E', 'x',         'i', 'f', 0, 0,  'M', 'M',
                                 0,    42,   0, 0,  0,   8,           0,   1,   1, 18, 0,   3,
                                 0,    0,    0, 1,  0,   orientation, 0,   0,   0, 0,  0,   0};
    bytes.insert(bytes.begin() + 2, std::begin(exif), std::end(exif));
    files::Write(at("turned.jpg"), bytes);
    ASSERT_EQ(convert("turned.jpg"), ORVO_OK);
    EXPECT_EQ(info("Page size"), orientation < 5 ? "40 x 20 pts" : "20 x 40 pts");
    const files::Bytes expected =
        files::OutputOf("convert " + at("turned.jpg") + " -auto-orient -depth 8 rgb:-");
    EXPECT_LE(files::LargestDifference(expected, drawn(1, 72)), 3) << int{orientation};
  }
}

// Beyond 200 inches, which is as far as readers go, the units grow.
TEST_F(PageTest, HugePagesHaveLargerUnits) {
  run("convert -size 15000x20 xc:red " + at("in.png"));
  ASSERT_EQ(convert("in.png"), ORVO_OK);
  expectSound();
  const std::string page = text("qpdf --qdf " + at("out.pdf") + " - | strings");
  EXPECT_NE(page.find("/UserUnit 2"), std::string::npos);
  EXPECT_NE(page.find("7500"), std::string::npos);
}

TEST_F(PageTest, DocumentTellsAboutItself) {
  make("", "in.png");
  const std::string name = "Jürgens (Scan).2.pdf";
  ASSERT_EQ(convert("in.png", name), ORVO_OK);
  run("mv '" + at(name) + "' " + at("out.pdf"));
  EXPECT_EQ(info("Title"), "Jürgens (Scan).2");
  EXPECT_EQ(info("Creator"), "pdflib_test");
  EXPECT_EQ(info("Subject"), "Created PDF");
  EXPECT_EQ(info("Author"), "");
}

// A colour page of noise, in one strip, which no coding shrinks.
void WriteNoisePages(const std::string& path, int pages, std::uint32_t width,
                     std::uint32_t height) {
  TIFF* const tiff = TIFFOpen(path.c_str(), "w");
  files::Bytes row(std::size_t{width} * 3);
  std::mt19937 random(1);
  for (int page = 0; page < pages; ++page) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    for (std::uint32_t y = 0; y < height; ++y) {
      for (std::uint8_t& byte : row) byte = static_cast<std::uint8_t>(random());
      TIFFWriteScanline(tiff, row.data(), y, 0);
    }
    TIFFWriteDirectory(tiff);
  }
  TIFFClose(tiff);
}

// The most memory that a process of its own takes for a conversion, in bytes; 0 when it fails.
std::size_t MemoryOf(const std::string& source, const std::string& target) {
  const pid_t child = fork();
  if (child == 0) {
    const orvo::OwnedInstance toolkit;
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    (void)toolkit->ConvertFile(source.c_str(), target.c_str(), 0, nullptr);
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    _exit(static_cast<int>((after.ru_maxrss - before.ru_maxrss) / 1024));  // mebibytes
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? static_cast<std::size_t>(WEXITSTATUS(status)) << 20 : 0;
}

TEST_F(PageTest, MemoryStaysBelowThreePages) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "memory is not the program's own";
#endif
  constexpr std::uint32_t kWidth = 1600;
  constexpr std::uint32_t kHeight = 2000;
  constexpr std::size_t kPageBytes = std::size_t{kWidth} * kHeight * 3;
  for (const int pages : {1, 5}) {
    WriteNoisePages(at("in.tif"), pages, kWidth, kHeight);
    const std::size_t memory = MemoryOf(at("in.tif"), at("out.pdf"));
    EXPECT_EQ(info("Pages"), std::to_string(pages));
    EXPECT_GT(memory, 0U);
    EXPECT_LT(memory, 3 * kPageBytes) << pages;
  }
}

}  // namespace
}  // namespace documents
