// Converting files, thumbnails, and depths other than the file's own.
#include <cstring>

#include "files.h"

namespace {

using files::Load;
using files::Save;
using files::ShownPixels;

using Converting = files::FolderTest;

TEST_F(Converting, keeps_pixels_between_lossless_formats_and_changes_depth_when_asked) {
  const orvo::OwnedDib image = pictures::NoiseInColor(33, 9, 8, 1);
  ASSERT_EQ(Save(image.get(), at("a.png"), kFormatPng), kModuleSuccess);
  const auto convert = [&](int width, int height, int bits) {
    return L_FileConvert(at("a.png").c_str(), at("b.tif").c_str(), kFormatTiffCompressed, width,
                         height, bits, 0, nullptr, nullptr, nullptr);
  };
  for (const int bits : {0, 8, 24}) {
    ASSERT_EQ(convert(0, 0, bits), kModuleSuccess);
    const orvo::OwnedDib converted = Load(at("b.tif"));
    EXPECT_EQ(ShownPixels(converted.get()), ShownPixels(image.get()));
    EXPECT_EQ(pictures::Locked(converted.get()).header()->biBitCount, bits == 0 ? 8 : bits);
  }
  ASSERT_EQ(convert(11, 3, 0), kModuleSuccess);
  EXPECT_EQ(pictures::Locked(Load(at("b.tif")).get()).header()->biWidth, 11);

  const files::Bytes before = files::Read(at("b.tif"));
  EXPECT_EQ(L_FileConvert(at("absent").c_str(), at("b.tif").c_str(), kFormatTiff, 0, 0, 0, 0,
                          nullptr, nullptr, nullptr),
            kModuleFileNotFound);
  EXPECT_EQ(files::Read(at("b.tif")), before);
}

TEST_F(Converting, a_scan_of_1_bit_becomes_a_jpeg) {
  const orvo::OwnedDib image = pictures::Blank(40, 40, 1);
  std::memset(pictures::Locked(image.get()).row(20), 255, 5);
  ASSERT_EQ(Save(image.get(), at("a.tif"), kFormatTiffCompressed), kModuleSuccess);
  ASSERT_EQ(L_FileConvert(at("a.tif").c_str(), at("b.jpg").c_str(), kFormatJpeg, 0, 0, 1, 100,
                          nullptr, nullptr, nullptr),
            kModuleSuccess);
  const orvo::OwnedDib jpeg = Load(at("b.jpg"));
  EXPECT_LE(files::LargestDifference(ShownPixels(jpeg.get()), ShownPixels(image.get())), 8);
}

TEST_F(Converting, load_and_save_at_a_depth_leave_the_source_alone) {
  const orvo::OwnedDib image = files::Scene(20, 20, 24);
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, image.get());
  const files::Bytes before = pictures::BytesOf(image.get());
  EXPECT_EQ(L_SaveBitmap(at("a.png").c_str(), &bitmap, kFormatPng, 8, 0, nullptr), kModuleSuccess);
  EXPECT_EQ(pictures::BytesOf(image.get()), before);
  struct_LEAD_Bitmap loaded{};
  EXPECT_EQ(L_LoadBitmap(at("a.png").c_str(), &loaded, 24, 1, nullptr, nullptr), kModuleSuccess);
  EXPECT_EQ(loaded.bitsPerPixel, 24);
  EXPECT_EQ(ShownPixels(loaded.block), ShownPixels(Load(at("a.png")).get()));
  L_FreeBitmap(&loaded);
}

// A resolution stored in the record is that of the file, not the older one in the image's header.
TEST_F(Converting, a_stored_resolution_is_saved) {
  orvo::OwnedDib image = files::Scene(5, 5, 24);
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, image.release());
  bitmap.xResolution = 72;
  bitmap.yResolution = 144;
  EXPECT_EQ(L_SaveBitmap(at("a.tif").c_str(), &bitmap, kFormatTiff, 0, 0, nullptr), kModuleSuccess);
  EXPECT_EQ(bitmap.width, 5);
  L_FreeBitmap(&bitmap);
  LTFILEINFO info{};
  EXPECT_EQ(L_FileInfo(at("a.tif").c_str(), &info, 0, nullptr), kModuleSuccess);
  EXPECT_EQ(info.xResolution, 72);
  EXPECT_EQ(info.yResolution, 144);
}

