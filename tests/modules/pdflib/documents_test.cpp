// Documents written through the module's entries, looked at by other programs: pictures come out as
// they went in, coded as their kind asks, in pages of the right size; what fails leaves no file.
#include "modules/ltfil13n/files.h"

namespace {

namespace fs = std::filesystem;
using rig::Bytes;

class DocumentTest : public rig::FileTest {
 protected:
  // A document of a page for each page of each picture file. False when one cannot be taken or the
  // document is not written; then nothing is left.
  bool make(const std::vector<std::string>& files) {
    fs::remove(at("out.pdf"));
    const std::size_t before = fileCount();
    PdfDocument* const pdf = PDF_new();
    bool sound = PDF_open_file(pdf, at("out.pdf").c_str()) != -1;
    PDF_set_info(pdf, "Title", "J\xC3\xBCrgens (Scan)");
    for (const std::string& file : files) {
      const std::string end = file.substr(file.find('.') + 1);
      const std::string type = end == "jpg" ? "jpeg" : end == "tif" ? "tiff" : end;
      const bool paged = type == "tiff";
      for (int page = 1, image = 0; sound && image != -1 && (paged || page == 1); ++page) {
        image = PDF_open_image_file(pdf, type.c_str(), at(file).c_str(), paged ? "page" : "", page);
        sound = image != -1 || page > 1;
        if (image != -1) place(pdf, image);
      }
    }
    PDF_close(pdf);
    const bool written = fs::exists(at("out.pdf")) && fs::file_size(at("out.pdf")) > 0;
    PDF_delete(pdf);
    EXPECT_EQ(fs::exists(at("out.pdf")), written);
    EXPECT_EQ(fileCount(), before + (written ? 1 : 0));
    return sound && written;
  }
  // A page as large as its picture: a point a pixel unless it has a resolution.
  static void place(PdfDocument* pdf, int image) {
    const auto value = [&](const char* key) {
      return PDF_get_value(pdf, key, static_cast<float>(image));
    };
    // Negative ones tell the shape of a pixel.
    const float x = value("resx");
    const float across = x > 0 ? 72 / x : 1;
    const float down = x > 0 ? 72 / value("resy") : x < 0 ? value("resy") / x : 1;
    PDF_begin_page(pdf, value("imagewidth") * across, value("imageheight") * down);
    PDF_scale(pdf, across, down);
    PDF_place_image(pdf, image, 0, 0, 1);
    PDF_end_page(pdf);
    PDF_close_image(pdf, image);
  }
  // Red, green and blue of all pixels of all pages, a point a pixel. They are drawn four times as
  // large and the middle of each pixel taken, since the program widens pictures by a dot.
  Bytes drawn() {
    const Bytes all = run("pdftoppm -r 288 out.pdf");
    Bytes pixels;
    for (std::size_t at = 0; at < all.size();) {
      std::istringstream head(std::string(all.begin() + static_cast<std::ptrdiff_t>(at),
                                          all.begin() + static_cast<std::ptrdiff_t>(at) + 20));
      std::string mark, most;
      std::size_t width = 0, height = 0;
      head >> mark >> width >> height >> most;
      at += static_cast<std::size_t>(head.tellg()) + 1;
      for (std::size_t i = 0; i < width / 4 * (height / 4); ++i) {
        const std::size_t pixel = (i / (width / 4) * 4 + 2) * width + i % (width / 4) * 4 + 2;
        for (std::size_t c = 0; c < 3; ++c) pixels.push_back(all[at + 3 * pixel + c]);
      }
      at += 3 * width * height;
    }
    return pixels;
  }
};

struct Row {
  const char* arguments;  // of convert
  const char* file;
  const char* kind;        // colours, components, bits, coding
  int mostDifference = 0;  // of a tone; JPEG decoders and ink mixing differ
};

constexpr Row kRows[] = {
    {"", "a.jpg", "rgb 3 8 jpeg", 3},
    {"-interlace JPEG -sampling-factor 4:2:0", "b.jpg", "rgb 3 8 jpeg", 3},
    {"-colorspace Gray", "c.jpg", "gray 1 8 jpeg", 1},
    {"-set colorspace RGB -define jpeg:colorspace=RGB", "d.jpg", "rgb 3 8 jpeg", 3},
    // Readers make colours of inks each in its own way; an inverted picture would be farther off.
    {"-colorspace CMYK -interlace JPEG", "e.jpg", "cmyk 4 8 jpeg", 130},
    {"-monochrome -compress Group4", "a.tif", "gray 1 1 ccitt"},
    {"-monochrome -compress Group4 -define quantum:polarity=min-is-white -define "
     "tiff:rows-per-strip=9999",
     "b.tif", "gray 1 1 ccitt"},
    {"-monochrome -compress Group4 -define tiff:fill-order=lsb", "d.tif", "gray 1 1 ccitt"},
    {"-colors 2 -type Palette -depth 1 -compress None", "g.tif", "index 1 1 ccitt"},
    {"-colorspace Gray -depth 2 -compress None", "i.tif", "gray 1 2 image"},
    {"-colors 200 -type Palette -compress RLE", "k.tif", "index 1 8 image", 1},
    {"-depth 16 -orient BottomLeft", "q.tif", "rgb 3 8 image", 1},
    {"-alpha set -channel A -evaluate multiply 0.3 +channel", "f.png", "rgb 3 8 image", 1},
    {"-transparent red -colors 50 PNG8:-|convert -", "h.png", "index 1 8 image", 1},
    {"-colors 2 -size 70x46 xc:red", "a.gif", "index 1 1 ccitt"},  // the first frame
    {"-colors 3", "b.gif", "index 1 2 image"},
    {"-colors 10 -interlace GIF", "c.gif", "index 1 4 image"},
    {"-transparent white -fuzz 30% -transparent red -colors 60", "d.gif", "index 1 8 image"},
};

// The rose is 70 by 46 pixels.
TEST_F(DocumentTest, pictures_come_back_pixel_by_pixel_in_the_coding_of_their_kind) {
  std::string commands, shown;
  std::vector<std::string> files;
  for (const Row& row : kRows) {
    commands += "convert rose: " + std::string(row.arguments) + " " + row.file + " && ";
    shown += std::string(row.file) + "[0] ";
    files.emplace_back(row.file);
  }
  const Bytes expected = run(commands + "convert " + shown +
                             "-auto-orient -background white "
                             "-alpha remove -colorspace sRGB -depth 8 rgb:-");
  ASSERT_TRUE(make(files));
  EXPECT_NE(text("qpdf --check out.pdf").find("No syntax or stream encoding errors"),
            std::string::npos);
  EXPECT_NE(text("pdfinfo out.pdf").find(" J\xC3\xBCrgens (Scan)\n"), std::string::npos);
  const Bytes got = drawn();
  std::istringstream list(
      text("pdfimages -list out.pdf | tail -n +3 | tr -s ' ' | cut -d ' ' -f 7-10"));
  constexpr std::ptrdiff_t kBytes = 70 * 46 * 3;
  ASSERT_EQ(expected.size(), kBytes * std::size(kRows));
  ASSERT_EQ(got.size(), expected.size());
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    const auto part = [&](const Bytes& all) {
      const auto start = all.begin() + kBytes * static_cast<std::ptrdiff_t>(i);
      return Bytes(start, start + kBytes);
    };
    EXPECT_LE(rig::LargestDifference(part(expected), part(got)), kRows[i].mostDifference)
        << kRows[i].file;
    std::string kind;
    std::getline(list, kind);
    EXPECT_EQ(kind, kRows[i].kind) << kRows[i].file;
  }
  // What goes through goes byte for byte.
  run("pdfimages -all out.pdf raw");
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(read("raw-00" + std::to_string(i) + ".jpg"), read(kRows[i].file));
  }
  const Bytes fax = read("raw-006.ccitt");
  const Bytes whole = read("b.tif");
  EXPECT_NE(std::search(whole.begin(), whole.end(), fax.begin(), fax.end()), whole.end());
}

