// The life of an instance, and the operations that modules carry out, called by their places.
#include "pairs.h"

namespace table {
namespace {

class Slots : public ToolkitTest {};

Log Lines(const std::string& word, const std::string& names) {
  Log lines;
  for (std::size_t at = 0; at < names.size(); at = names.find(' ', at) + 1) {
    lines.push_back(word + " " + names.substr(at, names.find(' ', at) - at));
    if (names.find(' ', at) == std::string::npos) break;
  }
  return lines;
}

Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

struct Module {
  const char* name;
  const char* entries;
};
// In order of loading. The three of pictures need the one before them, PDF documents none.
constexpr Module kModules[] = {
    {"PdfLib.dll",
     "PDF_new PDF_open_file PDF_set_info PDF_open_image_file PDF_get_value PDF_begin_page "
     "PDF_scale PDF_place_image PDF_close_image PDF_end_page PDF_close PDF_delete"},
    {"ltkrn13n.dll",
     "L_ChangeFromDIB L_ChangeToDIB L_ChangeToDIB2 L_ColorResBitmap L_DefaultDithering "
     "L_FreeBitmap L_GrayScaleBitmap L_RotateBitmap L_SetStatusCallBack L_TrimBitmap "
     "L_VersionInfo L_ConvertToDIB L_ConvertFromDIB L_SizeBitmap L_IsGrayScaleBitmap"},
    {"ltimg13n.dll",
     "L_ChangeBitmapContrast L_ChangeBitmapHue L_ChangeBitmapIntensity L_GammaCorrectBitmap "
     "L_InvertBitmap L_RemapBitmapIntensity L_SharpenBitmap L_ChangeBitmapSaturation"},
    {"ltfil13n.dll",
     "L_CreateThumbnailFromFile L_FileInfo L_LoadBitmap L_SaveBitmap L_SaveFile L_FileConvert"}};

TEST_F(Slots, InstancesBindInOrderAndUnloadWhatWasBound) {
  for (const std::string absent : {"", "PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll",
                                   "ltfil13n.dll"}) {
    SCOPED_TRACE(absent);
    toolkit.reset();
    log();
    state.absent = {absent};
    toolkit.reset(CreateORVOInstance());
    Log expected;
    std::set<std::string> bound;
    for (const Module& module : kModules) {
      expected.push_back(std::string("load ") + module.name);
      if (module.name == absent && bound.empty()) continue;
      if (module.name == absent) break;
      bound.insert(module.name);
      expected = expected + Lines("find", module.entries);
    }
    if (bound.contains("ltkrn13n.dll")) expected.emplace_back("L_DefaultDithering(1)");
    EXPECT_EQ(log(), expected);
    toolkit.reset();
    Log unloaded;
    for (const char* name : {"PdfLib.dll", "ltkrn13n.dll", "ltfil13n.dll", "ltimg13n.dll"}) {
      if (bound.contains(name)) unloaded.push_back(std::string("unload ") + name);
    }
    EXPECT_EQ(log(), unloaded);
  }
}

// Bit 0 of the first entry's flag releases the memory too.
TEST_F(Slots, TheFirstEndsTheInstance) {
  for (const unsigned flag : {0U, 1U, 2U, 3U}) {
    const std::size_t before = PlatformLiveBlocks();
    COrvoInstance* const other = CreateORVOInstance();
    CallSlot(other, 0, flag);
    EXPECT_EQ(PlatformLiveBlocks(), before + (flag % 2 == 0 ? 1 : 0));
    if (flag % 2 == 0) LocalFree(other);
  }
  DestroyORVOInstance(nullptr);
  int failing = 0;
  for (toolkit.reset(); toolkit == nullptr && failing < 10; PlatformFailAllocation(0)) {
    PlatformFailAllocation(++failing);
    const std::size_t before = PlatformLiveBlocks();
    toolkit.reset(CreateORVOInstance());
    EXPECT_TRUE(toolkit != nullptr || PlatformLiveBlocks() == before);
  }
  EXPECT_EQ(failing, 4) << "the instance and the two objects that it owns";
}

TEST_F(Slots, ModuleOperationsInBothForms) {
  for (const Pair& pair : ModulePairs()) {
    for (const bool newHandles : {true, false}) {
      for (const StatusCallback before : {StatusCallback{nullptr}, StatusCallback{&Earlier}}) {
        SCOPED_TRACE(pair.name);
        OwnedDib image = Face();
        const OwnedDib original = pictures::CopyOf(image.get());
        const OwnedDib old = pictures::Noise(7, 5, 24, 1);
        state.names[image.get()] = "image";
        state.names[tones] = "tones";
        state.newHandles = newHandles;
        DibHandle made = old.get();
        const auto expectLog = [&](const std::string& in, const Log& back) {
          Log expected{in, pair.moduleCall};
          if (pair.watched) expected.insert(expected.begin() + 1, "L_SetStatusCallBack(watch, 0)");
          if (pair.watched && before) expected.emplace_back("L_SetStatusCallBack(earlier, 0)");
          EXPECT_EQ(log(), expected + back);
          EXPECT_EQ(install(before), pair.watched && !before ? &Watch : before);
          if (pair.watched) {
            EXPECT_EQ(heard.back(), 100);
            EXPECT_TRUE(std::is_sorted(heard.begin(), heard.end()) && heard.front() >= 0);
          }
          EXPECT_EQ(heard.empty(), !pair.watched);
          heard.clear();
        };
        install(before);
        log();
        ASSERT_EQ(Perform(toolkit.get(), pair, image.address(), &made, pair.number, &Watch), ORVO_OK);
        const std::string size = "(" + Measures(made);
        expectLog("L_ConvertFromDIB(0x0x0, *, *)",
                  pair.freesOldResult ? Log{"L_ChangeToDIB" + size + ")"}
                                      : Log{"L_ConvertToDIB" + size + ")",
                                            "L_FreeBitmap" + size + ")"});
        const OwnedDib result(made);
        EXPECT_EQ(IsAlive(old.get()), !pair.freesOldResult);
        EXPECT_EQ(Difference(original.get(), image.get()), "");
        EXPECT_NE(Difference(original.get(), result.get()), "");
        EXPECT_EQ(Locked(result.get()).header()->biYPelsPerMeter,
                  orvo::PixelsPerMetre(pair.freesOldResult ? 200 : 100));
        EXPECT_EQ(Locked(result.get()).header()->biXPelsPerMeter,
                  orvo::PixelsPerMetre(pair.freesOldResult ? 300 : 150));

        void* const given = image.get();
        ASSERT_EQ(Perform(toolkit.get(), pair, image.address(), nullptr, pair.number, &Watch), ORVO_OK);
        expectLog("L_ChangeFromDIB(0x0x0, image)",
                  {pair.name == "Trim" ? "L_ChangeToDIB2" + size + ", 0)"
                                       : "L_ChangeToDIB" + size + ")"});
        if (newHandles) {
          EXPECT_FALSE(IsAlive(given));
        }
        EXPECT_EQ(Difference(result.get(), image.get()), "");
      }
    }
  }
}

}  // namespace
}  // namespace table
