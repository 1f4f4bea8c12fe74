// The entries that touch files: which format, quality and depth reach the file module, densities of
// JPEG files, what each failure leaves; and the road into PDF documents.
#include <unistd.h>

#include <array>
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
    Locked(photo_.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(200);
    const OwnedDib other = pictures::Noise(20, 10, 8, 1);
    EXPECT_EQ(save("in.bmp") + save("in.jpg") + save("in.png") + save("two.TIF"), ORVO_OK);
    EXPECT_EQ(toolkit->SaveFile(other.get(), at("two.TIF").c_str(), 1, 0), ORVO_OK);
    log();
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
  int save(const std::string& name, int flag = 0) {
    return toolkit->SaveFile(photo_.get(), at(name).c_str(), flag, 77);
  }
  int convert(const char* source, const std::string& target, StatusCallback watch = nullptr) {
    const std::string path = source == nullptr ? "" : at(source);
    return toolkit->ConvertFile(source == nullptr ? nullptr : path.c_str(), at(target).c_str(), 77,
                                watch);
  }

  OwnedDib photo_ = pictures::Noise(8, 5, 24, 1);

 private:
  std::string folder_ = testing::TempDir() + "table.jpg test " + std::to_string(getpid());
};

// --- Names ---------------------------------------------------------------------------------------

TEST_F(Files, ExtensionsChooseFormatAndQuality) {
  struct Row {
    const char* extension;
    int save;  // format, 0 where nothing is saved
    int convert;
    bool image;
  };
  const Row rows[] = {{"bmp", 6, 6, true},     {"jff", 6, 0, false},    {"jpg", 10, 10, true},
                      {"jpeg", 10, 10, true},  {"jpe", 0, 10, true},    {"cmp", 5, 5, true},
                      {"tif", 3, 87, true},    {"tiff", 3, 87, true},   {"pcx", 1, 1, true},
                      {"psd", 76, 76, true},   {"png", 75, 75, true},   {"ras", 55, 55, true},
                      {"pcd", 57, 57, true},   {"fpx", 82, 82, true},   {"wmf", 15, 15, true},
                      {"tga", 4, 4, true},     {"eps", 16, 0, false},   {"wpg", 54, 0, false},
                      {"pct", 56, 56, true},   {"jtf", 0, 0, true},     {"exf", 0, 0, true},
                      {"dcx", 0, 0, true},     {"gif", 0, 0, false},    {"bmpx", 0, 0, false},
                      {"bmp ", 0, 0, false},   {"", 0, 0, false},       {"png/x", 0, 0, false},
                      {"png\\x", 0, 0, false}, {"png.bak", 0, 0, false}};
  for (const Row& row : rows) {
    for (const int flag : {0, 1, -1}) {
      std::string name = std::string("x.y.") + row.extension;
      for (char& c : name) c = flag == 0 ? c : static_cast<char>(std::toupper(c));
      if (flag < 0) name.back() = static_cast<char>(std::tolower(name.back()));
      SCOPED_TRACE(name);
      const std::string call = row.save == 3 && flag != 0 ? "L_SaveFile" : "L_SaveBitmap";
      const int quality = row.save == 10 || row.save == 5 ? 77 : row.save == 82 ? 2 : 0;
      const std::string more = call == "L_SaveFile" ? ", 6, 0, 0, 0)" : ", 0)";
      state.answers = {{call, {1}}, {"L_FileConvert", {1}}};
      EXPECT_EQ(save(name, flag), row.save != 0 ? ORVO_OK : ORVO_ERR_BAD_FORMAT);
      const Log saved = {call + "(~/" + name + ", 8x5x24, " + std::to_string(row.save) + ", 0, " +
                         std::to_string(quality) + more};
      EXPECT_EQ(log(), Log{"L_ConvertFromDIB(0x0x0, *, *)"} + (row.save != 0 ? saved : Log()) +
                           Log{"L_FreeBitmap(8x5x24)"});
      EXPECT_EQ(CallSlot(toolkit.get(), 57, at("in.bmp").c_str(), at(name).c_str(), 77,
                         StatusCallback{nullptr}),
                row.convert != 0 ? ORVO_OK : ORVO_ERR_BAD_FORMAT);
      const Log converted = {"L_FileInfo(~/in.bmp, *, 0, 0)",
                             "L_FileConvert(~/in.bmp, ~/" + name + ", " +
                                 std::to_string(row.convert) + ", 0, 0, 24, 77, 0, 0, 0)"};
      EXPECT_EQ(log(), row.convert != 0 ? converted : Log());
      EXPECT_EQ(CallSlot(toolkit.get(), 51, name.c_str()), row.image ? 1 : 0);
    }
  }
  EXPECT_EQ(toolkit->IsImageFileName(nullptr) + toolkit->IsImageFileName("bmp"), 0);
  EXPECT_EQ(toolkit->IsImageFileName(".png"), 1);
}