TEST_F(DocumentTest, pages_follow_resolution_and_orientation) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"-units PixelsPerInch -density 300x150", "a.jpg", "16.8 x 22.08"},
      {"-units PixelsPerCentimeter -density 100", "b.jpg", "19.8425 x 13.0394"},
      {"-units PixelsPerInch -density 200x100", "a.tif", "25.2 x 33.12"},
      {"-units PixelsPerInch -density 300x150 -orient RightTop", "b.tif", "22.08 x 16.8"},
      // Without a unit the densities tell the shape of a pixel: half as high as wide.
      {"-units Undefined -density 1x2", "c.jpg", "70 x 23"},
      {"-units Undefined -density 2x1", "b.png", "70 x 92"},
      {"-units Undefined -density 1x2", "c.tif", "70 x 23"},
      // Beyond 200 inches, which is as far as readers go, the units grow.
      {"-resize 15000x20!", "c.png", "7500 x 10"},
      {"-resize 14400x20!", "d.png", "14400 x 20"}};
  std::string commands, sizes;
  std::vector<std::string> files;
  for (const auto& [arguments, file, size] : rows) {
    commands += std::string("convert rose: ") + arguments + " " + file + " && ";
    files.emplace_back(file);
    sizes += std::string(size) + " pts\n";
  }
  run(commands + "convert rose: -resize 40x20! -strip plain.jpg");
  ASSERT_TRUE(make(files));
  EXPECT_EQ(text("pdfinfo -l 99 out.pdf | grep 'Page.*size:' | tr -s ' ' | cut -d ' ' -f 4-"),
            sizes);
  EXPECT_EQ(text("qpdf --qdf out.pdf - | grep -a UserUnit"), "  /UserUnit 2\n");

  // Cameras tell how they were held in a block that follows the file's first two bytes.
  files.clear();
  std::string names;
  for (int orientation = 1; orientation <= 8; ++orientation) {
    files.push_back(std::to_string(orientation) + ".jpg");
    write(files.back(),
          rig::WithExif(read("plain.jpg"),
                        "'MM S42 I8 S1 S274 S3 I1 S" + std::to_string(orientation) + " S0 S0 S0"));
    names += files.back() + " ";
  }
  ASSERT_TRUE(make(files));
  EXPECT_LE(
      rig::LargestDifference(run("convert " + names + "-auto-orient -depth 8 rgb:-"), drawn()), 3);
}