class Thumbnails : public files::FolderTest {
 protected:
  orvo::OwnedDib make(const std::string& name, const files::ThumbnailWish& wish) {
    return files::Thumbnail(at(name), wish, &code_);
  }
  int code_ = 0;
};

constexpr int kGreen = 0x00C000;

// A page of one colour, twice as wide as high, in a square frame: a quarter of background above and
// below it, and the page right between.
TEST_F(Thumbnails, lie_centred_in_the_background) {
  for (const int format : {kFormatJpeg, kFormatPng, kFormatTiffCompressed}) {
    for (const int depth : {1, 8, 24}) {
      orvo::OwnedDib image = pictures::Blank(800, 400, depth);
      ASSERT_EQ(Save(image.get(), at("a"), format), kModuleSuccess);
      const orvo::OwnedDib thumbnail = make(
          "a", {.width = 40, .height = 40, .bits = 24, .forceSize = true, .background = kGreen});
      ASSERT_EQ(code_, kModuleSuccess);
      const files::Bytes shown = ShownPixels(thumbnail.get());
      ASSERT_EQ(shown.size(), 40U * 40 * 3);
      for (std::size_t pixel = 0; pixel < 1600; ++pixel) {
        const std::size_t line = pixel / 40;
        const bool isPage = line >= 10 && line < 30;
        EXPECT_EQ(shown[pixel * 3 + 1], isPage ? 0 : 0xC0) << "line " << line;
      }
    }
  }
}

TEST_F(Thumbnails, follow_their_options) {
  const orvo::OwnedDib image = files::Scene(90, 30, 8);
  ASSERT_EQ(Save(image.get(), at("a.png"), kFormatPng), kModuleSuccess);
  const auto sizeOf = [](const orvo::OwnedDib& dib) {
    const BITMAPINFOHEADER header = *pictures::Locked(dib.get()).header();
    return std::array<int, 3>{header.biWidth, header.biHeight, header.biBitCount};
  };
  using Sizes = std::array<int, 3>;
  EXPECT_EQ(sizeOf(make("a.png", {.width = 30, .height = 30})), (Sizes{30, 10, 8}));
  EXPECT_EQ(sizeOf(make("a.png", {.width = 20, .height = 30, .keepAspect = false})),
            (Sizes{20, 30, 8}));
  EXPECT_EQ(sizeOf(make("a.png",
                        {.width = 180, .height = 180, .forceSize = true, .background = 0xFFFFFF})),
            (Sizes{180, 180, 8}));
  EXPECT_EQ(sizeOf(make("a.png", {.width = 9, .height = 1})), (Sizes{3, 1, 8}));
  for (const int wrong : {0, -5}) {
    EXPECT_FALSE(make("a.png", {.width = wrong, .height = 10}));
    EXPECT_EQ(code_, kModuleBadParameter);
  }
  EXPECT_FALSE(make("absent", {.width = 10, .height = 10}));
  EXPECT_EQ(code_, kModuleFileNotFound);
}

// The decoder's own shrinking shows what the whole page, averaged, shows.
TEST_F(Thumbnails, of_jpeg_are_close_to_the_averaged_page) {
  const orvo::OwnedDib image = files::Scene(640, 480, 24);
  ASSERT_EQ(Save(image.get(), at("a.jpg"), kFormatJpeg, 95), kModuleSuccess);
  ASSERT_EQ(Save(image.get(), at("a.png"), kFormatPng), kModuleSuccess);
  const files::ThumbnailWish wish{.width = 64, .height = 64, .forceSize = true};
  const orvo::OwnedDib shrunk = make("a.jpg", wish);
  const orvo::OwnedDib averaged = make("a.png", wish);
  EXPECT_LE(files::LargestDifference(ShownPixels(shrunk.get()), ShownPixels(averaged.get())), 6);
}

TEST(Version, names_the_libraries) {
  LTVERSIONINFO info{};
  info.size = sizeof info;
  ASSERT_EQ(L_VersionInfo(&info), kModuleSuccess);
  for (const char* name : {"jpeg", "libpng 1.", "libtiff 4."}) {
    EXPECT_NE(std::strstr(info.codecs, name), nullptr) << info.codecs;
  }
}

}  // namespace
