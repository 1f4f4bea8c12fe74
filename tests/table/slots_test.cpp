// The life of an instance, and the operations that modules carry out, called by their places.
#include <array>

#include "toolkit_test.h"

namespace table {
namespace {

class Slots : public ToolkitTest {};

// The three modules of pictures need the one before them, PDF documents none. The sum holds what
// is loaded, looked up and unloaded, and in which order.
TEST_F(Slots, InstancesBindInOrderAndUnloadWhatWasBound) {
  Sum sum;
  for (const char* absent : {"", "PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll", "ltfil13n.dll"}) {
    toolkit.reset();
    sum << log();
    state.absent = {absent};
    toolkit.reset(CreateORVOInstance());
    const Log loaded = log();
    EXPECT_EQ(loaded[0], "load PdfLib.dll");
    EXPECT_EQ(loaded.back() == "L_DefaultDithering(1)", std::string(absent) != "ltkrn13n.dll");
    sum << loaded;
  }
  EXPECT_EQ(sum.hex(), "60d6888e");
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
}

TEST_F(Slots, TheVersionIsToldEvenWithoutTheModule) {
  EXPECT_EQ(toolkit->GetVersion(nullptr), ORVO_ERR_BAD_ARGUMENT);
  for (const char* absent : {"", "L_VersionInfo"}) {
    bind({absent});
    LTVERSIONINFO module{};
    module.size = sizeof module;
    ORVOVERSIONINFO version{"?", &module};
    EXPECT_EQ(CallSlot(toolkit.get(), 18, &version),
              *absent != '\0' ? ORVO_ERR_NO_VENDOR : ORVO_OK);
    EXPECT_STREQ(version.version, "1.0");
    EXPECT_EQ(module.version[0] != '\0', *absent == '\0');
  }
}

TEST_F(Slots, SizesFollowTheResolution) {
  // Dots per inch stored across and down, and wanted.
  Sum sum;
  for (const auto& [x, y, wantedX, wantedY] :
       std::initializer_list<std::array<int, 4>>{{300, 300, 150, 150},
                                                 {300, 200, 600, 100},
                                                 {299, 299, 298, 298},
                                                 {300, 300, 0x7FFFFFFF, 300},
                                                 {300, 300, 0, 0},
                                                 {0, 300, 150, 150},
                                                 {300, 0, 150, 150}}) {
    OwnedDib photo = pictures::Noise(7, 5, 24, 1);
    Locked(photo.get()).header()->biXPelsPerMeter = orvo::PixelsPerMetre(x);
    Locked(photo.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(y);
    state.answers = {{"L_SizeBitmap", {-13}}};
    EXPECT_EQ(toolkit->ChangeResolutionInPlace(photo.address(), wantedX, wantedY, &Watch),
              ORVO_ERR_NOT_SUPPORTED);
    const Log calls = log();
    EXPECT_TRUE(wantedX != 600 || calls[2] == "L_SizeBitmap(7x5x24, 14, 2, 4)") << calls[2];
    sum << calls << photo.get();
  }
  EXPECT_EQ(sum.hex(), "453ab977");
}

TEST_F(Slots, ModuleCodesBecomeTheToolkits) {
  Sum sum;
  OwnedDib image = pictures::Noise(4, 4, 24, 1);
  for (int answered = -110; answered < 10; ++answered) {
    state.answers["L_InvertBitmap"] = {static_cast<double>(answered)};
    sum << toolkit->InvertInPlace(image.address(), nullptr);
  }
  for (int code = -1; code < 30; ++code) {
    sum << std::string(OrvoResultName(code)) << std::string(OrvoResultText(code));
  }
  EXPECT_EQ(sum.hex(), "aeb8ed21");
  EXPECT_STREQ(OrvoResultName(4), "ORVO_ERR_BAD_DEPTH");
}

// The mode is kept when the kernel refuses it.
TEST_F(Slots, DitheringModeGoesIntoTheFlagsOfDepthConversion) {
  Sum sum;
  OwnedDib photo = pictures::Noise(7, 5, 24, 1);
  for (const int mode : {-1, 0, 1, 3, 8, 9}) {
    state.answers["L_DefaultDithering"] = {mode == 8 ? -13.0 : 1.0};
    EXPECT_EQ(CallSlot(toolkit.get(), 39, mode), mode == 8 ? ORVO_ERR_NOT_SUPPORTED : ORVO_OK);
    EXPECT_EQ(toolkit->ConvertToColorResInPlace(photo.address(), 24), ORVO_OK);
    const Log calls = log();
    EXPECT_EQ(calls[2], "L_ColorResBitmap(7x5x24, 7x5x24, 24, " +
                            std::to_string(mode > 0 && mode < 9 ? mode << 16 | 1 : 1) +
                            ", 0, 0, 0, 0, 0)");
    sum << calls;
  }
  bind({"L_DefaultDithering"});
  EXPECT_EQ(toolkit->SetDitheringMode(3), ORVO_ERR_NO_VENDOR);
  EXPECT_EQ(sum.hex(), "af7f0d8f");
}

}  // namespace
}  // namespace table
