// What single image methods do beyond the common cycle.
#include "binding_fixture.h"
#include "methods.h"

namespace binding {
namespace {

class BitmapRules : public BindingTest {};

TEST_F(BitmapRules, DitheringModeGoesIntoTheFlagsOfDepthConversion) {
  const auto tools = Bind();
  const std::map<int, std::string> flags = {{-1, "1"},     {0, "1"},      {1, "65537"},
                                            {3, "196609"}, {8, "524289"}, {9, "1"}};
  for (const auto& [mode, expected] : flags) {
    orvo::OwnedDib photo = Photo(24);
    EXPECT_EQ(tools->LTSetDitheringMode(mode), ORVO_OK);
    EXPECT_EQ(TakeLog().front(),
              "L_DefaultDithering(" + std::to_string(static_cast<unsigned>(mode)) + ")");
    EXPECT_EQ(tools->LTConvertToColorRes(*photo.address(), nullptr, 4), ORVO_OK);
    EXPECT_EQ(TakeLog().at(1), "L_ColorResBitmap(b1, b1, 4, " + expected + ", 0, 0, 0, 0, 0)");
    doubles::TheState().bitmaps.clear();
  }
}

TEST_F(BitmapRules, DitheringModeIsKeptWhenTheKernelRefusesIt) {
  const auto tools = Bind();
  doubles::TheState().answers["L_DefaultDithering"] = {kModuleBadParameter};
  EXPECT_EQ(tools->LTSetDitheringMode(3), ORVO_ERR_NOT_SUPPORTED);
  orvo::OwnedDib photo = Photo(24);
  EXPECT_EQ(tools->LTConvertToColorRes(*photo.address(), nullptr, 4), ORVO_OK);
  EXPECT_EQ(TakeLog().at(2), "L_ColorResBitmap(b1, b1, 4, 196609, 0, 0, 0, 0, 0)");
}

TEST_F(BitmapRules, DitheringModeIsNotStoredWithoutItsEntry) {
  const auto tools = Bind({"L_DefaultDithering"});
  EXPECT_EQ(tools->LTSetDitheringMode(3), ORVO_ERR_NO_VENDOR);
  orvo::OwnedDib photo = Photo(24);
  EXPECT_EQ(tools->LTConvertToColorRes(*photo.address(), nullptr, 4), ORVO_OK);
  EXPECT_EQ(TakeLog().at(1), "L_ColorResBitmap(b1, b1, 4, 1, 0, 0, 0, 0, 0)");
}

TEST_F(BitmapRules, AnglesAreNotReducedToATurn) {
  const auto tools = Bind();
  for (const int angle : {-90, 0, 725}) {
    orvo::OwnedDib page = Photo(1);
    EXPECT_EQ(tools->LTRotate(*page.address(), nullptr, angle, 0, nullptr), ORVO_OK);
    EXPECT_EQ(TakeLog().at(1),
              "L_RotateBitmap(b1, " + std::to_string(angle * 100) + ", 0, 16777215)");
    doubles::TheState().bitmaps.clear();
  }
}

// The depth of a rotated image is looked at last, so the module's own code goes before it.
TEST_F(BitmapRules, RotationReportsTheModulesCodeBeforeTheDepth) {
  const auto tools = Bind();
  orvo::OwnedDib odd = Photo(2);
  doubles::TheState().answers["L_RotateBitmap"] = {kModuleNoBitmap};
  EXPECT_EQ(tools->LTRotate(*odd.address(), nullptr, 90, 0, nullptr), ORVO_ERR_NO_BITMAP);
}

// The trimmed image comes back by an entry of its own, and new resolutions likewise.
TEST_F(BitmapRules, EntriesForTheWayBackAreNeededToo) {
  for (const auto& [method, entry, inPlace] :
       {std::tuple("LTTrim", "L_ChangeToDIB2", true),
        std::tuple("LTChangeResolution", "L_ConvertToDIB", false)}) {
    SCOPED_TRACE(method);
    const auto tools = Bind({entry});
    orvo::OwnedDib photo = Photo(24);
    void* const given = photo.get();
    DibHandle result = nullptr;
    EXPECT_EQ(MethodNamed(method).call(*tools, *photo.address(), inPlace ? nullptr : &result, 10,
                                       nullptr),
              ORVO_ERR_NO_VENDOR);
    EXPECT_EQ(TakeLog(), Log());
    EXPECT_EQ(photo.get(), given);
    EXPECT_EQ(result, nullptr);
  }
}

// Without its copying way in, a copying method has an empty bitmap, which no depth list takes.
TEST_F(BitmapRules, WithoutTheCopyingEntryNoCopyIsMade) {
  const auto tools = Bind({"L_ConvertFromDIB"});
  orvo::OwnedDib photo = Photo(24);
  DibHandle result = nullptr;
  EXPECT_EQ(tools->LTInvert(*photo.address(), &result, nullptr), ORVO_ERR_BAD_DEPTH);
  EXPECT_EQ(tools->LTRotate(*photo.address(), &result, 90, 0, nullptr), ORVO_ERR_BAD_DEPTH);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(tools->LTInvert(*photo.address(), nullptr, nullptr), ORVO_OK);
}

struct Resolution {
  std::string name;
  int storedX, storedY;  // dots per inch
  int wantedX, wantedY;
  std::string sizes;  // of 7 x 5 pixels
};

class ResolutionTest : public BindingRows<Resolution> {};

TEST_P(ResolutionTest, SizesFollow) {
  const Resolution& row = GetParam();
  const auto tools = Bind();
  for (const bool inPlace : {false, true}) {
    doubles::TheState().bitmaps.clear();
    orvo::OwnedDib photo = Photo(24);
    pictures::Locked(photo.get()).header()->biXPelsPerMeter = orvo::PixelsPerMetre(row.storedX);
    pictures::Locked(photo.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(row.storedY);
    const orvo::OwnedDib original = pictures::CopyOf(photo.get());
    DibHandle result = nullptr;
    const int code = tools->LTChangeResolution(*photo.address(), inPlace ? nullptr : &result,
                                               row.wantedX, row.wantedY, Watcher);
    const orvo::OwnedDib made(result);
    const Log log = TakeLog();
    if (!row.sizes.empty()) {
      EXPECT_EQ(code, ORVO_OK);
      EXPECT_EQ(log.at(2), "L_SizeBitmap(b1, " + row.sizes + ", 4)");
      continue;
    }
    EXPECT_EQ(code, ORVO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(log.size(), 2U);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(pictures::Difference(original.get(), photo.get()), "");
  }
}

const Resolution kResolutions[] = {
    {"halving_truncates", 300, 300, 150, 150, "3, 2"},
    {"axes_are_apart", 300, 200, 600, 100, "14, 2"},
    {"product_is_taken_first", 299, 299, 298, 298, "6, 4"},
    {"product_wraps_at_32_bits", 300, 300, 0x7FFFFFFF, 300, "7158278, 5"},
    {"zero_asked_goes_to_the_module", 300, 300, 0, 0, "0, 0"},
    {"none_stored_across", 0, 300, 150, 150, ""},
    {"none_stored_down", 300, 0, 150, 150, ""},
};
INSTANTIATE_TEST_SUITE_P(Rows, ResolutionTest, testing::ValuesIn(kResolutions), RowName());

TEST_F(BitmapRules, GrayQuestionChangesTheHandleAndNothingElse) {
  const auto tools = Bind();
  const auto ask = [&](orvo::OwnedDib photo, int expected) {
    doubles::TheState().bitmaps.clear();
    const orvo::OwnedDib original = pictures::CopyOf(photo.get());
    void* const given = photo.get();
    Name(given, "source");
    EXPECT_EQ(tools->LTIsGrayScaleBitmap(*photo.address()), expected);
    EXPECT_EQ(TakeLog(),
              (Log{"L_ChangeFromDIB(b1, source)", "L_IsGrayScaleBitmap(b1)", "L_ChangeToDIB(b1)"}));
    EXPECT_NE(photo.get(), given);
    EXPECT_EQ(pictures::Difference(original.get(), photo.get()), "");
  };
  ask(Photo(8), 1);
  ask(pictures::NoiseInColor(7, 5, 8, 1), 0);
  doubles::TheState().answers["L_IsGrayScaleBitmap"] = {-7};
  ask(Photo(8), 1);
}

TEST_F(BitmapRules, GrayQuestionWithoutTheKernelIsAnsweredNo) {
  const auto tools = Bind({"ltkrn13n.dll"});
  orvo::OwnedDib photo = Photo(8);
  void* const given = photo.get();
  EXPECT_EQ(tools->LTIsGrayScaleBitmap(*photo.address()), 0);
  EXPECT_EQ(photo.get(), given);
}

}  // namespace
}  // namespace binding