TEST_F(DocumentTest, damaged_pictures_leave_no_document) {
  run("convert rose: -interlace JPEG a.jpg && convert rose: -colors 20 a.png && "
      "convert rose: -colors 20 a.gif && convert rose: rose: -compress LZW a.tif && "
      "convert rose: -monochrome -compress Group4 b.tif");
  // A later page that is damaged makes no shorter document.
  Bytes bytes = read("a.tif");
  const std::size_t strip =
      std::stoul(text("tiffinfo -s a.tif | grep '0: .8*' | tail -1 | tr -d '[' | cut -d: -f2"));
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(strip), 400, std::uint8_t{0x5A});
  write("c.tif", bytes);
  // What is passed through is not passed through unread.
  bytes = read("b.tif");
  std::fill_n(bytes.begin() + 100, 200, std::uint8_t{0x5A});
  write("d.tif", bytes);
  for (const char* const file : {"c.tif", "d.tif", "missing.jpg", "missing.tif", "missing.gif"}) {
    EXPECT_FALSE(make({file})) << file;
  }
  for (const std::string name : {"a.jpg", "a.png", "a.gif", "a.tif", "b.tif"}) {
    const Bytes whole = read(name);
    for (const std::size_t tenths : {0U, 3U, 5U, 9U}) {
      bytes = whole;
      bytes.resize(whole.size() * tenths / 10);
      write(name, bytes);
      EXPECT_FALSE(make({name})) << name << " " << tenths;
    }
  }
}

