// The instance and its table of sixty, reached as any language would: raw pointers, by position.
#include <cstring>

#include <orvo/orvo.h>

#include "binding_fixture.h"
#include "methods.h"

namespace binding {
namespace {

constexpr StatusCallback kNone = nullptr;
constexpr std::uint8_t kLevel = 3;

// One entry of an instance's table.
struct Slot {
  COrvoInstance* instance;
  std::size_t position;

  template <class... Arguments>
  int operator()(Arguments... arguments) const {
    void* const* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(instance), sizeof table);
    const auto entry = reinterpret_cast<int (*)(COrvoInstance*, Arguments...)>(table[position]);
    return entry(instance, arguments...);
  }
};

enum class Form {
  kToNew,    // an image operation of the modules, to a new handle
  kInPlace,  // the same in place
  kOther,
  kBorne,  // only has to bear a call here
};

struct Entry {
  std::size_t position;
  std::string name;
  Form form;
  int (*call)(Slot, DibHandle* image, DibHandle* result);
  std::string moduleCall = {};  // as logged; empty when the call reaches no module
  bool watched = false;         // takes a callback
  int code = ORVO_OK;
};

void PrintTo(const Entry& entry, std::ostream* out) {
  *out << entry.name;
}

using S = Slot;
using H = DibHandle*;
constexpr std::uint32_t kOne = 1;

const Entry kEntries[] = {
    {1, "ConvertRGB", Form::kOther, [](S s, H i, H r) { return s(*i, r, "/none/convert.so"); },
     "load /none/convert.so", false, ORVO_ERR_NO_CONVERTER},
    {2, "ConvertRGBInPlace", Form::kOther, [](S s, H i, H) { return s(*i, "/none/convert.so"); },
     "load /none/convert.so", false, ORVO_ERR_NO_CONVERTER},
    {3, "SharpnessAdjust", Form::kOther, [](S s, H i, H r) { return s(*i, r, kLevel); }},
    {4, "SharpnessAdjustInPlace", Form::kOther, [](S s, H i, H) { return s(*i, kLevel); }},
    {5, "HistogramAdjust", Form::kBorne, [](S s, H i, H r) { return s(*i, r, kLevel); }},
    {6, "HistogramAdjustInPlace", Form::kBorne, [](S s, H i, H) { return s(*i, kLevel); }},
    {7, "ExposureAdjust", Form::kBorne, [](S s, H i, H r) { return s(*i, r, kLevel); }},
    {8, "ExposureAdjustInPlace", Form::kBorne, [](S s, H i, H) { return s(*i, kLevel); }},
    {9, "SearchRedEyeRegion", Form::kBorne,
     [](S s, H i, H) {
       std::uint32_t found[3] = {};
       return s(*i, kOne, kOne, &found[0], &found[1], &found[2]);
     }},
    {10, "ReduceRedEye", Form::kBorne, [](S s, H i, H r) { return s(*i, r, kOne, kOne, kOne); }},
    {11, "ReduceRedEyeInPlace", Form::kBorne, [](S s, H i, H) { return s(*i, kOne, kOne, kOne); }},
    {12, "AutoRedEyeInPlace", Form::kBorne,
     [](S s, H i, H) {
       int found = 0;
       return s(*i, &found);
     }},
    {13, "AutoRedEye", Form::kBorne,
     [](S s, H i, H r) {
       int found = 0;
       return s(*i, r, &found);
     }},
    {14, "WhitenessAdjust", Form::kOther,
     [](S s, H i, H r) { return s(*i, r, std::uint32_t{256}); }, "", false,
     ORVO_ERR_OUT_OF_RANGE},
    {15, "WhitenessAdjustInPlace", Form::kOther,
     [](S s, H i, H) { return s(*i, std::uint32_t{255}); }},
    {16, "Descreen", Form::kBorne, [](S s, H i, H r) { return s(*i, r, kOne, kOne, kNone); }},
    {17, "DescreenInPlace", Form::kBorne, [](S s, H i, H) { return s(*i, kOne, kOne, kNone); }},
    {18, "GetVersion", Form::kOther,
     [](S s, H, H) {
       LTVERSIONINFO module{};
       Name(&module, "info");
       ORVOVERSIONINFO info{"?", &module};
       const int code = s(&info);
       EXPECT_STREQ(info.version, "1.0");
       return code;
     },
     "L_VersionInfo(info)"},
    {19, "ChangeResolution", Form::kToNew,
     [](S s, H i, H r) { return s(*i, r, 150, 100, &Watcher); }, "L_SizeBitmap(b1, 3, 2, 4)", true},
    {20, "ChangeResolutionInPlace", Form::kInPlace,
     [](S s, H i, H) { return s(i, 150, 100, &Watcher); }, "L_SizeBitmap(b1, 3, 2, 4)", true},
    {21, "ContrastAdjust", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 21, &Watcher); },
     "L_ChangeBitmapContrast(b1, 21)", true},
    {22, "ContrastAdjustInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 22, &Watcher); },
     "L_ChangeBitmapContrast(b1, 22)", true},
    {23, "ConvertToColorRes", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 4); },
     "L_ColorResBitmap(b1, b1, 4, 65537, 0, 0, 0, 0, 0)"},
    {24, "ConvertToColorResInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 8); },
     "L_ColorResBitmap(b1, b1, 8, 65537, 0, 0, 0, 0, 0)"},
    {25, "ConvertToGrayScaleRes", Form::kToNew, [](S s, H i, H r) { return s(*i, r, &Watcher); },
     "L_GrayScaleBitmap(b1, 8)", true},
    {26, "ConvertToGrayScaleResInPlace", Form::kInPlace,
     [](S s, H i, H) { return s(i, &Watcher); }, "L_GrayScaleBitmap(b1, 8)", true},
    {27, "GammaAdjust", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 27U, &Watcher); },
     "L_GammaCorrectBitmap(b1, 27)", true},
    {28, "GammaAdjustInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 28U, &Watcher); },
     "L_GammaCorrectBitmap(b1, 28)", true},
    {29, "HueAdjust", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 29, &Watcher); },
     "L_ChangeBitmapHue(b1, 29)", true},
    {30, "HueAdjustInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 30, &Watcher); },
     "L_ChangeBitmapHue(b1, 30)", true},
    {31, "IntensityAdjust", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 31, &Watcher); },
     "L_ChangeBitmapIntensity(b1, 31)", true},
    {32, "IntensityAdjustInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 32, &Watcher); },
     "L_ChangeBitmapIntensity(b1, 32)", true},
    {33, "Invert", Form::kToNew, [](S s, H i, H r) { return s(*i, r, &Watcher); },
     "L_InvertBitmap(b1)", true},
    {34, "InvertInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, &Watcher); },
     "L_InvertBitmap(b1)", true},
    {35, "Rotate", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 35, &Watcher); },
     "L_RotateBitmap(b1, 3500, 1, 16777215)", true},
    {36, "RotateInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 36, &Watcher); },
     "L_RotateBitmap(b1, 3600, 1, 16777215)", true},
    {37, "SaturationAdjust", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 37, &Watcher); },
     "L_ChangeBitmapSaturation(b1, 37)", true},
    {38, "SaturationAdjustInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 38, &Watcher); },
     "L_ChangeBitmapSaturation(b1, 38)", true},
    {39, "SetDitheringMode", Form::kOther, [](S s, H, H) { return s(39); },
     "L_DefaultDithering(39)"},
    {40, "LeadSharpnessAdjust", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 40, &Watcher); },
     "L_SharpenBitmap(b1, 40)", true},
    {41, "LeadSharpnessAdjustInPlace", Form::kInPlace,
     [](S s, H i, H) { return s(i, 41, &Watcher); }, "L_SharpenBitmap(b1, 41)", true},
    {42, "AutoTrim", Form::kBorne, [](S s, H i, H r) { return s(*i, r, kLevel); }},
    {43, "AutoTrimInPlace", Form::kBorne, [](S s, H i, H) { return s(i, kLevel); }},
    {44, "GetAutoTrimRect", Form::kBorne,
     [](S s, H i, H) {
       RECT rect{};
       return s(*i, kLevel, &rect);
     }},
    {45, "LoadFile", Form::kOther, [](S s, H, H r) { return s("x.bmp", r); },
     "L_LoadBitmap(x.bmp, b1, 0, 1, 0, 0)"},
    {46, "ChangeSize", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 3, 4, 5U, &Watcher); },
     "L_SizeBitmap(b1, 3, 4, 5)", true},
    {47, "ChangeSizeInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 3, 4, 5U, &Watcher); },
     "L_SizeBitmap(b1, 3, 4, 5)", true},
    {48, "CreateThumbnailFromFile", Form::kOther,
     [](S s, H, H r) { return s("x.bmp", r, 16, 12); },
     "L_CreateThumbnailFromFile(x.bmp, b1, [16 12 0 0 1 1 16777215 0 0], 0, 0, 0, 0)"},
    {49, "RemapIntensity", Form::kToNew,
     [](S s, H i, H r) { return s(*i, r, &kToneTable[0], 2, &Watcher); },
     "L_RemapBitmapIntensity(b1, table, 256, 2)", true},
    {50, "RemapIntensityInPlace", Form::kInPlace,
     [](S s, H i, H) { return s(i, &kToneTable[0], 3, &Watcher); },
     "L_RemapBitmapIntensity(b1, table, 256, 3)", true},
    {51, "IsImageFileName", Form::kOther, [](S s, H, H) { return s("scan.Dcx"); }, "", false, 1},
    {52, "SaveFile", Form::kOther, [](S s, H i, H) { return s(*i, "x.jpg", 0, 52); },
     "L_SaveBitmap(x.jpg, b1, 10, 0, 52, 0)"},
    {53, "GetFileExtensions", Form::kOther,
     [](S s, H, H) {
       int count = 0;
       char text[67] = {};
       std::uint32_t size = sizeof text;
       const int code = s(&count, &text[0], &size);
       EXPECT_STREQ(&text[0], "BMP");
       EXPECT_EQ(count, 16);
       return code;
     }},
    {54, "FindRegions", Form::kBorne,
     [](S s, H i, H) {
       RegionRecord* list = nullptr;
       int count = 0;
       const int code = s(*i, &list, &count, 1, 200);
       GlobalFree(list);
       return code;
     }},
    {55, "AutoDeskew", Form::kBorne,
     [](S s, H i, H r) {
       int angle = 0;
       return s(*i, r, &angle, kNone);
     }},
    {56, "ImageFileInfo", Form::kOther,
     [](S s, H, H) {
       ORVOIMAGEFILEINFO info{};
       return s("x.bmp", &info);
     },
     "L_FileInfo(x.bmp, 0, 0)"},
    {57, "ConvertFile", Form::kOther, [](S s, H, H) { return s("x.bmp", "y.png", 57, &Watcher); },
     "L_FileConvert(x.bmp, y.png, 75, 0, 0, 24, 57, 0, 0, 0)"},
    {58, "TrimInPlace", Form::kInPlace, [](S s, H i, H) { return s(i, 1, 2, 4, 8); },
     "L_TrimBitmap(b1, 1, 2, 3, 6)"},
    {59, "Trim", Form::kToNew, [](S s, H i, H r) { return s(*i, r, 1, 2, 4, 8); },
     "L_TrimBitmap(b1, 1, 2, 3, 6)"},
};