TEST_F(Files, ExtensionsAreCopiedOutInTwoCalls) {
  const std::string expected(
      "BMP\0TIF\0TIFF\0JPG\0JPE\0JPEG\0CMP\0PCX\0PSD\0PNG\0RAS\0PCD\0FPX\0WMF\0TGA\0PCT\0\0", 67);
  for (const std::uint32_t given : {0U, 66U, 67U, 68U, 1000U}) {
    for (const bool whole : {false, true}) {
      std::string buffer(1000, '#');
      int count = 0;
      std::uint32_t size = given;
      const bool fits = whole && given >= 67;
      EXPECT_EQ(CallSlot(toolkit.get(), 53, whole ? &count : nullptr,
                         whole ? buffer.data() : nullptr, &size),
                fits ? ORVO_OK : ORVO_ERR_BUFFER_TOO_SMALL);
      EXPECT_EQ(size, 67U);
      EXPECT_EQ(count, whole ? 16 : 0);
      EXPECT_EQ(buffer, fits ? expected + std::string(933, '#') : std::string(1000, '#'));
      EXPECT_EQ(toolkit->GetFileExtensions(&count, buffer.data(), nullptr),
                ORVO_ERR_BUFFER_TOO_SMALL);
    }
  }
}

// --- Loading and saving --------------------------------------------------------------------------

