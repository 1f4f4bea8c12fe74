// Documents whose pages are pictures: what is taken out of them, what is refused, and what stays
// when a page gets another picture. The documents are written here, by hand.
#include "client/client.h"
#include "support/pictures.h"

namespace {

// Three pixels wide and two high, a letter a pixel: its code is its gray.
const std::string kGray = "/ColorSpace /DeviceGray /BitsPerComponent 8";
const std::string kDraw = "30 0 0 20 0 0 cm /Im Do";
const std::string kUpright = "ABC/DEF";
const std::string kClockwise = "DA/EB/FC";

struct PdfPage {
  std::string content = kDraw;
  std::string image = kGray;
  std::string data = "ABCDEF";
  std::string entries = "/MediaBox [0 0 30 20]";
  std::string resources = {};
  std::string size = "/Width 3 /Height 2";
};

std::string Stream(const std::string& entries, const std::string& data) {
  return "<< " + entries + " /Length " + std::to_string(data.size()) + " >>\nstream\n" + data +
         "\nendstream";
}

// Without a table of objects: readers find them by themselves.
std::string Document(const std::vector<PdfPage>& pages, const std::string& catalog = "") {
  std::string text = "%PDF-1.7\n";
  const auto add = [&](std::size_t number, const std::string& object) {
    text += std::to_string(number) + " 0 obj\n" + object + "\nendobj\n";
  };
  std::string kids;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const PdfPage& page = pages[i];
    const std::size_t first = 10 * (i + 1);
    const auto reference = [&](std::size_t which) {
      return std::to_string(first + which) + " 0 R ";
    };
    kids += reference(0);
    add(first, "<< /Type /Page /Parent 2 0 R " + page.entries + " /Contents " + reference(1) +
                   "/Resources << /XObject << /Im " + reference(2) + "/Fm " + reference(3) + ">> " +
                   page.resources + " >> >>");
    add(first + 1, Stream("", page.content));
    add(first + 2,
        Stream("/Type /XObject /Subtype /Image " + page.size + " " + page.image, page.data));
    add(first + 3, Stream("/Type /XObject /Subtype /Form /BBox [0 0 1 1] /Matrix [0 -1 1 0 0 1] "
                          "/Resources << /XObject << /Im " +
                              reference(2) + ">> >>",
                          "/Im Do"));
  }
  add(1, "<< /Type /Catalog /Pages 2 0 R " + catalog + " >>");
  add(2, "<< /Type /Pages /Count " + std::to_string(pages.size()) + " /Kids [" + kids + "] >>");
  return text + "trailer << /Root 1 0 R >>\n%%EOF\n";
}

class PdfInputTest : public ClientTest {
 protected:
  // The grays of a file of letters, row by row; others than letters in brackets.
  [[nodiscard]] std::string letters(const std::string& name) const {
    run("gray " + name + " -o gray.tif");  // pages of one bit become no colours at once
    const orvo::OwnedDib picture = loadTrueColor("gray.tif");
    const orvo::DibLayout size = pictures::Locked(picture.get()).layout();
    std::string all;
    for (int y = 0; y < size.height; ++y) {
      if (y > 0) all += '/';
      for (int x = 0; x < size.width; ++x) {
        const int tone = ColorAt(picture, x, y)[0];
        all += tone >= 'A' && tone <= 'Z' ? std::string(1, static_cast<char>(tone))
                                          : "(" + std::to_string(tone) + ")";
      }
    }
    return all;
  }
};