class TableTest : public BindingRows<Entry> {};
INSTANTIATE_TEST_SUITE_P(Entries, TableTest, testing::ValuesIn(kEntries), RowName());

std::vector<std::uint8_t> RowBytes(DibHandle image) {
  const pictures::Locked locked(image);
  const std::size_t offset = locked.layout().pixelOffset;
  return {locked.bytes() + offset, locked.bytes() + locked.layout().totalBytes};
}

// The modules give every block back under another handle here.
TEST_P(TableTest, ForwardsAndLeavesHandlesValid) {
  const Entry& entry = GetParam();
  const orvo::OwnedInstance toolkit;
  orvo::OwnedDib image = Photo(24);
  const orvo::OwnedDib original = pictures::CopyOf(image.get());
  const orvo::OwnedDib changed = Inverted(image.get());
  void* const given = image.get();
  DibHandle result = nullptr;
  Name(kToneTable, "table");
  TakeLog();

  const int code = entry.call({toolkit.get(), entry.position}, image.address(), &result);
  const orvo::OwnedDib made(result == image.get() ? nullptr : result);
  const Log log = TakeLog();
  if (entry.form == Form::kBorne) return;
  EXPECT_EQ(code, entry.code);
  EXPECT_EQ(std::count(log.begin(), log.end(), entry.moduleCall), entry.moduleCall.empty() ? 0 : 1)
      << testing::PrintToString(log);
  EXPECT_EQ(log.empty(), entry.moduleCall.empty());
  EXPECT_EQ(watchedPercent, entry.watched ? 50 : -1);
  if (entry.form == Form::kInPlace) {
    EXPECT_NE(image.get(), given);
    EXPECT_EQ(RowBytes(image.get()), RowBytes(changed.get()));
  } else {
    EXPECT_EQ(image.get(), given);
    EXPECT_NE(GlobalSize(given), 0U);
  }
  if (entry.form == Form::kToNew) {
    ASSERT_TRUE(made);
    EXPECT_EQ(RowBytes(made.get()), RowBytes(changed.get()));
    EXPECT_EQ(pictures::Difference(original.get(), image.get()), "");
  }
}