TEST_F(Files, SavingFailsInOrder) {
  for (const char* entry : {"L_SaveBitmap", "L_SaveFile", "L_FreeBitmap", ""}) {
    bind({entry});
    EXPECT_EQ(toolkit->SaveFile(nullptr, nullptr, 0, 0), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(toolkit->SaveFile(photo_.get(), nullptr, 0, 0),
              *entry != '\0' ? ORVO_ERR_NO_VENDOR : ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(log(), Log());
  }
  state.answers = {{"L_SaveBitmap", {-6}}, {"L_SaveFile", {-12}}};
  EXPECT_EQ(CallSlot(toolkit.get(), 52, photo_.get(), "x.tif", 0, 0), ORVO_ERR_FILE_IO);
  EXPECT_EQ(CallSlot(toolkit.get(), 52, photo_.get(), "x.tif", 1, 0), ORVO_ERR_BAD_FORMAT);
}

// Loading and making a thumbnail: the older block goes only when the new one is there.
TEST_F(Files, LoadedImagesReplaceTheOlderBlock) {
  const std::string path = at("in.png");
  const Log entries[] = {{"L_LoadBitmap", "L_ConvertToDIB", "L_FreeBitmap", "ltfil13n.dll"},
                         {"L_CreateThumbnailFromFile", "L_ChangeToDIB", "ltimg13n.dll"}};
  const Log calls[] = {
      {"L_LoadBitmap(~/in.png, 0x0x0, 0, 1, 0, 0)", "L_ConvertToDIB(8x5x24)",
       "L_FreeBitmap(8x5x24)"},
      {"L_CreateThumbnailFromFile(~/in.png, 0x0x0, 16 12 0 0 1 1 16777215 0 0, 0, 0, 0, 0)",
       "L_ChangeToDIB(16x12x24)"}};
  for (const int kind : {0, 1}) {
    const auto load = [&](const char* source, DibHandle* result) {
      return kind == 0 ? CallSlot(toolkit.get(), 45, source, result)
                       : CallSlot(toolkit.get(), 48, source, result, 16, 12);
    };
    OwnedDib old = pictures::Noise(7, 5, 8, 1);
    DibHandle made = old.get();
    for (const std::string& entry : entries[kind]) {
      bind({entry});
      EXPECT_EQ(load(nullptr, &made), ORVO_ERR_NO_VENDOR);
    }
    bind();
    EXPECT_EQ(load(nullptr, &made), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(load(path.c_str(), nullptr), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(log(), Log());
    EXPECT_EQ(load(at("none.png").c_str(), &made), ORVO_ERR_FILE_NOT_FOUND);
    EXPECT_EQ(log().size(), 1U);
    EXPECT_TRUE(made == old.get() && IsAlive(made));
    for (const DibHandle first : {old.release(), DibHandle{nullptr}}) {
      made = first;
      EXPECT_EQ(load(path.c_str(), &made), ORVO_OK);
      EXPECT_FALSE(IsAlive(first));
      EXPECT_EQ(Difference(photo_.get(), made) == "", kind == 0);
      EXPECT_EQ(Measures(made), kind == 0 ? "8x5x24" : "16x12x24");
      GlobalFree(std::exchange(made, nullptr));
      EXPECT_EQ(log(), calls[kind]);
    }
    state.answers = {{entries[kind][1], {0}}};  // a bitmap that gives no block
    EXPECT_EQ(load(path.c_str(), &made), kind == 0 ? ORVO_ERR_NO_MEMORY : ORVO_ERR_FAILURE);
    EXPECT_EQ(made, nullptr);
    log();
  }
}

TEST_F(Files, JpegDensitiesWithoutAUnitAreMultiplesOfSeventyTwo) {
  const std::string plain = contents("in.jpg");
  const std::string jfif("JFIF\0", 5);
  // Name, identifier, version and unit, densities, dots per inch as loaded.
  const std::tuple<const char*, std::string, std::array<int, 3>, std::array<int, 2>,
                   std::array<int, 2>>
      rows[] = {{"x.jpg", jfif, {1, 1, 0}, {1, 1}, {72, 72}},
                {"a.png.jpeg", jfif, {1, 1, 0}, {3, 2}, {216, 144}},
                {"x.jpg", jfif, {1, 1, 0}, {300, 40000}, {21600, 2880000}},
                {"x.jpg", jfif, {1, 1, 0}, {40255, 200}, {2898360, 14400}},
                {"x.JPG", jfif, {1, 1, 0}, {3, 2}, {0, 0}},
                {"x.Jpeg", jfif, {1, 1, 0}, {3, 2}, {0, 0}},
                {"x.jpe", jfif, {1, 1, 0}, {3, 2}, {0, 0}},
                {"jpg", jfif, {1, 1, 0}, {3, 2}, {0, 0}},
                {"x.jpg", jfif, {1, 2, 0}, {3, 2}, {0, 0}},
                {"x.jpg", jfif, {2, 1, 0}, {3, 2}, {0, 0}},
                {"x.jpg", jfif, {1, 1, 1}, {3, 2}, {3, 2}},
                {"x.jpg", jfif, {1, 1, 2}, {3, 2}, {8, 5}},
                {"x.jpg", "JFIFX", {1, 1, 0}, {3, 2}, {0, 0}},
                {"x.jpg", std::string("JFXF\0", 5), {1, 1, 0}, {3, 2}, {0, 0}}};
  for (const auto& [name, identifier, about, density, dots] : rows) {
    std::string bytes = plain.substr(0, 6) + identifier;
    for (const int byte :
         {about[0], about[1], about[2], density[0] >> 8, density[0], density[1] >> 8, density[1]}) {
      bytes += static_cast<char>(byte);
    }
    DibHandle made = nullptr;
    ASSERT_EQ(toolkit->LoadFile(put(name, bytes + plain.substr(18)).c_str(), &made), ORVO_OK);
    const OwnedDib image(made);
    EXPECT_EQ(orvo::DotsPerInch(Locked(made).header()->biXPelsPerMeter), dots[0]) << name;
    EXPECT_EQ(orvo::DotsPerInch(Locked(made).header()->biYPelsPerMeter), dots[1]) << name;
  }
  log();
}

// --- Information and conversion ------------------------------------------------------------------

TEST_F(Files, InformationIsThatOfTheFirstPage) {
  ORVOIMAGEFILEINFO info{};
  for (const std::string name : {"in.bmp", "two.TIF"}) {
    info = {};
    EXPECT_EQ(CallSlot(toolkit.get(), 56, at(name).c_str(), &info), ORVO_OK);
    EXPECT_EQ(std::exchange(info.sizeInMemory, 0), 40 + 5 * 24);
    const ORVOIMAGEFILEINFO expected = {8,   5,   24, 1,
                                        300, 200, 0,  static_cast<int>(fs::file_size(at(name)))};
    EXPECT_EQ(std::memcmp(&info, &expected, sizeof info), 0);
    Log calls = {"L_FileInfo(~/" + name + ", *, 0, 0)"};
    if (name == "two.TIF") calls.emplace_back("L_FileInfo(~/two.TIF, *, 1, 8 1)");
    EXPECT_EQ(log(), calls);
  }
  info = {};
  for (const int module : {-10, -9, 0, 2}) {
    state.answers["L_FileInfo"] = {static_cast<double>(module)};
    EXPECT_EQ(toolkit->ImageFileInfo("x", &info),
              module == -10 ? ORVO_ERR_BAD_FILE : ORVO_ERR_FAILURE);
    EXPECT_EQ(info.width, 0);
  }
  bind({"L_FileInfo"});
  EXPECT_EQ(toolkit->ImageFileInfo(nullptr, &info), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ImageFileInfo("x", nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ImageFileInfo("x", &info), ORVO_ERR_NO_VENDOR);
}

TEST_F(Files, ConversionFailsInOrderAndPutsThePreviousCallbackBack) {
  for (const char* entry : {"L_FileInfo", "L_SetStatusCallBack", "L_FileConvert"}) {
    bind({entry});
    EXPECT_EQ(convert(nullptr, "x.png"), ORVO_ERR_NO_VENDOR) << entry;
    EXPECT_EQ(log(), Log());
  }
  bind();
  EXPECT_EQ(convert(nullptr, "x.gif"), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ConvertFile("x", nullptr, 0, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(convert("none", "out.png"), ORVO_ERR_BAD_FILE);
  log();
  EXPECT_EQ(convert("two.TIF", "out.png", &Watch), ORVO_ERR_BAD_FORMAT);
  EXPECT_EQ(log(), Log{"L_FileInfo(~/two.TIF, *, 0, 0)"});
  EXPECT_FALSE(has("out.png"));
  for (const StatusCallback before : {StatusCallback{&Earlier}, StatusCallback{nullptr}}) {
    for (const int module : {1, 0, -10, -100}) {
      install(before);
      state.answers["L_FileConvert"] = {static_cast<double>(module)};
      EXPECT_EQ(convert("in.bmp", "out.png", &Watch), module == 1 ? ORVO_OK : ORVO_ERR_FAILURE);
      EXPECT_EQ(install(nullptr), before == nullptr ? &Watch : before);
    }
  }
  EXPECT_EQ(convert("in.bmp", "out.png", &Watch), ORVO_OK);
  EXPECT_EQ(heard.back(), 100);
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->LoadFile(at("out.png").c_str(), &made), ORVO_OK);
  EXPECT_EQ(Difference(photo_.get(), OwnedDib(made).get()), "");
  log();
}

// --- PDF documents -------------------------------------------------------------------------------

Log Opening(const std::string& target, const std::string& title) {
  return {"PDF_new()",
          "PDF_open_file(*, ~/" + target + ")",
          "PDF_set_info(*, Title, " + title + ")",
          "PDF_set_info(*, Creator, table_test.run)",
          "PDF_set_info(*, Author, )",
          "PDF_set_info(*, Subject, Created PDF)"};
}
const Log kClosing = {"PDF_close(*)", "PDF_delete(*)"};
Log NotOpened(const std::string& target) {
  return {"PDF_new()", "PDF_open_file(*, ~/" + target + ")", "PDF_delete(*)"};
}

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
  bind({"ltkrn13n.dll"});  // no other module is needed
  for (const auto& [name, type] :
       {std::pair("in.jpg", "jpeg"), {"in.png", "png"}, {"two.TIF", "tiff"}}) {
    for (const Row& row : rows) {
      put("scan.1.pDf");
      state.answers = {{"PDF_get_value", {row.x, row.y, 450, 600, row.x, row.y, 450, 600}}};
      EXPECT_EQ(convert(name, "scan.1.pDf", &Watch), ORVO_OK);
      Log expected = Opening("scan.1.pDf", "scan.1");
      const bool tiff = *name == 't';
      for (int page = 0; page < (tiff ? 3 : 1); ++page) {
        const std::string image = std::to_string(page);
        expected.push_back(std::string("PDF_open_image_file(*, ") + type + ", ~/" + name +
                           (tiff ? ", page, " + std::to_string(page + 1) : ", , 0") + ")");
        if (page == 2) break;
        for (const char* key : {"resx", "resy", "imageheight", "imagewidth"}) {
          expected.push_back(std::string("PDF_get_value(*, ") + key + ", " + image + ")");
        }
        expected = expected + Log{std::string("PDF_begin_page(*, ") + row.size + ")",
                                  std::string("PDF_scale(*, ") + row.scale + ")",
                                  "PDF_place_image(*, " + image + ", 0, 0, 1)",
                                  "PDF_close_image(*, " + image + ")", "PDF_end_page(*)"};
      }
      EXPECT_EQ(log(), expected + kClosing);
      EXPECT_TRUE(contents("scan.1.pDf").starts_with("%PDF-"));
    }
  }
}

TEST_F(Files, PdfFailuresAndWhatTheyLeave) {
  put("scan.pdf");
  for (const std::string& absent :
       Log(watched::EntryNames().begin(), watched::EntryNames().begin() + 12) + Log{"PdfLib.dll"}) {
    bind({absent});
    EXPECT_EQ(convert("in.png", "scan.pdf"), ORVO_ERR_FAILURE) << absent;
  }
  bind();
  EXPECT_EQ(convert(nullptr, "scan.pdf"), ORVO_ERR_BAD_ARGUMENT);
  for (const char* other : {"x.jpeg", "x.tiff", "x.bmp", "x.pdf", "x", "", "a.png/x"}) {
    EXPECT_EQ(convert(other, "scan.pdf"), ORVO_ERR_FAILURE) << other;
  }
  EXPECT_EQ(log(), Log());
  EXPECT_TRUE(has("scan.pdf"));

  state.answers["PDF_open_file"] = {-1};
  EXPECT_EQ(convert("in.png", "scan.pdf"), ORVO_ERR_FAILURE);
  EXPECT_EQ(log(), NotOpened("scan.pdf"));
  EXPECT_FALSE(has("scan.pdf"));
  for (const std::string name : {"none.gif", "none.tif"}) {
    put("scan.pdf");
    EXPECT_EQ(convert(name.c_str(), "scan.pdf"), ORVO_ERR_FAILURE);
    const std::string open =
        name == "none.gif" ? "gif, ~/none.gif, , 0)" : "tiff, ~/none.tif, page, 1)";
    EXPECT_EQ(log(),
              Opening("scan.pdf", "scan") + Log{"PDF_open_image_file(*, " + open} + kClosing);
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
  EXPECT_TRUE(contents("a.b.Pdf").starts_with("%PDF-"));
  const Log whole = log();
  EXPECT_EQ(Log(whole.begin(), whole.begin() + 8), saved + Opening("a.b.Pdf", "a.b"));
  EXPECT_EQ(whole[13], "PDF_begin_page(*, 1.92, 1.8)");
  EXPECT_EQ(whole.back(), freed.front());

  state.answers["PDF_open_file"] = {-1};
  EXPECT_EQ(save("a.b.Pdf"), ORVO_ERR_FAILURE);
  EXPECT_EQ(log(), saved + NotOpened("a.b.Pdf") + freed);
  EXPECT_FALSE(has("a.b.Pdf"));
  // The target is not touched before its pictures stand ready.
  put("a.b.Pdf");
  state.answers["L_SaveBitmap"] = {-6};
  EXPECT_EQ(save("a.b.Pdf"), ORVO_ERR_FILE_IO);
  EXPECT_EQ(log(), saved + freed);
  EXPECT_EQ(contents("a.b.Pdf"), "precious");
  EXPECT_FALSE(has("a.b$$$.tif"));
  // The temporary name is three characters longer than the target's.
  for (const std::size_t length : {256U, 257U}) {
    const std::string path = "/none/" + std::string(length - 10, 'x') + ".pdf";
    state.answers = {{"L_SaveBitmap", {-6}}};
    EXPECT_EQ(toolkit->SaveFile(photo_.get(), path.c_str(), 0, 0),
              length > 256 ? ORVO_ERR_BAD_ARGUMENT : ORVO_ERR_FILE_IO);
  }
  state.answers.clear();
  bind({"PdfLib.dll"});
  EXPECT_EQ(save("a.b.Pdf"), ORVO_ERR_FAILURE);
  EXPECT_FALSE(has("a.b$$$.tif"));
}

}  // namespace
}  // namespace table
