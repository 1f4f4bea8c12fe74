// PDF targets: the calls that reach the PDF module, the sizes of pages, the codes, and what every
// failure leaves. The module's double writes no file.
#include "binding/pdf.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "binding_fixture.h"

using namespace orvo;

namespace binding {
namespace {

namespace fs = std::filesystem;

// The conversion's own codes pass no further than the methods round it, so the private method is
// reached for.
int Convert(CLeadTools& tools, const char* source, const char* target);
template <auto kMethod>
struct Reach {
  friend int Convert(CLeadTools& tools, const char* source, const char* target) {
    return (tools.*kMethod)(source, target);
  }
};
template struct Reach<&CLeadTools::ConvertToPDF>;

class PdfTest : public BindingTest {
 protected:
  PdfTest() {
    std::string pattern = testing::TempDir() + "binding.pdf-XXXXXX";
    folder_ = mkdtemp(pattern.data());
  }
  ~PdfTest() override { fs::remove_all(folder_); }

  // A file with some bytes.
  std::string put(const std::string& name) const {
    std::ofstream(folder_ / name) << "precious";
    return folder_ / name;
  }
  [[nodiscard]] bool has(const std::string& name) const { return fs::exists(folder_ / name); }

 private:
  fs::path folder_;
};

Log Opening(const std::string& target, const std::string& title) {
  return {"PDF_new()",
          "PDF_open_file(doc, " + target + ")",
          "PDF_set_info(doc, Title, " + title + ")",
          "PDF_set_info(doc, Creator, binding_test)",
          "PDF_set_info(doc, Author, )",
          "PDF_set_info(doc, Subject, Created PDF)"};
}

Log Page(const std::string& image, const std::string& size, const std::string& scale) {
  return {"PDF_get_value(doc, resx, " + image + ")",
          "PDF_get_value(doc, resy, " + image + ")",
          "PDF_get_value(doc, imageheight, " + image + ")",
          "PDF_get_value(doc, imagewidth, " + image + ")",
          "PDF_begin_page(doc, " + size + ")",
          "PDF_scale(doc, " + scale + ")",
          "PDF_place_image(doc, " + image + ", 0, 0, 1)",
          "PDF_close_image(doc, " + image + ")",
          "PDF_end_page(doc)"};
}

const Log kClosing = {"PDF_close(doc)", "PDF_delete(doc)"};

Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

TEST_F(PdfTest, CallsForOnePicture) {
  const auto tools = Bind({"ltkrn13n.dll"});  // no other module is needed
  for (const auto& [extension, type] : std::map<std::string, std::string>{
           {"jpg", "jpeg"}, {"JPG", "jpeg"}, {"png", "png"}, {"Gif", "gif"}}) {
    const std::string source = "a.b/in." + extension;
    const std::string target = put("scan.1.pdf");
    doubles::TheState().answers = {
        {"resx", {300}}, {"resy", {150}}, {"imagewidth", {600}}, {"imageheight", {450}}};
    EXPECT_EQ(Convert(*tools, source.c_str(), target.c_str()), kPdfDone);
    EXPECT_EQ(TakeLog(), Opening(target, "scan.1") +
                             Log{"PDF_open_image_file(doc, " + type + ", " + source + ", , 0)"} +
                             Page("6", "144, 216", "0.24, 0.48") + kClosing);
    EXPECT_FALSE(has("scan.1.pdf"));
  }
}

TEST_F(PdfTest, EveryPageOfATiffBecomesAPageOfItsOwnSize) {
  const auto tools = Bind();
  doubles::TheState().pageCount = 3;
  doubles::TheState().answers = {{"resx", {72, 300, -1}},
                                 {"resy", {72, 300, -2}},
                                 {"imagewidth", {10, 100, 40}},
                                 {"imageheight", {20, 200, 30}}};
  const auto open = [](int page) {
    return Log{"PDF_open_image_file(doc, tiff, in.TIF, page, " + std::to_string(page) + ")"};
  };
  EXPECT_EQ(Convert(*tools, "in.TIF", "c:\\out\\scan.pdf"), kPdfDone);
  EXPECT_EQ(TakeLog(), Opening("c:\\out\\scan.pdf", "scan") + open(1) +
                           Page("7", "10, 20", "1, 1") + open(2) +
                           Page("8", "24, 48", "0.24, 0.24") + open(3) +
                           Page("9", "40, 60", "1, 2") + open(4) + kClosing);
}

TEST_F(PdfTest, ScaleFollowsTheResolution) {
  struct Row {
    int x, y;
    const char* scale;
  };
  const Row rows[] = {{72, 72, "1, 1"}, {0, 0, "1, 1"},     {-1, -2, "1, 2"},  {-4, -2, "1, 0.5"},
                      {0, 300, "1, 1"}, {300, 0, "1, 1"},   {-1, 300, "1, 1"}, {300, -1, "1, 1"},
                      {-1, 0, "1, 1"},  {144, 36, "0.5, 2"}};
  const auto tools = Bind();
  for (const Row& row : rows) {
    doubles::TheState().answers = {
        {"resx", {row.x}}, {"resy", {row.y}}, {"imagewidth", {1}}, {"imageheight", {1}}};
    EXPECT_EQ(Convert(*tools, "in.png", "out.pdf"), kPdfDone);
    const Log log = TakeLog();
    EXPECT_NE(std::find(log.begin(), log.end(), std::string("PDF_scale(doc, ") + row.scale + ")"),
              log.end())
        << row.x << " " << row.y;
    EXPECT_NE(
        std::find(log.begin(), log.end(), std::string("PDF_begin_page(doc, ") + row.scale + ")"),
        log.end())
        << row.x << " " << row.y;
  }
}

TEST_F(PdfTest, FailuresInOrderAndWhatTheyLeave) {
  const std::string target = put("scan.pdf");
  for (const char* absent : {"PdfLib.dll", "PDF_scale", "PDF_delete"}) {
    EXPECT_EQ(Convert(*Bind({absent}), nullptr, nullptr), kPdfNoModule) << absent;
    TakeLog();
  }
  const auto tools = Bind();
  EXPECT_EQ(Convert(*tools, nullptr, target.c_str()), kPdfNoSource);
  for (const char* source : {"x.jpeg", "x.tiff", "x.bmp", "x.pdf", "x", "", "a.png/x"}) {
    EXPECT_EQ(Convert(*tools, source, target.c_str()), kPdfNoPictureType) << source;
  }
  EXPECT_EQ(TakeLog(), Log());
  EXPECT_TRUE(has("scan.pdf"));

  doubles::TheState().answers["PDF_open_file"] = {-1};
  EXPECT_EQ(Convert(*tools, "x.png", target.c_str()), kPdfNotWritten);
  EXPECT_EQ(TakeLog(), (Log{"PDF_new()", "PDF_open_file(doc, " + target + ")", "PDF_delete(doc)"}));
  EXPECT_FALSE(has("scan.pdf"));

  for (const std::string extension : {"png", "tif"}) {
    put("scan.pdf");
    doubles::TheState().answers["PDF_open_image_file"] = {-1};
    EXPECT_EQ(Convert(*tools, ("x." + extension).c_str(), target.c_str()), kPdfNoPicture);
    const std::string open =
        extension == "png" ? "(doc, png, x.png, , 0)" : "(doc, tiff, x.tif, page, 1)";
    EXPECT_EQ(TakeLog(), Opening(target, "scan") + Log{"PDF_open_image_file" + open} + kClosing);
    EXPECT_FALSE(has("scan.pdf"));
  }
}

TEST_F(PdfTest, ConversionTellsOnlyDoneOrFailed) {
  const auto tools = Bind({"ltkrn13n.dll"});
  EXPECT_EQ(tools->LTConvertFile("in.tif", "x.pDf", 5, Watcher), ORVO_OK);
  doubles::TheState().answers["PDF_open_file"] = {-1};
  EXPECT_EQ(tools->LTConvertFile("in.tif", "x.pdf", 5, nullptr), ORVO_ERR_FAILURE);
  EXPECT_EQ(tools->LTConvertFile("in.bmp", "x.pdf", 5, nullptr), ORVO_ERR_FAILURE);
  EXPECT_EQ(tools->LTConvertFile(nullptr, "x.pdf", 5, nullptr), ORVO_ERR_NO_VENDOR);
  EXPECT_EQ(Bind({"PdfLib.dll"})->LTConvertFile("in.tif", "x.pdf", 5, nullptr), ORVO_ERR_FAILURE);
}

TEST_F(PdfTest, SavingGoesByWayOfATemporaryTiff) {
  const orvo::OwnedDib photo = Photo(8);
  const auto tools = Bind();
  const std::string target = put("a.b.Pdf");
  const std::string temporary = put("a.b$$$.tif");
  const Log saved = {"L_ConvertFromDIB(b1, 7x5x8, +1064, zeroed)",
                     "L_SaveBitmap(" + temporary + ", b1, 3, 0, 0, 0)"};
  for (const int opened : {1, -1}) {
    doubles::TheState().bitmaps.clear();
    doubles::TheState().answers["PDF_open_file"] = {opened};
    put("a.b.Pdf");
    put("a.b$$$.tif");
    EXPECT_EQ(tools->LTSaveFile(photo.get(), target.c_str(), 1, 77),
              opened == 1 ? ORVO_OK : ORVO_ERR_FAILURE);
    const Log pages = Log{"PDF_open_image_file(doc, tiff, " + temporary + ", page, 1)"} +
                      Page("7", "0, 0", "1, 1") +
                      Log{"PDF_open_image_file(doc, tiff, " + temporary + ", page, 2)"};
    const Log converted =
        opened == 1 ? Opening(target, "a.b") + pages + kClosing
                    : Log{"PDF_new()", "PDF_open_file(doc, " + target + ")", "PDF_delete(doc)"};
    EXPECT_EQ(TakeLog(), saved + converted + Log{"L_FreeBitmap(b1)"});
    EXPECT_FALSE(has("a.b.Pdf"));
    EXPECT_FALSE(has("a.b$$$.tif"));
  }

  // The target is not touched before its pictures stand ready.
  doubles::TheState().bitmaps.clear();
  doubles::TheState().answers["L_SaveBitmap"] = {kModuleWriteFailed};
  put("a.b.Pdf");
  EXPECT_EQ(tools->LTSaveFile(photo.get(), target.c_str(), 0, 0), ORVO_ERR_FILE_IO);
  EXPECT_EQ(TakeLog(), saved + Log{"L_FreeBitmap(b1)"});
  EXPECT_TRUE(has("a.b.Pdf"));

  EXPECT_EQ(Bind({"PdfLib.dll"})->LTSaveFile(photo.get(), target.c_str(), 0, 0), ORVO_ERR_FAILURE);
  EXPECT_EQ(Bind({"L_SaveFile"})->LTSaveFile(photo.get(), target.c_str(), 0, 0),
            ORVO_ERR_NO_VENDOR);
  EXPECT_FALSE(has("a.b$$$.tif"));
}

// The temporary name is three characters longer than the target's.
TEST_F(PdfTest, LongestTarget) {
  const orvo::OwnedDib photo = Photo(24);
  const auto tools = Bind();
  const auto target = [](std::size_t length) {
    return "/none/" + std::string(length - 10, 'x') + ".pdf";
  };
  EXPECT_EQ(tools->LTSaveFile(photo.get(), target(256).c_str(), 0, 0), ORVO_OK);
  EXPECT_EQ(tools->LTSaveFile(photo.get(), target(257).c_str(), 0, 0), ORVO_ERR_BAD_ARGUMENT);
}

}  // namespace
}  // namespace binding
