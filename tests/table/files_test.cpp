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
  Sum sum;
  for (const std::string extension :
       {"bmp", "jff", "jpg", "jpeg", "jpe",  "cmp", "tif",   "tiff",   "pcx",    "psd",
        "png", "ras", "pcd", "fpx",  "wmf",  "tga", "eps",   "wpg",    "pct",    "jtf",
        "exf", "dcx", "gif", "bmpx", "bmp ", "",    "png/x", "png\\x", "png.bak"}) {
    for (const int flag : {0, 1, -1}) {
      std::string name = "x.y." + extension;
      for (char& c : name) c = flag == 0 ? c : static_cast<char>(std::toupper(c));
      if (flag < 0) name.back() = static_cast<char>(std::tolower(name.back()));
      state.answers = {{"L_SaveBitmap", {1}}, {"L_SaveFile", {1}}, {"L_FileConvert", {1}}};
      sum << save(name, flag) << log() << toolkit->IsImageFileName(name.c_str());
      sum << CallSlot(toolkit.get(), 57, at("in.bmp").c_str(), at(name).c_str(), 77,
                      StatusCallback{nullptr})
          << log() << CallSlot(toolkit.get(), 51, name.c_str());
    }
  }
  EXPECT_EQ(sum.hex(), "4206bb9c");
  EXPECT_EQ(save("x.jpeg"), ORVO_OK);
  EXPECT_EQ(log()[1], "L_SaveBitmap(~/x.jpeg, 8x5x24, 10, 0, 77, 0)");
  EXPECT_EQ(toolkit->IsImageFileName(nullptr) + toolkit->IsImageFileName("bmp"), 0);
  EXPECT_EQ(toolkit->IsImageFileName(".png"), 1);
}

TEST_F(Files, ExtensionsAreCopiedOutInTwoCalls) {
  Sum sum;
  for (const std::uint32_t given : {0U, 66U, 67U, 68U, 1000U}) {
    for (const bool whole : {false, true}) {
      std::string buffer(1000, '#');
      int count = 0;
      std::uint32_t size = given;
      sum << CallSlot(toolkit.get(), 53, whole ? &count : nullptr, whole ? buffer.data() : nullptr,
                      &size)
          << size << count << buffer << toolkit->GetFileExtensions(&count, buffer.data(), nullptr);
      EXPECT_EQ(buffer.starts_with("BMP"), whole && given >= 67);
    }
  }
  EXPECT_EQ(sum.hex(), "2ea3a5db");
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
  Sum sum;
  for (const int kind : {0, 1}) {
    const auto load = [&](const char* source, DibHandle* result) {
      sum << (kind == 0 ? CallSlot(toolkit.get(), 45, source, result)
                        : CallSlot(toolkit.get(), 48, source, result, 16, 12))
          << log();
    };
    state.answers.clear();
    OwnedDib old = pictures::Noise(7, 5, 8, 1);
    DibHandle made = old.get();
    for (const char* entry : {"L_LoadBitmap", "L_ConvertToDIB", "L_FreeBitmap", "ltfil13n.dll",
                              "L_CreateThumbnailFromFile", "L_ChangeToDIB", "ltimg13n.dll"}) {
      bind({entry});
      load(nullptr, &made);
    }
    bind();
    load(nullptr, &made);
    load(path.c_str(), nullptr);
    load(at("none.png").c_str(), &made);
    EXPECT_TRUE(made == old.get() && IsAlive(made));
    for (const DibHandle first : {old.release(), DibHandle{nullptr}}) {
      made = first;
      load(path.c_str(), &made);
      EXPECT_FALSE(IsAlive(first));
      EXPECT_EQ(Difference(photo_.get(), made) == "", kind == 0);
      EXPECT_EQ(Measures(made), kind == 0 ? "8x5x24" : "16x12x24");
      sum << made;
      GlobalFree(std::exchange(made, nullptr));
    }
    // A bitmap that gives no block.
    state.answers = {{"L_ConvertToDIB", {0}}, {"L_ChangeToDIB", {0}}};
    load(path.c_str(), &made);
    EXPECT_EQ(made, nullptr);
  }
  EXPECT_EQ(sum.hex(), "3a8a67ea");
}

TEST_F(Files, ResultsChainInOneExpression) {
  OwnedDib photo;
  OwnedDib sharp;
  EXPECT_TRUE(toolkit->LoadFile(at("in.png").c_str(), photo.receive()) == ORVO_OK &&
              toolkit->SharpnessAdjust(photo.get(), sharp.receive(photo), 7) == ORVO_OK);
  EXPECT_NE(Difference(photo.get(), sharp.get()), "");
  log();
}