struct Taken {
  const char* name;
  PdfPage page;
  std::string expected = kUpright;
};
const std::string kWide = std::string("A\0B\0C\0D\0E\0F\0", 12);
const Taken kTaken[] = {
    {"as it is", {}},
    {"a turned page", {.entries = "/MediaBox [0 0 30 20] /Rotate 90"}, kClockwise},
    {"a turned matrix",
     {.content = "0 -30 20 0 0 30 cm /Im Do", .entries = "/MediaBox [0 0 20 30]"},
     kClockwise},
    {"both turn on",
     {.content = "0 -30 20 0 0 30 cm /Im Do", .entries = "/MediaBox [0 0 20 30] /Rotate -90"}},
    {"mirrored", {.content = "-30 0 0 20 30 0 cm /Im Do"}, "CBA/FED"},
    {"in a form that turns",
     {.content = "20 0 0 30 0 0 cm /Fm Do", .entries = "/MediaBox [0 0 20 30]"},
     kClockwise},
    {"on white, inside a frame", {.content = "1 g 0 0 30 20 re f 0 0 30 20 re W n " + kDraw}},
    {"under invisible text", {.content = "BT 3 Tr (words) Tj ET " + kDraw}},
    {"tones turned round", {.image = kGray + " /Decode [1 0]", .data = "\xBE\xBD\xBC\xBB\xBA\xB9"}},
    {"16 bits", {.image = "/ColorSpace /CalGray /BitsPerComponent 16", .data = kWide}},
    {"red, green and blue",
     {.image = "/ColorSpace [/CalRGB <<>>] /BitsPerComponent 8", .data = "AAABBBCCCDDDEEEFFF"}},
    {"inks",
     {.image = "/ColorSpace /DeviceCMYK /BitsPerComponent 8 /Filter /ASCIIHexDecode",
      .data = "000000BE 000000BD 000000BC BBBBBB00 BABABA00 B9B9B900>"}},
    {"two bits of a palette",
     {.image = "/ColorSpace [/Indexed /DeviceGray 3 <41424344>] /BitsPerComponent 2",
      .data = "\x18\xE4"},
     "ABC/DCB"},
    {"a palette from its end",
     {.image = "/ColorSpace [/Indexed /DeviceRGB 1 <414141 424242>] /BitsPerComponent 1 "
               "/Decode [1 0]",
      .data = "\x40\xA0"},
     "BAB/ABA"},
    {"a stencil", {.image = "/ImageMask true", .data = "\x40\xA0"}, "(0)(255)(0)/(255)(0)(255)"},
    {"a fax",
     {.image = "/ColorSpace /DeviceGray /BitsPerComponent 1 /Filter [/ASCIIHexDecode "
               "/CCITTFaxDecode] /DecodeParms [null << /K -1 /Columns 3 >>]",
      .data = "820940040040>"},
     "(255)(255)(255)/(0)(255)(0)"},
};

TEST_F(PdfInputTest, PicturesAreTakenOutAsTheyAreShown) {
  for (const Taken& row : kTaken) {
    write("in.pdf", Document({row.page}));
    const Outcome outcome = run("convert in.pdf -o out.tif");
    EXPECT_EQ(outcome.status, 0) << row.name << ": " << outcome.errors;
    if (outcome.status != 0) continue;
    EXPECT_EQ(letters("out.tif"), row.expected) << row.name;
  }
}

struct Refused {
  PdfPage page;
  const char* words;
};
const Refused kRefused[] = {
    {{.content = "0 0 m"}, "it shows no picture"},
    {{.content = kDraw + " /Im Do"}, "it shows several pictures"},
    {{.content = kDraw + " BT (words) Tj ET"}, "it shows text"},
    {{.content = kDraw + " 1 g 0 0 1 1 re f"}, "it shows a drawing"},
    {{.content = "0 g 0 0 9 9 re f " + kDraw}, "it shows a drawing"},
    {{.content = "BI /W 1 /H 1 /BPC 8 /CS /G ID A EI"}, "its picture lies within its content"},
    {{.content = "/OC /Layer BDC " + kDraw + " EMC"}, "it has layers"},
    {{.content = "0 0 9 20 re W n " + kDraw}, "it shows a part of its picture only"},
    {{.content = "0 0 m 90 0 l 0 90 l W n " + kDraw}, "it shows a part of its picture only"},
    {{.entries = "/MediaBox [0 0 30 20] /CropBox [9 0 30 20]"},
     "it shows a part of its picture only"},
    {{.content = "30 3 -3 20 0 0 cm /Im Do", .entries = "/MediaBox [-9 -9 99 99]"},
     "its picture lies slanted"},
    {{.content = "/Gs gs " + kDraw, .resources = "/ExtGState << /Gs << /ca .5 >> >>"},
     "its picture lets the ground show through"},
    {{.image = kGray + " /SMask 10 0 R"}, "its picture lets the ground show through"},
    {{.content = "1 0 0 rg " + kDraw, .image = "/ImageMask true"},
     "its picture is a stencil in a color"},
    {{.image = "/ColorSpace [/Separation /Gold /DeviceGray null] /BitsPerComponent 8"},
     "its colors are of a kind that is not read"},
    {{.image = kGray + " /Filter /JBIG2Decode"}, "its picture is coded as JBIG2"},
    {{.image = "/Filter /JPXDecode"}, "its picture is coded as JPEG 2000"},
    {{.image = kGray + " /Decode [0 .5]"}, "its picture changes its tones by /Decode"},
    {{.data = "ABC"}, "its picture is damaged"},
    {{.size = "/Width 999999 /Height 999999"}, "its picture is damaged"},
    {{.image = kGray + " /Filter /DCTDecode"}, "its picture is damaged"},
};

