// Files that another program writes show the same pixels here as there.
#include "files.h"

namespace {

using rig::Bytes;
using rig::FileTest;
using rig::OwnedDib;

struct Row {
  const char* arguments;  // of convert, between the scene and the file
  const char* file;
  int depth;
  const char* compression;
  int tolerance = 0;  // largest difference of a byte: decoders of lossy forms may round differently
};

const Row kRows[] = {
    {"", "BMP3:a.bmp", 24, "none"},
    {"", "b.bmp", 24, "none"},  // version 4
    {"-colors 60 -compress RLE", "BMP3:c.bmp", 8, "RLE"},
    {"-quality 80 -sampling-factor 2x2", "a.jpg", 24, "JPEG"},
    {"-interlace JPEG", "b.jpg", 24, "JPEG"},
    {"-colorspace Gray", "c.jpg", 8, "JPEG"},
    {"-colorspace CMYK", "d.jpg", 24, "JPEG", 2},
    {"-interlace PNG", "a.png", 24, "deflate"},
    {"-depth 16 -define png:bit-depth=16", "b.png", 24, "deflate", 1},
    {"-colors 4 -type Palette -interlace PNG -define png:bit-depth=2", "PNG8:c.png", 4, "deflate"},
    {"-colorspace Gray -depth 16 -define png:bit-depth=16", "d.png", 8, "deflate", 1},
    {"-colorspace Gray -depth 2 -define png:bit-depth=2", "e.png", 4, "deflate"},
    {"-colorspace Gray -alpha set -channel A -evaluate set 70% -define png:color-type=4", "f.png",
     32, "deflate"},
    {"-colors 12 -transparent yellow", "PNG8:g.png", 32, "deflate"},
    {"-compress LZW -define tiff:predictor=2", "a.tif", 24, "LZW"},
    {"-compress Zip -define tiff:tile-geometry=16x32", "b.tif", 24, "deflate"},
    {"-compress RLE", "c.tif", 24, "PackBits"},
    {"-compress LZW -interlace Plane -define tiff:rows-per-strip=1", "d.tif", 24, "LZW"},
    {"-define tiff:endian=msb -depth 16", "f.tif", 24, "none", 1},
    {"", "TIFF64:g.tif", 24, "none"},
    {"-colorspace Gray -define quantum:polarity=min-is-white", "i.tif", 8, "none"},
    {"-colorspace Gray -depth 16 -compress LZW", "j.tif", 8, "LZW", 1},
    {"-colorspace Gray -depth 2", "k.tif", 4, "none"},
    {"-colorspace Gray -depth 4 -define tiff:tile-geometry=32x16", "l.tif", 4, "none"},
    {"-monochrome -compress Group4", "o.tif", 1, "CCITT G4"},
    {"-monochrome -compress Fax", "p.tif", 1, "CCITT G3"},
    {"-colorspace CMYK -interlace Plane -compress LZW", "r.tif", 24, "LZW", 2},
    {"-compress JPEG -quality 95", "t.tif", 24, "JPEG", 2},
    {"-colorspace Gray -alpha set -channel A -evaluate set 40%", "u.tif", 32, "none"},
    {"-alpha set -channel A -evaluate set 40% -define tiff:alpha=associated", "v.tif", 32, "none",
     1},
    {"-colorspace YCbCr -compress LZW", "w.tif", 24, "LZW", 2},
    {"-orient LeftBottom -compress LZW", "x.tif", 24, "LZW"},
    {"-compress None", "a.psd", 24, "none"},
    {"-depth 16 -compress RLE", "b.psd", 24, "RLE", 1},
    {"( -clone 0 -negate ) -compress RLE", "e.psd", 24, "RLE"},  // with a layer
    {"-compress RLE -orient BottomLeft", "a.tga", 24, "RLE"},
    {"-define webp:lossless=true", "a.webp", 24, "WebP"},
    {"-quality 80", "b.webp", 24, "WebP", 2},
    {"-alpha set -channel A -evaluate set 40% -define webp:lossless=true", "c.webp", 32, "WebP"},
    {"-define bmp:subtype=RGB565", "d.bmp", 24, "none"},
    {"-colors 12 -interlace GIF", "a.gif", 4, "LZW"},
    {"-colors 60 -transparent yellow", "b.gif", 32, "LZW"},
    {"-colorspace Lab -compress LZW", "y.tif", 24, "LZW", 20},  // there a and b are half a step off
    {"-depth 32 -define quantum:format=floating-point -compress Zip", "z.tif", 24, "deflate", 1},
    {"-colorspace Gray -depth 16 -define quantum:format=signed", "e.tif", 8, "none", 1},
    {"-colors 12 -alpha set -channel A -evaluate set 40% +channel -type PaletteAlpha", "s.tif", 32,
     "none", 1},
    {"-alpha set -channel A -evaluate set 40% +channel -colorspace CMYK", "m.tif", 32, "none", 2},
    {"-alpha set -channel A -evaluate set 40% +channel -colorspace CMYK -compress RLE", "f.psd", 32,
     "RLE", 2},
};

TEST_F(FileTest, files_of_other_programs_show_the_same_pixels) {
  std::string files;
  // Colours, smooth and sharp.
  run("convert -size 61x43 gradient:red-blue \\( -seed 5 plasma:fractal \\) -average "
      "-fill yellow -draw 'rectangle 5,5 20,18' -alpha off -depth 8 +repage scene.miff");
  std::string commands;
  for (const Row& row : kRows) {
    const std::string file(row.file);
    std::string arguments(row.arguments);
    if (arguments.starts_with("(")) arguments = "\\( -clone 0 -negate \\) -compress RLE";
    commands += "convert scene.miff " + arguments + " -units PixelsPerInch -density 300x150 " +
                file + " && ";
    files += file.substr(file.find(':') + 1) + "[0] ";
  }
  // Inks are mixed as light is, without a colour profile.
  const Bytes seen =
      run(commands + "convert " + files + " -auto-orient -colorspace sRGB -depth 8 rgba:-");
  ASSERT_EQ(seen.size(), std::size(kRows) * 61 * 43 * 4);
  auto next = seen.begin();
  for (const Row& row : kRows) {
    SCOPED_TRACE(std::string(row.arguments) + " " + row.file);
    const std::string name = std::string(row.file).substr(std::string(row.file).find(':') + 1);
    const OwnedDib loaded = load(name);
    ASSERT_EQ(code_, kModuleSuccess);
    EXPECT_EQ(rig::HeaderOf(loaded).biBitCount, row.depth);
    Bytes expected;
    for (int i = 0; i < 61 * 43; ++i, next += 4) {
      expected.insert(expected.end(), next, next + (row.depth == 32 ? 4 : 3));
    }
    EXPECT_LE(rig::LargestDifference(rig::Shown(loaded, row.depth == 32), expected), row.tolerance);
    expectInfo(name, loaded, row.compression);
    const bool turned = info(name).width == 43;
    const bool told =
        std::string_view(".bmp .jpg .png .tif .psd").find(name.substr(1)) != std::string_view::npos;
    EXPECT_EQ(info(name).xResolution, !told ? 0 : turned ? 150 : 300);
    EXPECT_EQ(info(name).yResolution, !told ? 0 : turned ? 300 : 150);
  }
}

// By what they hold, under any name, and only when they are whole.
TEST_F(FileTest, pictures_of_phones_are_read) {
  run("convert -size 61x43 -seed 5 plasma: -depth 8 scene.png && convert scene.png a.heic && "
      "convert scene.png a.avif && convert scene.png -define webp:lossless=true a.webp && "
      "gm convert scene.png -quality 80 a.jxl");
  for (const char* const name : {"a.heic", "a.avif", "a.webp", "a.jxl"}) {
    SCOPED_TRACE(name);
    const Bytes file = read(name);
    const OwnedDib loaded = load("a.jpg", file);
    ASSERT_EQ(code_, kModuleSuccess);
    EXPECT_EQ(rig::Shown(loaded), run(std::string("gm convert ") + name + " -depth 8 rgb:-"));
    for (const std::size_t part : {1, 3, 5}) {
      EXPECT_FALSE(
          load(name, {file.begin(), file.begin() + std::ptrdiff_t(file.size() * part / 6)}));
      EXPECT_EQ(code_, kFileFormatDamaged);
    }
  }
}

// The canvas beside the first frame is clear.
TEST_F(FileTest, moving_pictures_begin_with_a_frame_anywhere) {
  run("convert -size 5x3 xc:#102030 -define webp:lossless=true a.webp");
  const Bytes still = read("a.webp");
  const Bytes frame(still.begin() + 12, still.end());
  Bytes moving = rig::Of("'RIFF i" + std::to_string(4 + 18 + 14 + 24 + frame.size()) +
                         " 'WEBPVP8X i10 12 0 0 0 8 0 0 7 0 0 'ANIM i6 z6 'ANMF i" +
                         std::to_string(16 + frame.size()) +
                         " 1 0 0 2 0 0 4 0 0 2 0 0 64 0 0 0");  // from column 2 and row 4 on
  moving.insert(moving.end(), frame.begin(), frame.end());
  const OwnedDib loaded = load("b.webp", moving);
  ASSERT_EQ(code_, kModuleSuccess);
  const rig::Locked image(loaded.get());
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 9; ++x) {
      const bool inside = x >= 2 && x < 7 && y >= 4 && y < 7;
      const std::uint8_t* const pixel = image.row(7 - y) + 4 * x;
      EXPECT_EQ(Bytes(pixel, pixel + 4), inside ? (Bytes{0x30, 0x20, 0x10, 255}) : Bytes(4, 0));
    }
  }
}

}  // namespace