TEST_F(Files, JpegDensitiesWithoutAUnitAreMultiplesOfSeventyTwo) {
  const std::string plain = contents("in.jpg");
  Sum sum;
  for (const char* name : {"x.jpg", "a.png.jpeg", "x.JPG", "x.Jpeg", "x.jpe", "jpg"}) {
    for (const char* identifier : {"JFIF", "JFIFX", "JFXF"}) {
      // Version, unit, densities.
      for (const auto& about :
           std::initializer_list<std::array<std::uint8_t, 7>>{{1, 1, 0, 0, 1, 0, 1},
                                                              {1, 1, 0, 0, 3, 0, 2},
                                                              {1, 1, 0, 1, 44, 156, 64},
                                                              {1, 1, 0, 157, 63, 0, 200},
                                                              {1, 2, 0, 0, 3, 0, 2},
                                                              {2, 1, 0, 0, 3, 0, 2},
                                                              {1, 1, 1, 0, 3, 0, 2},
                                                              {1, 1, 2, 0, 3, 0, 2}}) {
        std::string bytes = plain;
        std::copy_n(identifier, 5, bytes.begin() + 6);
        std::copy(about.begin(), about.end(), bytes.begin() + 11);
        DibHandle made = nullptr;
        sum << toolkit->LoadFile(put(name, bytes).c_str(), &made);
        const OwnedDib image(made);
        const BITMAPINFOHEADER& header = *Locked(made).header();
        sum << header.biXPelsPerMeter << header.biYPelsPerMeter;
      }
    }
  }
  EXPECT_EQ(sum.hex(), "605c6f45");
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
  Sum sum;
  for (const int module : {-10, -9, 0, 2}) {
    state.answers["L_FileInfo"] = {static_cast<double>(module)};
    info.width = 0;
    sum << toolkit->ImageFileInfo("x", &info) << info.width;
  }
  bind({"L_FileInfo"});
  sum << toolkit->ImageFileInfo(nullptr, &info) << toolkit->ImageFileInfo("x", nullptr)
      << toolkit->ImageFileInfo("x", &info);
  EXPECT_EQ(sum.hex(), "696ab9c2");
}

TEST_F(Files, ConversionFailsInOrderAndPutsThePreviousCallbackBack) {
  Sum sum;
  for (const char* entry : {"L_FileInfo", "L_SetStatusCallBack", "L_FileConvert", ""}) {
    bind({entry});
    sum << convert(nullptr, "x.png") << toolkit->ConvertFile("x", nullptr, 0, nullptr);
    sum << convert("none", "out.png") << convert("two.TIF", "out.png", &Watch) << log();
    EXPECT_FALSE(has("out.png"));
  }
  for (const StatusCallback before : {StatusCallback{&Earlier}, StatusCallback{nullptr}}) {
    for (const int module : {0, -10, -100, 1}) {
      install(before);
      state.answers["L_FileConvert"] = {static_cast<double>(module)};
      sum << convert("in.bmp", "out.png", &Watch) << log();
      EXPECT_EQ(install(nullptr), before == nullptr ? &Watch : before);
    }
  }
  EXPECT_EQ(sum.hex(), "3c498ae");
  EXPECT_EQ(convert("in.bmp", "out.png", &Watch), ORVO_OK);
  EXPECT_EQ(heard.back(), 100);
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->LoadFile(at("out.png").c_str(), &made), ORVO_OK);
  EXPECT_EQ(Difference(photo_.get(), OwnedDib(made).get()), "");
  log();
}

// --- PDF documents -------------------------------------------------------------------------------

// The page's size and scale follow the picture's resolution; negative ones tell its proportions.
TEST_F(Files, PagesOfPdfAreAsLargeAsTheResolutionMakesThem) {
  bind({"ltkrn13n.dll"});  // no other module is needed
  Sum sum;
  for (const char* name : {"in.jpg", "in.png", "two.TIF"}) {
    for (const auto& [x, y] : std::initializer_list<std::array<double, 2>>{{300, 150},
                                                                           {72, 72},
                                                                           {0, 0},
                                                                           {-1, -2},
                                                                           {-4, -2},
                                                                           {0, 300},
                                                                           {300, 0},
                                                                           {-1, 300},
                                                                           {300, -1},
                                                                           {-1, 0},
                                                                           {0, -1},
                                                                           {1, 0.5}}) {
      put("scan.1.pDf");
      state.answers = {{"PDF_get_value", {x, y, 450, 600, x, y, 450, 600}}};
      EXPECT_EQ(convert(name, "scan.1.pDf", &Watch), ORVO_OK);
      EXPECT_TRUE(contents("scan.1.pDf").starts_with("%PDF-"));
      const Log calls = log();
      EXPECT_TRUE(x != 300 || y != 150 || calls[11] == "PDF_begin_page(*, 144, 216)") << calls[11];
      sum << calls;
    }
  }
  EXPECT_EQ(sum.hex(), "9ed9f46d");
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

  Sum sum;
  for (const char* name : {"in.png", "none.gif", "none.tif"}) {
    put("scan.pdf");
    if (name == std::string("in.png")) state.answers["PDF_open_file"] = {-1};
    EXPECT_EQ(convert(name, "scan.pdf"), ORVO_ERR_FAILURE);
    EXPECT_FALSE(has("scan.pdf"));
    sum << log();
  }
  EXPECT_EQ(sum.hex(), "7a18c490");
}

TEST_F(Files, SavingAsPdfGoesByWayOfATemporaryTiff) {
  Sum sum;
  put("a.b$$$.tif");
  // The target is not touched before its pictures stand ready.
  for (const auto& [entry, code] :
       std::initializer_list<std::pair<const char*, int>>{{"", ORVO_OK},
                                                          {"PDF_open_file", ORVO_ERR_FAILURE},
                                                          {"L_SaveBitmap", ORVO_ERR_FILE_IO}}) {
    put("a.b.Pdf");
    state.answers[entry] = {-6};
    EXPECT_EQ(save("a.b.Pdf", 1), code);
    EXPECT_EQ(contents("a.b.Pdf").substr(0, 5), code == ORVO_OK            ? "%PDF-"
                                                : code == ORVO_ERR_FILE_IO ? "preci"
                                                                           : "");
    EXPECT_EQ(has("a.b.Pdf"), code != ORVO_ERR_FAILURE);
    EXPECT_FALSE(has("a.b$$$.tif"));
    sum << log();
  }
  EXPECT_EQ(sum.hex(), "6d88d9f2");
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