TEST_F(DocumentTest, what_cannot_be_written_leaves_nothing) {
  run("convert rose: rose: -compress None a.tif");
  ASSERT_TRUE(make({"a.tif"}));
  const std::size_t whole = read("out.pdf").size();
  for (const std::size_t limit : {std::size_t{0}, whole / 4, whole / 2, whole - 600, whole - 1}) {
    EXPECT_FALSE(inSpaceOf(limit, [&] { return make({"a.tif"}); })) << limit;
  }
  EXPECT_TRUE(inSpaceOf(whole, [&] { return make({"a.tif"}); }));
  fs::create_directory(at("folder.pdf"));
  PdfDocument* const pdf = PDF_new();
  for (const std::string& target :
       {at("folder.pdf"), at("missing/x.pdf"), std::string(), at(std::string(300, 'a'))}) {
    EXPECT_EQ(PDF_open_file(pdf, target.c_str()), -1) << target;
  }
  PDF_delete(pdf);
  EXPECT_EQ(fileCount(), 3U);
}

TEST_F(DocumentTest, calls_out_of_order_leave_nothing) {
  run("convert rose: -density 50x40 -units PixelsPerInch a.png");
  const auto opened = [&](PdfDocument* pdf, const char* type, const std::string& name) {
    return PDF_open_image_file(pdf, type, name.empty() ? nullptr : at(name).c_str(), nullptr, 0);
  };
  PDF_delete(nullptr);
  PDF_close(nullptr);
  PDF_end_page(nullptr);
  EXPECT_EQ(PDF_open_file(nullptr, at("x.pdf").c_str()), -1);
  // What is done to a document before it is closed; only the first leaves a file.
  const std::function<void(PdfDocument*, int)> works[] = {
      [](PdfDocument* pdf, int image) { place(pdf, image); }, [](PdfDocument*, int) {},
      [](PdfDocument* pdf, int image) {
        PDF_begin_page(pdf, 0, 10);
        PDF_place_image(pdf, image, 0, 0, 1);
        PDF_end_page(pdf);
        place(pdf, image);
      },
      [](PdfDocument* pdf, int image) {
        place(pdf, image);
        PDF_begin_page(pdf, 9, 9);
        PDF_place_image(pdf, image, 0, 0, 1);  // closed
      },
      [&](PdfDocument* pdf, int image) {
        place(pdf, image);
        EXPECT_EQ(opened(pdf, "png", "absent.png"), -1);
      }};
  for (const auto& work : works) {
    PdfDocument* const pdf = PDF_new();
    EXPECT_EQ(PDF_open_file(pdf, nullptr), -1);
    EXPECT_EQ(opened(pdf, "png", "a.png"), -1) << "no document";
    ASSERT_NE(PDF_open_file(pdf, at("out.pdf").c_str()), -1);
    EXPECT_EQ(PDF_open_file(pdf, at("second.pdf").c_str()), -1);
    EXPECT_EQ(opened(pdf, "bmp", "a.png"), -1);
    EXPECT_EQ(opened(pdf, nullptr, "a.png"), -1);
    EXPECT_EQ(opened(pdf, "png", ""), -1);
    PDF_set_info(pdf, nullptr, nullptr);
    const int image = opened(pdf, "png", "a.png");
    ASSERT_GE(image, 0);
    const auto number = static_cast<float>(image);
    EXPECT_EQ(PDF_get_value(pdf, "resy", number), 40);
    EXPECT_EQ(PDF_get_value(pdf, "unknown", number), 0);
    EXPECT_EQ(PDF_get_value(pdf, nullptr, number), 0);
    EXPECT_EQ(PDF_get_value(pdf, "resx", number + 1), 0);
    work(pdf, image);
    // Still unfinished, it cannot be taken for a whole document.
    EXPECT_EQ(fs::file_size(at("out.pdf")), 0U);
    PDF_close(pdf);
    PDF_delete(pdf);
    EXPECT_EQ(fileCount(), &work == works ? 2U : 1U);
    fs::remove(at("out.pdf"));
  }
}

}  // namespace
