// The methods that touch files: which format, quality and depth reach the file module, the density
// rule for JPEG files, and what each failure leaves.
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>

#include "binding_fixture.h"

namespace binding {
namespace {

// A name in lower, upper and mixed case.
std::array<std::string, 3> InAnyCase(const std::string& extension) {
  std::string upper = extension;
  std::string mixed = extension;
  for (char& c : upper) c = static_cast<char>(std::toupper(c));
  mixed.back() = upper.back();
  return {extension, upper, mixed};
}

// A folder that is removed again; its name holds a dot and a blank.
class Folder {
 public:
  Folder() : path_(testing::TempDir() + "binding.jpg test " + std::to_string(getpid()) + "/") {
    std::filesystem::create_directories(path_);
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path_ + name, std::ios::binary) << bytes;
    return path_ + name;
  }

 private:
  std::string path_;
};

class Files : public BindingTest {};

// --- Saving --------------------------------------------------------------------------------------

struct SaveRow {
  std::string name;       // the extension without its dot
  std::string arguments;  // after path and bitmap, quality 77 asked
  bool takesPages = false;
};

class SaveTest : public BindingRows<SaveRow> {};

TEST_P(SaveTest, ExtensionChoosesFormatAndQuality) {
  const SaveRow& row = GetParam();
  const auto tools = Bind();
  const orvo::OwnedDib photo = Photo(8);
  const orvo::OwnedDib original = pictures::CopyOf(photo.get());
  for (const int flag : {0, 1, -1}) {
    for (const std::string& extension : InAnyCase(row.name)) {
      doubles::TheState().bitmaps.clear();
      const std::string path = "/tmp/a.b/scan." + extension;
      const std::string save = row.takesPages && flag != 0
                                   ? "L_SaveFile(" + path + ", b1, 3, 0, 0, 6, 0, 0, 0)"
                                   : "L_SaveBitmap(" + path + ", b1, " + row.arguments + ")";
      EXPECT_EQ(tools->LTSaveFile(photo.get(), path.c_str(), flag, 77), ORVO_OK);
      EXPECT_EQ(TakeLog(),
                (Log{"L_ConvertFromDIB(b1, 7x5x8, +1064, zeroed)", save, "L_FreeBitmap(b1)"}));
    }
  }
  EXPECT_EQ(pictures::Difference(original.get(), photo.get()), "");
}

const SaveRow kSaves[] = {
    {"bmp", "6, 0, 0, 0"},        {"jff", "6, 0, 0, 0"},  {"jpg", "10, 0, 77, 0"},
    {"jpeg", "10, 0, 77, 0"},     {"cmp", "5, 0, 77, 0"}, {"tif", "3, 0, 0, 0", true},
    {"tiff", "3, 0, 0, 0", true}, {"pcx", "1, 0, 0, 0"},  {"psd", "76, 0, 0, 0"},
    {"png", "75, 0, 0, 0"},       {"ras", "55, 0, 0, 0"}, {"pcd", "57, 0, 0, 0"},
    {"fpx", "82, 0, 2, 0"},       {"wmf", "15, 0, 0, 0"}, {"tga", "4, 0, 0, 0"},
    {"eps", "16, 0, 0, 0"},       {"wpg", "54, 0, 0, 0"}, {"pct", "56, 0, 0, 0"},
};
INSTANTIATE_TEST_SUITE_P(Extensions, SaveTest, testing::ValuesIn(kSaves), RowName());

TEST_F(Files, NamesOutsideTheSaveTableWriteNothing) {
  const auto tools = Bind();
  const orvo::OwnedDib photo = Photo(24);
  for (const char* path : {"x.jpe", "x.gif", "x", "a.png/x", "a.png\\x", "x.png.bak", ".", ""}) {
    EXPECT_EQ(tools->LTSaveFile(photo.get(), path, 0, 0), ORVO_ERR_BAD_FORMAT) << path;
    for (const std::string& call : TakeLog()) EXPECT_NE(call.substr(0, 6), "L_Save") << path;
  }
}

TEST_F(Files, SaveFailuresInOrder) {
  const orvo::OwnedDib photo = Photo(24);
  for (const char* entry : {"L_SaveBitmap", "L_SaveFile", "L_FreeBitmap"}) {
    const auto tools = Bind({entry});
    EXPECT_EQ(tools->LTSaveFile(nullptr, "x.png", 0, 0), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(tools->LTSaveFile(photo.get(), "x.png", 0, 0), ORVO_ERR_NO_VENDOR);
    EXPECT_EQ(TakeLog(), Log());
  }
  const auto tools = Bind();
  doubles::TheState().answers["L_SaveBitmap"] = {kModuleWriteFailed};
  doubles::TheState().answers["L_SaveFile"] = {kFileFormatNotWritten};
  EXPECT_EQ(tools->LTSaveFile(photo.get(), "x.tif", 0, 0), ORVO_ERR_FILE_IO);
  EXPECT_EQ(tools->LTSaveFile(photo.get(), "x.tif", 1, 0), ORVO_ERR_BAD_FORMAT);
}

// --- Loading -------------------------------------------------------------------------------------

struct DensityRow {
  std::string name;
  std::string fileName;
  std::string jfif;  // bytes 6 to 17 of the file
  int x = 300;       // dots per inch of the loaded image; 300 by 200 is the module's own answer
  int y = 200;
};

class DensityTest : public BindingRows<DensityRow> {};

TEST_P(DensityTest, LoadedResolution) {
  const DensityRow& row = GetParam();
  const Folder folder;
  const std::string path =
      folder.write(row.fileName, std::string("\xFF\xD8\xFF\xE0\0\x10", 6) + row.jfif);
  const auto tools = Bind();
  orvo::OwnedDib image;
  ASSERT_EQ(tools->LTLoadFile(path.c_str(), image.receive()), ORVO_OK);
  EXPECT_EQ(TakeLog(), (Log{"L_LoadBitmap(" + path + ", b1, 0, 1, 0, 0)", "L_ConvertToDIB(b1)",
                            "L_FreeBitmap(b1)"}));
  const pictures::Locked locked(image.get());
  EXPECT_EQ(locked.header()->biXPelsPerMeter, orvo::PixelsPerMetre(row.x));
  EXPECT_EQ(locked.header()->biYPelsPerMeter, orvo::PixelsPerMetre(row.y));
}

std::string Jfif(int minor, int units, int x, int y) {
  std::string text("JFIF\0\x01", 6);
  for (const int byte : {minor, units, x >> 8, x & 255, y >> 8, y & 255}) {
    text += static_cast<char>(byte);
  }
  return text;
}

const DensityRow kDensities[] = {
    {"one_by_one", "x.jpg", Jfif(1, 0, 1, 1), 72, 72},
    {"three_by_two", "x.jpg", Jfif(1, 0, 3, 2), 216, 144},
    {"long_extension", "x.jpeg", Jfif(1, 0, 3, 2), 216, 144},
    {"two_bytes_big_endian", "x.jpg", Jfif(1, 0, 300, 200), 21600, 14400},
    {"bytes_are_unsigned", "x.jpg", Jfif(1, 0, 40000, 255), 2880000, 18360},
    {"only_the_last_dot_counts", "a.png.jpg", Jfif(1, 0, 1, 1), 72, 72},
    {"upper_case_name", "x.JPG", Jfif(1, 0, 1, 1)},
    {"mixed_case_name", "x.Jpeg", Jfif(1, 0, 1, 1)},
    {"other_extension", "x.jpe", Jfif(1, 0, 1, 1)},
    {"no_extension_under_a_folder_with_one", "jpg", Jfif(1, 0, 1, 1)},
    {"version_1_02", "x.jpg", Jfif(2, 0, 1, 1)},
    {"version_2_01", "x.jpg", "JFIF" + std::string("\0\x02\x01\0\0\x01\0\x01", 8)},
    {"dots_per_inch", "x.jpg", Jfif(1, 1, 1, 1)},
    {"dots_per_centimetre", "x.jpg", Jfif(1, 2, 1, 1)},
    {"not_jfif", "x.jpg", "JFXX" + Jfif(1, 0, 1, 1).substr(4)},
    {"name_not_closed", "x.jpg", "JFIFX" + Jfif(1, 0, 1, 1).substr(5)},
    {"cut_inside_the_density", "x.jpg", Jfif(1, 0, 1, 1).substr(0, 11)},
    {"empty", "x.jpg", ""},
};
INSTANTIATE_TEST_SUITE_P(Jpeg, DensityTest, testing::ValuesIn(kDensities), RowName());

// Loading and making a thumbnail: the older block goes only when the new one is there.
TEST_F(Files, LoadedImagesReplaceTheOlderBlock) {
  using Load = int (*)(CLeadTools&, DibHandle*);
  struct Row {
    const char* moduleCall;
    std::vector<const char*> entries;
    Log log;
    Load load;
  };
  const Row rows[] = {
      {"L_LoadBitmap",
       {"L_LoadBitmap", "L_FreeBitmap", "L_ConvertToDIB"},
       {"L_LoadBitmap(/none/x.bmp, b1, 0, 1, 0, 0)", "L_ConvertToDIB(b1)", "L_FreeBitmap(b1)"},
       [](CLeadTools& tools, DibHandle* result) {
         return tools.LTLoadFile("/none/x.bmp", result);
       }},
      {"L_CreateThumbnailFromFile",
       {"L_CreateThumbnailFromFile", "L_ChangeToDIB"},
       {"L_CreateThumbnailFromFile(x.bmp, b1, [160 120 0 0 1 1 16777215 0 0], 0, 0, 0, 0)",
        "L_ChangeToDIB(b1)"},
       [](CLeadTools& tools, DibHandle* result) {
         return tools.LTCreateThumbnailFromFile("x.bmp", result, 160, 120);
       }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.moduleCall);
    const orvo::OwnedDib old = Photo(8);
    orvo::OwnedDib image;
    DibHandle result = old.get();
    for (const char* entry : row.entries) {
      EXPECT_EQ(row.load(*Bind({entry}), &result), ORVO_ERR_NO_VENDOR);
      EXPECT_EQ(TakeLog().front().substr(0, 6), "unload");
    }
    const auto tools = Bind();
    doubles::TheState().answers[row.moduleCall] = {kModuleFileNotFound};
    EXPECT_EQ(row.load(*tools, &result), ORVO_ERR_FILE_NOT_FOUND);
    EXPECT_EQ(TakeLog().size(), 1U);
    EXPECT_EQ(result, old.get());
    EXPECT_NE(GlobalSize(old.get()), 0U);

    doubles::TheState().bitmaps.clear();
    EXPECT_EQ(row.load(*tools, &result), ORVO_OK);
    image.reset(result);
    EXPECT_EQ(TakeLog(), row.log);
    EXPECT_EQ(GlobalSize(old.get()), 0U);
    EXPECT_EQ(pictures::Locked(image.get()).header()->biWidth, 6);
  }
}

TEST_F(Files, ThumbnailWithoutABlockFails) {
  const auto tools = Bind();
  doubles::TheState().answers["L_ChangeToDIB"] = {kModuleFailure};
  DibHandle result = nullptr;
  EXPECT_EQ(tools->LTCreateThumbnailFromFile("x.bmp", &result, 160, 120), ORVO_ERR_FAILURE);
  EXPECT_EQ(result, nullptr);
}

// --- Information ---------------------------------------------------------------------------------

TEST_F(Files, InformationIsThatOfTheFirstPage) {
  const auto tools = Bind();
  for (const int pages : {1, 2}) {
    doubles::TheState().pageCount = pages;
    doubles::TheState().answers["L_FileInfo"] = {kModuleSuccess, kModuleBadFile};
    ORVOIMAGEFILEINFO info{};
    EXPECT_EQ(tools->LTImageFileInfo("x.tif", &info), ORVO_OK);
    Log expected = {"L_FileInfo(x.tif, 0, 0)"};
    if (pages > 1) expected.emplace_back("L_FileInfo(x.tif, 1, page 1)");
    EXPECT_EQ(TakeLog(), expected);
    const int fields[] = {info.width,       info.height,      info.bitsPerPixel, info.order,
                          info.xResolution, info.yResolution, info.sizeInMemory, info.sizeOnDisk};
    EXPECT_EQ(std::vector<int>(std::begin(fields), std::end(fields)),
              (std::vector<int>{pages > 1 ? 320 : 640, 480, 24, 1, 300, 200, 921600, 5000}));
  }
}

TEST_F(Files, InformationHasItsOwnCodes) {
  ORVOIMAGEFILEINFO info{};
  {
    const auto tools = Bind({"L_FileInfo"});
    EXPECT_EQ(tools->LTImageFileInfo(nullptr, &info), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(tools->LTImageFileInfo("x.tif", nullptr), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(tools->LTImageFileInfo("x.tif", &info), ORVO_ERR_NO_VENDOR);
  }
  const auto tools = Bind();
  for (const auto& [module, code] : {std::pair(-10, ORVO_ERR_BAD_FILE),
                                     {-9, ORVO_ERR_FAILURE},
                                     {-1, ORVO_ERR_FAILURE},
                                     {2, ORVO_ERR_FAILURE}}) {
    doubles::TheState().answers["L_FileInfo"] = {module};
    EXPECT_EQ(tools->LTImageFileInfo("x.tif", &info), code) << module;
    EXPECT_EQ(info.width, 0);
  }
}

TEST_F(Files, VersionRecordIsPassedThrough) {
  LTVERSIONINFO info{};
  Name(&info, "info");
  EXPECT_EQ(Bind({"L_VersionInfo"})->LTGetVersionInfo(&info), ORVO_ERR_NO_VENDOR);
  const auto tools = Bind();
  EXPECT_EQ(tools->LTGetVersionInfo(&info), ORVO_OK);
  EXPECT_EQ(tools->LTGetVersionInfo(nullptr), ORVO_OK);
  EXPECT_EQ(TakeLog(), (Log{"L_VersionInfo(info)", "L_VersionInfo(0)"}));
}

// --- Conversion ----------------------------------------------------------------------------------

TEST_F(Files, ConversionTableAndCalls) {
  const std::map<std::string, int> formats = {{"bmp", 6},  {"tif", 87},  {"tiff", 87}, {"jpg", 10},
                                              {"jpe", 10}, {"jpeg", 10}, {"cmp", 5},   {"pcx", 1},
                                              {"psd", 76}, {"png", 75},  {"ras", 55},  {"pcd", 57},
                                              {"fpx", 82}, {"wmf", 15},  {"tga", 4},   {"pct", 56}};
  const auto tools = Bind();
  for (const auto& [extension, format] : formats) {
    for (const std::string& cased : InAnyCase(extension)) {
      const std::string target = "/out.x/y." + cased;
      EXPECT_EQ(tools->LTConvertFile("in.tif", target.c_str(), 77, nullptr), ORVO_OK);
      EXPECT_EQ(TakeLog(), (Log{"L_FileInfo(in.tif, 0, 0)", "L_FileConvert(in.tif, " + target +
                                                                ", " + std::to_string(format) +
                                                                ", 0, 0, 24, 77, 0, 0, 0)"}));
    }
  }
  for (const char* target : {"x.eps", "x.wpg", "x.jff", "x.gif", "x", "a.png/x"}) {
    EXPECT_EQ(tools->LTConvertFile("in.tif", target, 0, nullptr), ORVO_ERR_BAD_FORMAT) << target;
    EXPECT_EQ(TakeLog(), Log()) << target;
  }
}

TEST_F(Files, ConversionFailuresInOrder) {
  for (const char* entry : {"L_FileInfo", "L_SetStatusCallBack", "L_FileConvert"}) {
    const auto tools = Bind({entry});
    EXPECT_EQ(tools->LTConvertFile(nullptr, "x.png", 0, nullptr), ORVO_ERR_NO_VENDOR) << entry;
    EXPECT_EQ(TakeLog(), Log());
  }
  const auto tools = Bind();
  EXPECT_EQ(tools->LTConvertFile(nullptr, "x.gif", 0, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(tools->LTConvertFile("x.png", nullptr, 0, nullptr), ORVO_ERR_BAD_ARGUMENT);
  for (const int module : {-10, -1, 0, 2}) {
    doubles::TheState().answers["L_FileInfo"] = {module};
    EXPECT_EQ(tools->LTConvertFile("in.tif", "x.png", 0, nullptr), ORVO_ERR_BAD_FILE) << module;
  }
  doubles::TheState().pageCount = 2;
  TakeLog();
  EXPECT_EQ(tools->LTConvertFile("in.tif", "x.png", 0, Watcher), ORVO_ERR_BAD_FORMAT);
  EXPECT_EQ(TakeLog(), Log{"L_FileInfo(in.tif, 0, 0)"});
}

TEST_F(Files, ConversionPutsThePreviousCallbackBackWhateverComes) {
  const auto tools = Bind();
  for (const int module : {1, 0, -10, -100}) {
    doubles::TheState().installed = Earlier;
    doubles::TheState().answers["L_FileConvert"] = {module};
    EXPECT_EQ(tools->LTConvertFile("in.tif", "x.png", 5, Watcher),
              module == 1 ? ORVO_OK : ORVO_ERR_FAILURE);
    EXPECT_EQ(TakeLog(), (Log{"L_FileInfo(in.tif, 0, 0)", "L_SetStatusCallBack(watcher, 0)",
                              "L_FileConvert(in.tif, x.png, 75, 0, 0, 24, 5, 0, 0, 0)",
                              "L_SetStatusCallBack(earlier, 0)"}));
  }
  doubles::TheState().installed = nullptr;
  EXPECT_EQ(tools->LTConvertFile("in.tif", "x.png", 5, Watcher), ORVO_OK);
  EXPECT_EQ(doubles::TheState().installed, &Watcher);
}

}  // namespace
}  // namespace binding
