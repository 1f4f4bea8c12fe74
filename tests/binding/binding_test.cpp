// Loading, looking up and unloading, and what a missing module or entry leaves working.
#include <filesystem>

#include "binding_fixture.h"

namespace binding {
namespace {

const Log kPdfEntries = {"PDF_new",         "PDF_open_file",  "PDF_set_info", "PDF_open_image_file",
                         "PDF_get_value",   "PDF_begin_page", "PDF_scale",    "PDF_place_image",
                         "PDF_close_image", "PDF_end_page",   "PDF_close",    "PDF_delete"};
const Log kKernelEntries = {"L_ChangeFromDIB",   "L_ChangeToDIB",      "L_ChangeToDIB2",
                            "L_ColorResBitmap",  "L_DefaultDithering", "L_FreeBitmap",
                            "L_GrayScaleBitmap", "L_RotateBitmap",     "L_SetStatusCallBack",
                            "L_TrimBitmap",      "L_VersionInfo",      "L_ConvertToDIB",
                            "L_ConvertFromDIB",  "L_SizeBitmap",       "L_IsGrayScaleBitmap"};
const Log kImageEntries = {"L_ChangeBitmapContrast",  "L_ChangeBitmapHue",
                           "L_ChangeBitmapIntensity", "L_GammaCorrectBitmap",
                           "L_InvertBitmap",          "L_RemapBitmapIntensity",
                           "L_SharpenBitmap",         "L_ChangeBitmapSaturation"};
const Log kFileEntries = {"L_CreateThumbnailFromFile",
                          "L_FileInfo",
                          "L_LoadBitmap",
                          "L_SaveBitmap",
                          "L_SaveFile",
                          "L_FileConvert"};

struct Binding {
  std::string name;
  std::set<std::string> absent;
  Log tried;     // modules, in order of loading
  Log unloaded;  // in order of unloading
};

class BoundEntries : public BindingRows<Binding> {};

TEST_P(BoundEntries, LoadsLooksUpAndUnloadsInOrder) {
  const std::map<std::string, Log> entries = {{"PdfLib.dll", kPdfEntries},
                                              {"ltkrn13n.dll", kKernelEntries},
                                              {"ltimg13n.dll", kImageEntries},
                                              {"ltfil13n.dll", kFileEntries}};
  const std::filesystem::path folder =
      std::filesystem::read_symlink("/proc/self/exe").parent_path();
  Log bound;
  for (const std::string& module : GetParam().tried) {
    bound.push_back("load " + (folder / module).string());
    if (GetParam().absent.contains(module)) continue;
    for (const std::string& entry : entries.at(module)) bound.push_back("find " + entry);
  }
  if (!GetParam().absent.contains("ltkrn13n.dll")) bound.emplace_back("L_DefaultDithering(1)");
  Log unloaded;
  for (const std::string& module : GetParam().unloaded) unloaded.push_back("unload " + module);

  hooks::Absent() = GetParam().absent;
  {
    const CLeadTools tools;
    EXPECT_EQ(TakeLog(), bound);
  }
  EXPECT_EQ(TakeLog(), unloaded);
}

const Binding kBindings[] = {
    {"all_there",
     {},
     {"PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll", "ltfil13n.dll"},
     {"PdfLib.dll", "ltkrn13n.dll", "ltfil13n.dll", "ltimg13n.dll"}},
    {"without_pdf",
     {"PdfLib.dll"},
     {"PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll", "ltfil13n.dll"},
     {"ltkrn13n.dll", "ltfil13n.dll", "ltimg13n.dll"}},
    {"without_kernel_the_others_are_not_tried",
     {"ltkrn13n.dll"},
     {"PdfLib.dll", "ltkrn13n.dll"},
     {"PdfLib.dll"}},
    {"without_image_files_are_not_tried",
     {"ltimg13n.dll"},
     {"PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll"},
     {"PdfLib.dll", "ltkrn13n.dll"}},
    {"without_files",
     {"ltfil13n.dll"},
     {"PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll", "ltfil13n.dll"},
     {"PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll"}},
    {"with_none", {"PdfLib.dll", "ltkrn13n.dll"}, {"PdfLib.dll", "ltkrn13n.dll"}, {}},
};
INSTANTIATE_TEST_SUITE_P(Modules, BoundEntries, testing::ValuesIn(kBindings), RowName());

// Whether the methods of each module work with a module missing.
TEST_F(BindingTest, MissingModuleStopsOnlyWhatNeedsIt) {
  struct Row {
    const char* missing;
    bool kernelWorks, imageWorks, filesWork;
  };
  for (const Row& row :
       {Row{"ltkrn13n.dll", false, false, false}, Row{"ltimg13n.dll", true, false, false},
        Row{"ltfil13n.dll", true, true, false}, Row{"PdfLib.dll", true, true, true}}) {
    SCOPED_TRACE(row.missing);
    const auto tools = Bind({row.missing});
    const auto codeFor = [](bool works) { return works ? ORVO_OK : ORVO_ERR_NO_VENDOR; };
    orvo::OwnedDib photo = Photo(24);
    ORVOIMAGEFILEINFO info;
    EXPECT_EQ(tools->LTRotate(*photo.address(), nullptr, 90, 0, nullptr), codeFor(row.kernelWorks));
    EXPECT_EQ(tools->LTSetDitheringMode(2), codeFor(row.kernelWorks));
    EXPECT_EQ(tools->LTGetVersionInfo(nullptr), codeFor(row.kernelWorks));
    EXPECT_EQ(tools->LTInvert(*photo.address(), nullptr, nullptr), codeFor(row.imageWorks));
    EXPECT_EQ(tools->LTImageFileInfo("a.tif", &info), codeFor(row.filesWork));
    EXPECT_EQ(tools->LTSaveFile(photo.get(), "a.tif", 0, 0), codeFor(row.filesWork));
  }
}

TEST_F(BindingTest, EveryModuleCodeHasItsResultCode) {
  const std::map<int, int> known = {
      {1, 0},    {0, 1},    {-1, 2},   {-2, 8},   {-3, 2},   {-4, 10},  {-5, 10},  {-6, 10},
      {-7, 10},  {-8, 13},  {-9, 14},  {-10, 11}, {-11, 14}, {-12, 14}, {-13, 15}, {-14, 12},
      {-15, 14}, {-16, 15}, {-23, 15}, {-27, 8},  {2, 16},   {-100, 16}};
  const auto tools = Bind();
  for (int code = -110; code <= 10; ++code) {
    doubles::TheState().answers["L_VersionInfo"] = {code};
    const auto row = known.find(code);
    EXPECT_EQ(tools->LTGetVersionInfo(nullptr), row == known.end() ? 17 : row->second)
        << "module code " << code;
  }
}

}  // namespace
}  // namespace binding
