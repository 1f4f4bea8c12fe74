// The entries that touch files: which format, quality and depth reach the file module, densities of
// JPEG files, what each failure leaves; and the road into PDF documents.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "toolkit_test.h"

namespace table {
namespace {

namespace fs = std::filesystem;

// A folder, called ~ in the log, that is removed again; its name holds a dot and a blank.
class Files : public ToolkitTest {
 protected:
  Files() {
    fs::create_directories(folder_);
    state.folder = folder_;
  }
  ~Files() override { fs::remove_all(folder_); }

  [[nodiscard]] std::string at(const std::string& name) const { return folder_ + "/" + name; }
  [[nodiscard]] bool has(const std::string& name) const { return fs::exists(at(name)); }
  std::string put(const std::string& name, const std::string& bytes = "precious") const {
    std::ofstream(at(name), std::ios::binary) << bytes;
    return at(name);
  }
  [[nodiscard]] std::string contents(const std::string& name) const {
    std::ifstream file(at(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  int save(const char* name, int flag = 0, int quality = 77) {
    return toolkit->SaveFile(photo_.get(), at(name).c_str(), flag, quality);
  }
  // Two pages of TIFF, the second of another size.
  std::string putTwoPages(const std::string& name) {
    EXPECT_EQ(save(name.c_str()), ORVO_OK);
    const OwnedDib other = pictures::Noise(20, 10, 8, 1);
    EXPECT_EQ(toolkit->SaveFile(other.get(), at(name).c_str(), 1, 0), ORVO_OK);
    log();
    return at(name);
  }

  OwnedDib photo_ = [] {
    OwnedDib photo = pictures::Noise(8, 5, 24, 1);
    Locked(photo.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(200);
    return photo;
  }();

 private:
  std::string folder_ = testing::TempDir() + "table.jpg test " + std::to_string(getpid());
};

Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// --- Names ---------------------------------------------------------------------------------------

TEST_F(Files, ExtensionsChooseFormatAndQuality) {
  struct Row {
    const char* extension;
    const char* save;  // format, depth and quality for 77; null where nothing is saved
    int convert;       // format, 0 where nothing is converted
    bool image;
  };
  const Row rows[] = {{"bmp", "6, 0, 0", 6, true},    {"jff", "6, 0, 0", 0, false},
                      {"jpg", "10, 0, 77", 10, true}, {"jpeg", "10, 0, 77", 10, true},
                      {"jpe", nullptr, 10, true},     {"cmp", "5, 0, 77", 5, true},
                      {"tif", "3, 0, 0", 87, true},   {"tiff", "3, 0, 0", 87, true},
                      {"pcx", "1, 0, 0", 1, true},    {"psd", "76, 0, 0", 76, true},
                      {"png", "75, 0, 0", 75, true},  {"ras", "55, 0, 0", 55, true},
                      {"pcd", "57, 0, 0", 57, true},  {"fpx", "82, 0, 2", 82, true},
                      {"wmf", "15, 0, 0", 15, true},  {"tga", "4, 0, 0", 4, true},
                      {"eps", "16, 0, 0", 0, false},  {"wpg", "54, 0, 0", 0, false},
                      {"pct", "56, 0, 0", 56, true},  {"jtf", nullptr, 0, true},
                      {"exf", nullptr, 0, true},      {"dcx", nullptr, 0, true},
                      {"gif", nullptr, 0, false},     {"bmpx", nullptr, 0, false},
                      {"bmp ", nullptr, 0, false},    {"", nullptr, 0, false},
                      {"png.bak", nullptr, 0, false}, {"png/x", nullptr, 0, false},
                      {"png\\x", nullptr, 0, false}};
  ASSERT_EQ(save("in.bmp"), ORVO_OK);
  log();
  for (const Row& row : rows) {
    for (const int flag : {0, 1, -1}) {
      std::string name = std::string("x.y.") + row.extension;
      for (char& c : name) c = flag == 0 ? c : static_cast<char>(std::toupper(c));
      if (flag < 0) name.back() = static_cast<char>(std::tolower(name.back()));
      SCOPED_TRACE(name);
      const bool pages = flag != 0 && std::string(row.extension).starts_with("tif");
      const std::string call = pages ? "L_SaveFile" : "L_SaveBitmap";
      state.answers[call] = {1};
      EXPECT_EQ(save(name.c_str(), flag), row.save != nullptr ? ORVO_OK : ORVO_ERR_BAD_FORMAT);
      Log expected = {"L_ConvertFromDIB(0x0x0, *, *)"};
      if (row.save != nullptr) {
        expected.push_back(pages ? "L_SaveFile(~/" + name + ", 8x5x24, 3, 0, 0, 6, 0, 0, 0)"
                                 : "L_SaveBitmap(~/" + name + ", 8x5x24, " + row.save + ", 0)");
      }
      EXPECT_EQ(log(), expected + Log{"L_FreeBitmap(8x5x24)"});

      state.answers = {{"L_FileConvert", {1}}};
      EXPECT_EQ(CallSlot(toolkit.get(), 57, at("in.bmp").c_str(), at(name).c_str(), 77,
                         StatusCallback{nullptr}),
                row.convert != 0 ? ORVO_OK : ORVO_ERR_BAD_FORMAT);
      expected = {"L_FileInfo(~/in.bmp, *, 0, 0)",
                  "L_FileConvert(~/in.bmp, ~/" + name + ", " + std::to_string(row.convert) +
                      ", 0, 0, 24, 77, 0, 0, 0)"};
      EXPECT_EQ(log(), row.convert != 0 ? expected : Log());
      state.answers.clear();
      EXPECT_EQ(CallSlot(toolkit.get(), 51, name.c_str()), row.image ? 1 : 0);
    }
  }
  EXPECT_EQ(toolkit->IsImageFileName(nullptr), 0);
  EXPECT_EQ(toolkit->IsImageFileName(".png"), 1);
  EXPECT_EQ(toolkit->IsImageFileName("bmp"), 0);
  EXPECT_EQ(toolkit->IsImageFileName(("x." + std::string(1000, 'b')).c_str()), 0);
}

TEST_F(Files, ExtensionsAreCopiedOutInTwoCalls) {
  const std::string expected(
      "BMP\0TIF\0TIFF\0JPG\0JPE\0JPEG\0CMP\0PCX\0PSD\0PNG\0RAS\0PCD\0FPX\0WMF\0TGA\0PCT\0\0", 67);
  for (const std::uint32_t given : {0U, 66U, 67U, 68U, 1000U}) {
    for (const bool withBuffer : {false, true}) {
      std::string buffer(1000, '#');
      int count = 0;
      std::uint32_t size = given;
      const bool fits = withBuffer && given >= 67;
      EXPECT_EQ(CallSlot(toolkit.get(), 53, withBuffer ? &count : nullptr,
                         withBuffer ? buffer.data() : nullptr, &size),
                fits ? ORVO_OK : ORVO_ERR_BUFFER_TOO_SMALL);
      EXPECT_EQ(size, 67U);
      EXPECT_EQ(count, withBuffer ? 16 : 0);
      EXPECT_EQ(buffer, fits ? expected + std::string(933, '#') : std::string(1000, '#'));
    }
  }
  int count = 0;
  EXPECT_EQ(toolkit->GetFileExtensions(&count, nullptr, nullptr), ORVO_ERR_BUFFER_TOO_SMALL);
  EXPECT_EQ(count, 16);
}

// --- Loading and saving --------------------------------------------------------------------------

TEST_F(Files, SavingFailsInOrder) {
  for (const std::string entry : {"L_SaveBitmap", "L_SaveFile", "L_FreeBitmap"}) {
    bind({entry});
    EXPECT_EQ(toolkit->SaveFile(nullptr, "x.png", 0, 0), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(toolkit->SaveFile(photo_.get(), nullptr, 0, 0), ORVO_ERR_NO_VENDOR);
    EXPECT_EQ(log(), Log());
  }
  bind();
  EXPECT_EQ(toolkit->SaveFile(photo_.get(), nullptr, 0, 0), ORVO_ERR_BAD_ARGUMENT);
  state.answers = {{"L_SaveBitmap", {-6}}, {"L_SaveFile", {-12}}};
  EXPECT_EQ(save("x.tif"), ORVO_ERR_FILE_IO);
  EXPECT_EQ(save("x.tif", 1), ORVO_ERR_BAD_FORMAT);
  Locked(photo_.get()).header()->biWidth = 60000;
  EXPECT_NE(CallSlot(toolkit.get(), 52, photo_.get(), at("x.png").c_str(), 0, 0), ORVO_OK);
  EXPECT_FALSE(has("x.png"));
}

// Loading and making a thumbnail: the older block goes only when the new one is there.
TEST_F(Files, LoadedImagesReplaceTheOlderBlock) {
  ASSERT_EQ(save("in.png"), ORVO_OK);
  for (const bool thumbnail : {false, true}) {
    SCOPED_TRACE(thumbnail);
    const auto load = [&](const char* path, DibHandle* result) {
      return thumbnail ? CallSlot(toolkit.get(), 48, path, result, 16, 12)
                       : CallSlot(toolkit.get(), 45, path, result);
    };
    const std::string path = at("in.png");
    OwnedDib old = pictures::Noise(7, 5, 8, 1);
    DibHandle made = old.get();
    const std::string own = thumbnail ? "L_CreateThumbnailFromFile" : "L_LoadBitmap";
    for (const char* entry : {own.c_str(), thumbnail ? "L_ChangeToDIB" : "L_ConvertToDIB",
                              thumbnail ? "ltfil13n.dll" : "L_FreeBitmap"}) {
      bind({entry});
      EXPECT_EQ(load(nullptr, &made), ORVO_ERR_NO_VENDOR);
    }
    bind();
    EXPECT_EQ(load(nullptr, &made), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(load(path.c_str(), nullptr), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(log(), Log());
    EXPECT_EQ(load(at("none.png").c_str(), &made), ORVO_ERR_FILE_NOT_FOUND);
    EXPECT_EQ(log().size(), 1U);
    EXPECT_EQ(made, old.get());
    EXPECT_TRUE(IsAlive(made));
    for (const DibHandle first : {old.release(), DibHandle{nullptr}}) {
      made = first;
      EXPECT_EQ(load(path.c_str(), &made), ORVO_OK);
      EXPECT_FALSE(IsAlive(first));
      const OwnedDib image(made);
      EXPECT_EQ(Measures(made), thumbnail ? "16x12x24" : "8x5x24");
      EXPECT_EQ(log(),
                thumbnail
                    ? (Log{"L_CreateThumbnailFromFile(~/in.png, 0x0x0, [16 12 0 0 1 1 16777215 0 "
                           "0], 0, 0, 0, 0)",
                           "L_ChangeToDIB(16x12x24)"})
                    : (Log{"L_LoadBitmap(~/in.png, 0x0x0, 0, 1, 0, 0)", "L_ConvertToDIB(8x5x24)",
                           "L_FreeBitmap(8x5x24)"}));
      if (!thumbnail) {
        EXPECT_EQ(Difference(photo_.get(), made), "");
      }
    }
    // A bitmap that gives no block.
    state.answers = {{"L_ChangeToDIB", {0}}, {"L_ConvertToDIB", {0}}};
    made = nullptr;
    EXPECT_EQ(load(path.c_str(), &made), thumbnail ? ORVO_ERR_FAILURE : ORVO_ERR_NO_MEMORY);
    EXPECT_EQ(made, nullptr);
    state.answers.clear();
    log();
  }
}

TEST_F(Files, JpegDensitiesWithoutAUnitAreMultiplesOfSeventyTwo) {
  ASSERT_EQ(save("plain.jpg"), ORVO_OK);
  const std::string plain = contents("plain.jpg");
  struct Row {
    const char* name;
    std::string jfif;  // the bytes from 6 on
    int x, y;          // dots per inch
  };
  const auto jfif = [](int minor, int units, int x, int y) {
    std::string text("JFIF\0\x01", 6);
    for (const int byte : {minor, units, x >> 8, x & 255, y >> 8, y & 255}) {
      text += static_cast<char>(byte);
    }
    return text;
  };
  const Row rows[] = {{"x.jpg", jfif(1, 0, 1, 1), 72, 72},
                      {"a.png.jpeg", jfif(1, 0, 3, 2), 216, 144},
                      {"x.jpg", jfif(1, 0, 300, 40000), 21600, 2880000},
                      {"x.jpg", jfif(1, 0, 40255, 200), 2898360, 14400},
                      {"x.JPG", jfif(1, 0, 3, 2), 0, 0},
                      {"x.Jpeg", jfif(1, 0, 3, 2), 0, 0},
                      {"x.jpe", jfif(1, 0, 3, 2), 0, 0},
                      {"jpg", jfif(1, 0, 3, 2), 0, 0},
                      {"x.jpg", jfif(2, 0, 3, 2), 0, 0},
                      {"x.jpg", jfif(1, 1, 3, 2), 3, 2},
                      {"x.jpg", jfif(1, 2, 3, 2), 8, 5},
                      {"x.jpg", "JFIF" + std::string("\0\x02\x01\0\0\x03\0\x02", 8), 0, 0},
                      {"x.jpg", "JFXF" + jfif(1, 0, 3, 2).substr(4), 0, 0},
                      {"x.jpg", "JFIFX" + jfif(1, 0, 3, 2).substr(5), 0, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name + testing::PrintToString(row.jfif));
    const std::string path = put(row.name, plain.substr(0, 6) + row.jfif + plain.substr(18));
    DibHandle made = nullptr;
    ASSERT_EQ(toolkit->LoadFile(path.c_str(), &made), ORVO_OK);
    const OwnedDib image(made);
    EXPECT_EQ(orvo::DotsPerInch(Locked(made).header()->biXPelsPerMeter), row.x);
    EXPECT_EQ(orvo::DotsPerInch(Locked(made).header()->biYPelsPerMeter), row.y);
  }
  for (const std::size_t length : {0U, 5U, 17U}) {
    DibHandle made = nullptr;
    EXPECT_NE(toolkit->LoadFile(put("cut.jpg", plain.substr(0, length)).c_str(), &made), ORVO_OK);
    EXPECT_EQ(made, nullptr);
  }
  log();
}

// --- Information and conversion ------------------------------------------------------------------

TEST_F(Files, InformationIsThatOfTheFirstPage) {
  const std::string two = putTwoPages("two.tif");
  ASSERT_EQ(save("one.bmp"), ORVO_OK);
  log();
  for (const std::string& path : {at("one.bmp"), two}) {
    ORVOIMAGEFILEINFO info{};
    if (path == two) state.answers["L_FileInfo"] = {};
    EXPECT_EQ(CallSlot(toolkit.get(), 56, path.c_str(), &info), ORVO_OK);
    const int size = static_cast<int>(fs::file_size(path));
    const int fields[] = {info.width,       info.height,      info.bitsPerPixel, info.order,
                          info.xResolution, info.yResolution, info.sizeInMemory, info.sizeOnDisk};
    EXPECT_EQ(std::vector<int>(fields, fields + 8),
              (std::vector<int>{8, 5, 24, 1, 300, 200, info.sizeInMemory, size}));
    EXPECT_GE(info.sizeInMemory, 8 * 5 * 3);
    const std::string name = path == two ? "(~/two.tif, *, " : "(~/one.bmp, *, ";
    Log expected = {"L_FileInfo" + name + "0, 0)"};
    if (path == two) expected.push_back("L_FileInfo" + name + "1, page 1)");
    EXPECT_EQ(log(), expected);
  }
  ORVOIMAGEFILEINFO info{};
  for (const auto& [module, code] : {std::pair(-10, ORVO_ERR_BAD_FILE),
                                     {-9, ORVO_ERR_FAILURE},
                                     {0, ORVO_ERR_FAILURE},
                                     {2, ORVO_ERR_FAILURE}}) {
    state.answers["L_FileInfo"] = {static_cast<double>(module)};
    EXPECT_EQ(toolkit->ImageFileInfo(two.c_str(), &info), code) << module;
    EXPECT_EQ(info.width, 0);
  }
  bind({"L_FileInfo"});
  EXPECT_EQ(toolkit->ImageFileInfo(nullptr, &info), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ImageFileInfo(two.c_str(), nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ImageFileInfo(two.c_str(), &info), ORVO_ERR_NO_VENDOR);

  LTVERSIONINFO module{};
  module.size = sizeof module;
  ORVOVERSIONINFO version{"?", &module};
  bind();
  EXPECT_EQ(CallSlot(toolkit.get(), 18, &version), ORVO_OK);
  EXPECT_STREQ(version.version, "1.0");
  EXPECT_STRNE(module.version, "");
  version = {"?", nullptr};
  EXPECT_EQ(toolkit->GetVersion(&version), ORVO_ERR_NOT_SUPPORTED) << "the module's answer";
  EXPECT_EQ(toolkit->GetVersion(nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(log(), (Log{"L_VersionInfo(*)", "L_VersionInfo(0)"}));
  bind({"L_VersionInfo"});
  version = {"?", &module};
  EXPECT_EQ(toolkit->GetVersion(&version), ORVO_ERR_NO_VENDOR);
  EXPECT_STREQ(version.version, "1.0");
}

TEST_F(Files, ConversionFailsInOrderAndPutsThePreviousCallbackBack) {
  const std::string two = putTwoPages("two.tif");
  ASSERT_EQ(save("in.bmp"), ORVO_OK);
  const std::string in = at("in.bmp");
  const std::string out = at("out.png");
  for (const std::string entry : {"L_FileInfo", "L_SetStatusCallBack", "L_FileConvert"}) {
    bind({entry});
    EXPECT_EQ(toolkit->ConvertFile(nullptr, "x.png", 0, nullptr), ORVO_ERR_NO_VENDOR) << entry;
    EXPECT_EQ(log(), Log());
  }
  bind();
  EXPECT_EQ(toolkit->ConvertFile(nullptr, "x.gif", 0, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ConvertFile(in.c_str(), nullptr, 0, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ConvertFile(at("none").c_str(), out.c_str(), 0, nullptr), ORVO_ERR_BAD_FILE);
  log();
  EXPECT_EQ(toolkit->ConvertFile(two.c_str(), out.c_str(), 0, &Watch), ORVO_ERR_BAD_FORMAT);
  EXPECT_EQ(log(), Log{"L_FileInfo(~/two.tif, *, 0, 0)"});
  EXPECT_FALSE(has("out.png"));
  for (const StatusCallback before : {StatusCallback{&Earlier}, StatusCallback{nullptr}}) {
    for (const int module : {1, 0, -10, -100}) {
      install(before);
      state.answers["L_FileConvert"] = {static_cast<double>(module)};
      EXPECT_EQ(toolkit->ConvertFile(in.c_str(), out.c_str(), 5, &Watch),
                module == 1 ? ORVO_OK : ORVO_ERR_FAILURE);
      EXPECT_EQ(install(nullptr), before == nullptr ? &Watch : before);
    }
  }
  EXPECT_EQ(toolkit->ConvertFile(in.c_str(), out.c_str(), 5, &Watch), ORVO_OK);
  EXPECT_EQ(heard.back(), 100);
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->LoadFile(out.c_str(), &made), ORVO_OK);
  EXPECT_EQ(Difference(photo_.get(), OwnedDib(made).get()), "");
  log();
}

// --- PDF documents -------------------------------------------------------------------------------

Log Opening(const std::string& target, const std::string& title) {
  return {"PDF_new()",
          "PDF_open_file(*, " + target + ")",
          "PDF_set_info(*, Title, " + title + ")",
          "PDF_set_info(*, Creator, table_test)",
          "PDF_set_info(*, Author, )",
          "PDF_set_info(*, Subject, Created PDF)"};
}

Log Page(const std::string& image, const std::string& size, const std::string& scale) {
  return {"PDF_get_value(*, resx, " + image + ")",
          "PDF_get_value(*, resy, " + image + ")",
          "PDF_get_value(*, imageheight, " + image + ")",
          "PDF_get_value(*, imagewidth, " + image + ")",
          "PDF_begin_page(*, " + size + ")",
          "PDF_scale(*, " + scale + ")",
          "PDF_place_image(*, " + image + ", 0, 0, 1)",
          "PDF_close_image(*, " + image + ")",
          "PDF_end_page(*)"};
}

const Log kClosing = {"PDF_close(*)", "PDF_delete(*)"};

TEST_F(Files, PagesOfPdfAreAsLargeAsTheResolutionMakesThem) {
  struct Row {
    double x, y;
    const char* scale;
    const char* size;  // of 600 x 450 pixels
  };
  const Row rows[] = {{300, 150, "0.24, 0.48", "144, 216"}, {72, 72, "1, 1", "600, 450"},
                      {0, 0, "1, 1", "600, 450"},           {-1, -2, "1, 2", "600, 900"},
                      {-4, -2, "1, 0.5", "600, 225"},       {0, 300, "1, 1", "600, 450"},
                      {300, 0, "1, 1", "600, 450"},         {-1, 300, "1, 1", "600, 450"},
                      {300, -1, "1, 1", "600, 450"},        {-1, 0, "1, 1", "600, 450"},
                      {0, -1, "1, 1", "600, 450"},          {1, 0.5, "72, 144", "43200, 64800"}};
  ASSERT_EQ(save("a.b.png"), ORVO_OK);
  bind({"ltkrn13n.dll"});  // no other module is needed
  const std::string source = at("a.b.png");
  for (const Row& row : rows) {
    const std::string target = put("scan.1.pDf");
    state.answers = {{"PDF_get_value", {row.x, row.y, 450, 600}}};
    EXPECT_EQ(toolkit->ConvertFile(source.c_str(), target.c_str(), 5, &Watch), ORVO_OK);
    EXPECT_EQ(log(), Opening("~/scan.1.pDf", "scan.1") +
                         Log{"PDF_open_image_file(*, png, ~/a.b.png, , 0)"} +
                         Page("0", row.size, row.scale) + kClosing);
    EXPECT_NE(contents("scan.1.pDf"), "precious");
  }
}

TEST_F(Files, EveryPageOfATiffAndEachKindOfPictureGoesIntoADocument) {
  putTwoPages("two.TIF");
  ASSERT_EQ(save("in.jpg") + save("in.png"), 0);
  log();
  for (const auto& [name, type] : {std::pair("two.TIF", "tiff"), {"in.jpg", "jpeg"}, {"in.png", "png"}}) {
    EXPECT_EQ(toolkit->ConvertFile(at(name).c_str(), at("out.pdf").c_str(), 0, nullptr), ORVO_OK);
    EXPECT_EQ(contents("out.pdf").substr(0, 5), "%PDF-");
    Log opened;
    for (const std::string& line : log()) {
      if (line.starts_with("PDF_open_image")) opened.push_back(line);
    }
    const std::string open = std::string("PDF_open_image_file(*, ") + type + ", ~/" + name;
    EXPECT_EQ(opened, type == std::string("tiff")
                          ? (Log{open + ", page, 1)", open + ", page, 2)", open + ", page, 3)"})
                          : Log{open + ", , 0)"});
    fs::remove(at("out.pdf"));
  }
}

TEST_F(Files, PdfFailuresAndWhatTheyLeave) {
  ASSERT_EQ(save("x.png"), ORVO_OK);
  const std::string target = put("scan.pdf");
  const std::string source = at("x.png");
  for (const std::string absent : {"PdfLib.dll", "PDF_new", "PDF_scale", "PDF_delete"}) {
    bind({absent});
    EXPECT_EQ(toolkit->ConvertFile(source.c_str(), target.c_str(), 5, nullptr), ORVO_ERR_FAILURE);
    EXPECT_EQ(log(), Log());
  }
  bind();
  EXPECT_EQ(toolkit->ConvertFile(nullptr, target.c_str(), 5, nullptr), ORVO_ERR_BAD_ARGUMENT);
  for (const char* other : {"x.jpeg", "x.tiff", "x.bmp", "x.pdf", "x", "", "a.png/x"}) {
    EXPECT_EQ(toolkit->ConvertFile(other, target.c_str(), 5, nullptr), ORVO_ERR_FAILURE) << other;
  }
  EXPECT_EQ(log(), Log());
  EXPECT_TRUE(has("scan.pdf"));

  state.answers["PDF_open_file"] = {-1};
  EXPECT_EQ(toolkit->ConvertFile(source.c_str(), target.c_str(), 5, nullptr), ORVO_ERR_FAILURE);
  EXPECT_EQ(log(), (Log{"PDF_new()", "PDF_open_file(*, ~/scan.pdf)", "PDF_delete(*)"}));
  EXPECT_FALSE(has("scan.pdf"));
  for (const char* name : {"none.gif", "none.tif"}) {
    put("scan.pdf");
    EXPECT_EQ(toolkit->ConvertFile(at(name).c_str(), target.c_str(), 5, nullptr), ORVO_ERR_FAILURE);
    const std::string open = name[5] == 'g' ? "gif, ~/none.gif, , 0)" : "tiff, ~/none.tif, page, 1)";
    EXPECT_EQ(log(), Opening("~/scan.pdf", "scan") + Log{"PDF_open_image_file(*, " + open} + kClosing);
    EXPECT_FALSE(has("scan.pdf"));
  }
}

TEST_F(Files, SavingAsPdfGoesByWayOfATemporaryTiff) {
  const Log saved = {"L_ConvertFromDIB(0x0x0, *, *)",
                     "L_SaveBitmap(~/a.b$$$.tif, 8x5x24, 3, 0, 0, 0)"};
  const Log freed = {"L_FreeBitmap(8x5x24)"};
  put("a.b$$$.tif");
  put("a.b.Pdf");
  EXPECT_EQ(save("a.b.Pdf", 1), ORVO_OK);
  EXPECT_EQ(contents("a.b.Pdf").substr(0, 5), "%PDF-");
  const Log whole = log();
  EXPECT_EQ(Log(whole.begin(), whole.begin() + 8), saved + Opening("~/a.b.Pdf", "a.b"));
  EXPECT_EQ(whole.back(), freed.front());
  EXPECT_NE(std::find(whole.begin(), whole.end(), "PDF_begin_page(*, 1.92, 1.8)"), whole.end());

  state.answers["PDF_open_file"] = {-1};
  EXPECT_EQ(save("a.b.Pdf"), ORVO_ERR_FAILURE);
  EXPECT_EQ(log(), (saved + Log{"PDF_new()", "PDF_open_file(*, ~/a.b.Pdf)", "PDF_delete(*)"} + freed));
  EXPECT_FALSE(has("a.b.Pdf"));
  // The target is not touched before its pictures stand ready.
  put("a.b.Pdf");
  state.answers["L_SaveBitmap"] = {-6};
  EXPECT_EQ(save("a.b.Pdf"), ORVO_ERR_FILE_IO);
  EXPECT_EQ(log(), saved + freed);
  EXPECT_EQ(contents("a.b.Pdf"), "precious");
  EXPECT_FALSE(has("a.b$$$.tif"));
  bind({"PdfLib.dll"});
  EXPECT_EQ(save("a.b.Pdf"), ORVO_ERR_FAILURE);
  EXPECT_FALSE(has("a.b$$$.tif"));
  // The temporary name is three characters longer than the target's.
  bind();
  for (const std::size_t length : {255U, 256U, 257U}) {
    const std::string path = "/none/" + std::string(length - 10, 'x') + ".pdf";
    state.answers = {{"L_SaveBitmap", {-6}}};
    EXPECT_EQ(toolkit->SaveFile(photo_.get(), path.c_str(), 0, 0),
              length > 256 ? ORVO_ERR_BAD_ARGUMENT : ORVO_ERR_FILE_IO);
  }
  log();
}

}  // namespace
}  // namespace table