class InstanceLife : public BindingTest {};

// Entry 0 ends the instance; bit 0 of its flag releases the memory too.
TEST_F(InstanceLife, FirstEntryIsTheDestructor) {
  for (const unsigned flag : {0U, 1U, 3U, 2U}) {
    const std::size_t before = PlatformLiveBlocks();
    COrvoInstance* const toolkit = CreateORVOInstance();
    ASSERT_NE(toolkit, nullptr);
    TakeLog();
    Slot{toolkit, 0}(flag);
    EXPECT_EQ(TakeLog(), (Log{"unload PdfLib.dll", "unload ltkrn13n.dll", "unload ltfil13n.dll",
                              "unload ltimg13n.dll"}));
    const bool released = (flag & 1U) != 0;
    EXPECT_EQ(PlatformLiveBlocks(), before + (released ? 0 : 1));
    if (!released) LocalFree(toolkit);
  }
  DestroyORVOInstance(nullptr);
}

TEST_F(InstanceLife, NoMemoryGivesNoInstanceAndLeaksNothing) {
  int failures = 0;
  for (;; ++failures) {
    PlatformFailAllocation(failures + 1);
    COrvoInstance* const toolkit = CreateORVOInstance();
    PlatformFailAllocation(0);
    if (toolkit != nullptr) {
      DestroyORVOInstance(toolkit);
      break;
    }
  }
  EXPECT_GE(failures, 3) << "the instance and the two objects that it owns";
}

TEST_F(InstanceLife, StandsWithoutModules) {
  hooks::Absent() = {"PdfLib.dll", "ltkrn13n.dll"};
  const orvo::OwnedInstance toolkit;
  ASSERT_TRUE(toolkit);
  orvo::OwnedDib photo = Photo(24);
  EXPECT_EQ(toolkit->ContrastAdjustInPlace(photo.address(), 5, nullptr), ORVO_ERR_NO_VENDOR);
  EXPECT_EQ(toolkit->SharpnessAdjustInPlace(photo.get(), 5), ORVO_OK);
  ORVOVERSIONINFO info{"?", nullptr};
  EXPECT_EQ(toolkit->GetVersion(&info), ORVO_ERR_NO_VENDOR);
  EXPECT_STREQ(info.version, "1.0");
}

}  // namespace
}  // namespace binding
