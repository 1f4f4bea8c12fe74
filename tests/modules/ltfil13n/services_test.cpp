// What is done with files beyond reading and writing them: orientation, conversion, thumbnails,
// resolution; and what their tags say.
#include <orvo/file_limits.h>

#include "files.h"

namespace {

using rig::Bytes;
using rig::FileTest;
using rig::OwnedDib;
using rig::Picture;
using rig::Shown;

TEST_F(FileTest, formats_keep_what_they_can_at_every_depth) {
  rig::Sum sum;
  for (const auto& [name, format] : rig::kFormats) {
    for (const rig::Kind kind : {rig::Kind{1, true},
                                 {4, true},
                                 {1, false},
                                 {4, false},
                                 {8, false},
                                 {8, true},
                                 {16, false},
                                 {24, false},
                                 {32, false},
                                 {32, true}}) {
      for (const int width : {1, 2, 7, 8, 33, 251}) {
        const OwnedDib image = Picture(kind, width, width / 5 + 4);
        const rig::Locked view(image.get());
        view.header()->biYPelsPerMeter = 5001;  // no whole dots per inch
        for (int i = 0; kind.depth == 32 && kind.gray && i < width * (width / 5 + 4); ++i) {
          view.row(0)[4 * i + 3] = 0;
        }
        const int code = save(image, name, format, 100);
        sum.add(code);
        if (code != kModuleSuccess) continue;
        addFile(sum, name, read(name));
        if (format != kFormatJpeg) continue;
        EXPECT_LE(rig::LargestDifference(Shown(load(name)), Shown(image)), 6);
      }
    }
  }
  sum.expect(0x47D38C888ECA7693, "formats");
  // Readers that pass over the palette of a PCX take 0 for black.
  OwnedDib image = Picture({1, true}, 9, 9);
  {
    const rig::Locked view(image.get());
    std::swap(view.palette()[0], view.palette()[1]);
  }
  ASSERT_EQ(save(image, "a.pcx", kFormatPcx), kModuleSuccess);
  const Bytes file = read("a.pcx");
  EXPECT_EQ(Bytes(&file[16], &file[22]), (Bytes{0, 0, 0, 255, 255, 255}));
  EXPECT_EQ(Shown(load("a.pcx")), Shown(image));
}

TEST_F(FileTest, pictures_stand_upright_at_every_depth) {
  rig::Sum sum;
  for (const rig::Kind kind : rig::kKinds) {
    const OwnedDib image = Picture(kind, 70, 131);
    rig::Locked(image.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(150);
    ASSERT_EQ(save(image, "a.tif", kFormatTiff), kModuleSuccess);
    Bytes bytes = read("a.tif");
    for (std::uint8_t orientation = 0; orientation <= 9; ++orientation) {
      rig::TagOf(bytes, 274)[8] = orientation;
      addFile(sum, "b.tif", bytes);
    }
  }
  sum.expect(0x57CEA3868D330AF7, "turned pages");
}

TEST_F(FileTest, tags_of_cameras_are_followed) {
  run("convert -size 30x20 gradient:red-blue -strip in.jpg");
  const Bytes plain = read("in.jpg");
  run("convert in.jpg -strip in.png");
  const Bytes png = read("in.png");
  const OwnedDib stored = load("in.jpg");
  Bytes stray = plain;
  stray.insert(stray.begin() + 2, {1, 2, 3});
  EXPECT_EQ(Shown(load("stray.jpg", stray)), Shown(stored));
  ASSERT_EQ(rig::HeaderOf(stored).biXPelsPerMeter, 0);
  ASSERT_EQ(save(stored, "in.tif", kFormatTiff), kModuleSuccess);
  Bytes tiff = read("in.tif");
  for (std::uint8_t orientation = 1; orientation <= 8; ++orientation) {
    rig::TagOf(tiff, 274)[8] = orientation;
    const Bytes expected = Shown(load("turned.tif", tiff));
    // 120 and 50 dots per centimetre
    std::string tags = "S42 I8 S4 S274 S3 I1 S" + std::to_string(orientation) +
                       " S0 S282 S5 I1 I62 S283 S5 I1 I70 S296 S3 I1 S3 S0 I0 I240 I2 I50 I1";
    for (const char* const order : {"'MM ", "'II "}) {
      const OwnedDib seen = load("turned.jpg", rig::WithExif(plain, order + tags));
      ASSERT_TRUE(seen);
      EXPECT_EQ(Shown(seen), expected) << order << orientation;
      expectInfo("turned.jpg", seen, "JPEG");
      std::string text = "A 'exif A '84 A '";
      for (const unsigned byte : rig::Of("'Exif 0 0 " + (order + tags))) {
        text += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
      }
      const int bytes = static_cast<int>(rig::Of(text).size());
      const std::string block =
          "0 78 1 0 s" + std::to_string(bytes) + " s" + std::to_string(~bytes) + " ";
      const std::string key = "'Raw 20 'profile 20 'type 20 'exif 0 ";
      for (const std::string& chunk :
           {"'eXIf " + (order + tags), "'tEXt " + key + text, "'zTXt " + key + block + text}) {
        EXPECT_EQ(Shown(load("turned.png", rig::WithChunk(png, chunk))), expected) << chunk;
      }
      EXPECT_EQ(rig::HeaderOf(seen).biXPelsPerMeter, orientation > 4 ? 5000 : 12000);
      std::transform(tags.begin(), tags.end(), tags.begin(), ::tolower);
    }
  }
}

TEST_F(FileTest, tags_of_tiff_are_followed_or_refused) {
  const OwnedDib image = Picture({8, false}, 31, 9);
  ASSERT_EQ(save(image, "a.tif", kFormatTiff), kModuleSuccess);
  const Bytes plain = read("a.tif");
  Bytes bytes = plain;
  std::uint32_t palette = 0;
  std::memcpy(&palette, rig::TagOf(bytes, 320) + 8, 4);
  Bytes cut = plain;
  cut.resize(palette + 1000);
  EXPECT_FALSE(load("b.tif", cut));
  EXPECT_EQ(code_, kFileFormatDamaged);
  // Some writers store bytes where 16 bits are asked. A single larger one tells that they are not.
  for (std::size_t i = palette; i < palette + 1536; i += 2) bytes[i + 1] = 0;
  EXPECT_EQ(Shown(load("b.tif", bytes)), Shown(image));
  for (const std::size_t channel : {0U, 1U, 2U}) {
    Bytes one = bytes;
    one[palette + 512 * channel + 510] = 0;
    one[palette + 512 * channel + 511] = 1;
    const Bytes shown = Shown(load("b.tif", one));
    EXPECT_EQ(*std::max_element(shown.begin(), shown.end()), 1) << channel;
  }
  // Of tones that are no plain numbers nothing is shown. The tag takes the orientation's place.
  for (std::uint8_t format = 1; format <= 4; ++format) {
    bytes = plain;
    std::uint8_t* const tag = rig::TagOf(bytes, 274);
    tag[0] = 339 & 255;
    tag[8] = format;
    const int code = format == 1 || format == 4 ? kModuleSuccess : kModuleDepthNotSupported;
    EXPECT_EQ(static_cast<bool>(load("b.tif", bytes)), code == kModuleSuccess);
    EXPECT_EQ(code_, code);
    (void)info("b.tif");
    EXPECT_EQ(code_, code);
  }
}

TEST_F(FileTest, depths_and_resolutions_are_those_asked_for) {
  const OwnedDib image = Picture({8, false}, 33, 9);
  ASSERT_EQ(save(image, "a.png", kFormatPng), kModuleSuccess);
  for (const int bits : {0, 8, 24}) {
    ASSERT_EQ(convert("a.png", "b.tif", kFormatTiffCompressed, 0, 9, bits), kModuleSuccess);
    EXPECT_EQ(Shown(load("b.tif")), Shown(image));
    EXPECT_EQ(info("b.tif").bitsPerPixel, bits == 0 ? 8 : bits);
  }
  ASSERT_EQ(convert("a.png", "b.tif", kFormatTiffCompressed, 11, 3, 0), kModuleSuccess);
  EXPECT_EQ(info("b.tif").width, 11);
  const Bytes before = read("b.tif");
  EXPECT_EQ(convert("absent", "b.tif", kFormatTiffCompressed, 0, 0, 0), kModuleFileNotFound);
  EXPECT_EQ(convert("a.png", "b.tif", kFormatTiffCompressed, 0, 0, 7), kModuleBadParameter);
  EXPECT_EQ(read("b.tif"), before);

  const OwnedDib colors = Picture({24, false}, 40, 20);
  const Bytes dithered = Shown(rig::Changed(colors, rig::ToDepth(4, 1)));
  for (const int bits : {0, 4}) {  // when loaded or when saved
    L_DefaultDithering(1);
    ASSERT_EQ(save(colors, "c.png", kFormatPng, 0, 0, bits), kModuleSuccess);
    EXPECT_EQ(Shown(load("c.png", 4 - bits)), dithered);
    L_DefaultDithering(0);
  }
  // A resolution stored in the record is that of the file, not the older one of the header.
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, pictures::CopyOf(colors.get()).release());
  bitmap.xResolution = 72;
  bitmap.yResolution = 144;
  EXPECT_EQ(L_SaveBitmap(at("a.tif").c_str(), &bitmap, kFormatTiff, 0, 0, nullptr), kModuleSuccess);
  EXPECT_EQ(bitmap.width, 40);
  L_FreeBitmap(&bitmap);
  EXPECT_NE(text("tiffinfo a.tif").find("Resolution: 72, 144 pixels/inch"), std::string::npos);
  rig::Locked(colors.get()).header()->biXPelsPerMeter = 0;
  for (const int format : {kFormatBmp, kFormatPng, kFormatTiff, kFormatPsd, kFormatJpeg}) {
    EXPECT_EQ(save(colors, "none", format), kModuleSuccess);
    EXPECT_EQ(info("none").xResolution, 0) << format;
  }
}

TEST_F(FileTest, thumbnails_are_the_averaged_page_in_its_frame) {
  // width, height, bits, flags, aspect, size, background
  constexpr LTTHUMBNAILOPTIONS kWishes[] = {{30, 30, 0, 0, 1, 0, 0, 0, 0},
                                            {20, 31, 0, 0, 0, 0, 0, 0, 0},
                                            {9, 1, 0, 0, 1, 0, 0, 0, 0},
                                            {2, 90, 0, 0, 1, 0, 0, 0, 0},
                                            {181, 180, 0, 0, 1, 1, 0x808080, 0, 0},
                                            {60, 11, 24, 0, 1, 1, 0x0A0B0C, 0, 0},
                                            {41, 40, 24, 0, 1, 1, 0x00C000, 0, 0},
                                            {41, 40, 4, 1, 1, 1, 0x1020C0, 0, 0},
                                            {10, 0, 0, 0, 0, 0, 0, 0, 0},
                                            {-5, 10, 0, 0, 0, 0, 0, 0, 0}};
  rig::Sum sum;
  for (const rig::Kind kind : rig::kKinds) {
    ASSERT_EQ(save(Picture(kind, 90, 30), "a.png", kFormatPng), kModuleSuccess);
    for (const LTTHUMBNAILOPTIONS& wish : kWishes) {
      const OwnedDib made = thumbnail("a.png", &wish);
      sum.add(code_);
      sum.add(made ? pictures::BytesOf(made.get()) : Bytes());
    }
  }
  sum.expect(0x14486638756C8D20, "thumbnails");
  const LTTHUMBNAILOPTIONS huge{100000, 100000, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_FALSE(thumbnail("a.png", &huge));
  EXPECT_EQ(code_, kModuleNoMemory);
  EXPECT_FALSE(thumbnail("a.png", nullptr));
  EXPECT_EQ(code_, kModuleBadParameter);
  EXPECT_FALSE(thumbnail("absent", &kWishes[0]));
  EXPECT_EQ(code_, kModuleFileNotFound);
}

// The decoder's own shrinking shows what the whole page, averaged, shows, and is never enlarged.
TEST_F(FileTest, thumbnails_of_jpeg_are_close_to_the_averaged_page) {
  run("convert -size 480x640 xc:white -draw 'line 0,0 480,640 line 480,90 0,300 circle 200,400 "
      "240,470' -quality 95 a.jpg && convert a.jpg a.png");
  const LTTHUMBNAILOPTIONS wish{100, 100, 0, 0, 1, 1, 0, 0, 0};
  const Bytes shrunk = Shown(thumbnail("a.jpg", &wish));
  EXPECT_LE(rig::LargestDifference(shrunk, Shown(thumbnail("a.png", &wish))), 12);
}

// Read row by row: every square of the page in its own colour shows in one pixel.
TEST_F(FileTest, thumbnails_of_large_pages_are_averaged_as_they_are_read) {
  constexpr int kSide = 4200;
  constexpr int kSquare = 84;
  const LTTHUMBNAILOPTIONS wish{kSide / kSquare, kSide / kSquare, 0, 0, 1, 0, 0, 0, 0};
  for (const int depth : {8, 32}) {
    const OwnedDib page = pictures::Blank(kSide, kSide, depth);
    const rig::Locked image(page.get());
    const std::size_t step = static_cast<std::size_t>(depth) / 8;
    for (int y = 0; y < kSide; ++y) {
      for (std::size_t i = 0; i < kSide * step; ++i) {
        const std::size_t column = i / step / kSquare;
        // Two halves of a square, whose mean it shows.
        const int half = i / step % 2 == 0 ? 20 : 0;
        image.row(y)[i] = static_cast<std::uint8_t>(half + 2 * y / kSquare + 1 * column + i % step);
      }
    }
    ASSERT_EQ(save(page, "a.bmp", kFormatBmp), kModuleSuccess);
    const OwnedDib made = thumbnail("a.bmp", &wish);
    ASSERT_EQ(code_, kModuleSuccess);
    const rig::Locked small(made.get());
    ASSERT_EQ(rig::HeaderOf(made).biBitCount, depth);
    for (int y = 0; y < wish.height; ++y) {
      for (std::size_t i = 0; i < wish.width * step; ++i) {
        const auto column = static_cast<int>(i / step);
        EXPECT_NEAR(small.row(y)[i], 10.5 + 2 * y + column + static_cast<int>(i % step), 1.1);
      }
    }
  }
}

TEST_F(FileTest, limits_hold_on_every_road) {
  const OrvoFileLimits usual = *OrvoLimitFiles(nullptr);
  const OwnedDib image = Picture({24, false}, 40, 30);
  OrvoFileLimits fewPixels = usual;
  OrvoFileLimits narrow = usual;
  OrvoFileLimits little = usual;
  fewPixels.pixels = 1199;
  narrow.side = 39;
  little.memory = 3600;  // the pixels alone
  struct Row {
    OrvoFileLimits limits;
    int code;
  };
  const Row rows[] = {{fewPixels, kModuleNoMemory},
                      {narrow, kModuleNoMemory},
                      {little, kModuleNoMemory},
                      {usual, kModuleSuccess}};
  const LTTHUMBNAILOPTIONS small{40, 30, 0, 0, 0, 0, 0, 0, 0};
  for (const auto& [name, format] : rig::kFormats) {
    ASSERT_EQ(save(image, name, format), kModuleSuccess);
    for (const Row& row : rows) {
      OrvoLimitFiles(&row.limits);
      (void)load(name);
      EXPECT_EQ(code_, row.code) << name;
      EXPECT_EQ(convert(name, "b.bmp", kFormatBmp), row.code) << name;
      (void)thumbnail(name, &small);
      EXPECT_EQ(code_, row.code) << name;
      (void)info(name);  // most kinds take no memory for that
      EXPECT_TRUE(code_ == row.code || row.limits.memory == little.memory) << name;
    }
  }
  // A mark for each scan, though none is decoded.
  Bytes jpeg = read("a.jpg");
  ASSERT_EQ(std::system(("convert " + at("a.bmp") + " -interlace JPEG " + at("c.jpg")).c_str()), 0);
  jpeg = read("c.jpg");
  EXPECT_TRUE(load("c.jpg"));
  for (int i = 0; i < 100; ++i) jpeg.insert(jpeg.end() - 2, {0xFF, 0xDA});
  EXPECT_FALSE(load("d.jpg", jpeg));
  EXPECT_EQ(code_, kFileFormatDamaged);
}

TEST_F(FileTest, eps_holds_the_pixels_in_their_size_on_paper) {
  const OwnedDib image = Picture({24, false}, 150, 75);
  ASSERT_EQ(save(image, "a.eps", kFormatEps), kModuleSuccess);
  const Bytes file = read("a.eps");
  const std::string start(file.begin(), file.end());
  EXPECT_TRUE(start.starts_with("%!PS-Adobe-3.0 EPSF-3.0"));
  EXPECT_NE(start.find("\n%%BoundingBox: 0 0 36 18\n"), std::string::npos);
  EXPECT_TRUE(std::all_of(file.begin(), file.end(), [](std::uint8_t b) { return b < 128; }));
}

}  // namespace