TEST_F(PdfInputTest, PagesThatAreNoPictureAreRefusedByNumberAndReason) {
  for (const Refused& row : kRefused) {
    write("in.pdf", Document({{}, row.page}));
    const std::string before = bytes("in.pdf");
    const Outcome outcome = run("sharpen --level 3 in.pdf --in-place");
    EXPECT_EQ(outcome.status, 1) << row.words;
    EXPECT_NE(outcome.errors.find("page 2: " + std::string(row.words)), std::string::npos)
        << row.words << '\n'
        << outcome.errors;
    EXPECT_EQ(bytes("in.pdf"), before);
  }
}

TEST_F(PdfInputTest, TheDocumentStaysRoundChangedPages) {
  const PdfPage words{.content = "BT 3 Tr (words) Tj ET " + kDraw};
  const PdfPage stays{.data = "GHIJKL"};
  const std::string outlines = "/Outlines << /First << /Title (Chapter) >> >>";
  write("in.pdf", Document({words, stays, words}, outlines));

  // The pictures that change keep their places, and all else its bytes.
  EXPECT_EQ(run("invert --pages 1 in.pdf --in-place").status, 0);
  const std::string inverted = bytes("in.pdf");
  for (const char* part : {"(Chapter)", "(words)", "GHIJKL", "ABCDEF"}) {
    EXPECT_NE(inverted.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(run("convert in.pdf -o out.tif").status, 0);
  EXPECT_EQ(letters("out.tif"), "(190)(189)(188)/(187)(186)(185)");

  // Text would no longer lie on its words.
  const Outcome refused = run("rotate --angle 90 --pages 3 in.pdf --in-place");
  EXPECT_NE(refused.errors.find("page 3: its invisible text would be lost; --allow-loss"),
            std::string::npos)
      << refused.errors;
  EXPECT_EQ(bytes("in.pdf"), inverted);
  EXPECT_EQ(run("rotate --angle 90 --pages 3 in.pdf --in-place --allow-loss").status, 0);
  const json info = report("info in.pdf");
  EXPECT_EQ(info["pages"][2]["width"], 2);
  EXPECT_EQ(info["pages"][2]["x_dpi"], 7);
  const Outcome picked = run("convert --pages 3 in.pdf -o out.tif");
  EXPECT_NE(picked.errors.find("not kept: the outlines"), std::string::npos) << picked.errors;
  EXPECT_EQ(letters("out.tif"), kClockwise);

  // A turned page shows a changed picture turned as before.
  write("in.pdf", Document({{.entries = "/MediaBox [0 0 30 20] /Rotate 90"}, stays}));
  EXPECT_EQ(run("invert --pages 1 in.pdf -o one.pdf").status, 0);
  EXPECT_EQ(run("invert one.pdf -o out.tif").status, 0);
  EXPECT_EQ(letters("out.tif"), kClockwise);
  EXPECT_EQ(bytes("one.pdf").find("GHIJKL"), std::string::npos);
}

TEST_F(PdfInputTest, JpegStreamsStayAsTheyAre) {
  save("photo.jpg", pictures::Noise(37, 21, 24, 1));
  const std::string photo = bytes("photo.jpg");
  PdfPage page{.content = "74 0 0 42 0 0 cm /Im Do",
               .image = "/ColorSpace /DeviceRGB /BitsPerComponent 8 /Filter /DCTDecode",
               .data = photo,
               .entries = "/MediaBox [0 0 74 42]",
               .size = "/Width 37 /Height 21"};
  PdfPage turned = page;
  turned.entries += " /Rotate 270";
  write("in.pdf", Document({page, turned}));
  EXPECT_EQ(run("convert in.pdf -o out.jpg").status, 0);
  EXPECT_EQ(bytes("out-1.jpg"), photo);
  EXPECT_EQ(run("rotate --angle 90 out-2.jpg -o back.png").status, 0);
  EXPECT_EQ(run("convert photo.jpg -o straight.png").status, 0);
  EXPECT_EQ(pictures::Difference(load("back.png").get(), load("straight.png").get()), "");
  // The page says how large it is shown.
  EXPECT_EQ(report("invert --pages 1 in.pdf -o out.png")["picture"]["x_dpi"], 36);
}

}  // namespace
