// The life of an instance, and the operations that modules carry out, called by their places.
#include "toolkit_test.h"

namespace table {
namespace {

class Slots : public ToolkitTest {};

// In order of loading, with the number of their entries. The three of pictures need the one before
// them, PDF documents none.
constexpr std::pair<const char*, int> kModules[] = {
    {"PdfLib.dll", 12}, {"ltkrn13n.dll", 15}, {"ltimg13n.dll", 8}, {"ltfil13n.dll", 6}};

TEST_F(Slots, InstancesBindInOrderAndUnloadWhatWasBound) {
  for (const char* absent : {"", "PdfLib.dll", "ltkrn13n.dll", "ltimg13n.dll", "ltfil13n.dll"}) {
    SCOPED_TRACE(absent);
    toolkit.reset();
    log();
    state.absent = {absent};
    toolkit.reset(CreateORVOInstance());
    Log expected;
    std::set<std::string> bound;
    auto entry = watched::EntryNames().begin();
    for (const auto& [name, entries] : kModules) {
      expected.push_back(std::string("load ") + name);
      const bool missing = std::string(name) == absent;
      if (missing && !bound.empty()) break;
      for (int i = 0; i < entries; ++i, ++entry) {
        if (!missing) expected.push_back("find " + *entry);
      }
      if (!missing) bound.insert(name);
    }
    if (bound.contains("ltkrn13n.dll")) expected.emplace_back("L_DefaultDithering(1)");
    EXPECT_EQ(log(), expected);
    toolkit.reset();
    expected.clear();
    for (const char* name : {"PdfLib.dll", "ltkrn13n.dll", "ltfil13n.dll", "ltimg13n.dll"}) {
      if (bound.contains(name)) expected.push_back(std::string("unload ") + name);
    }
    EXPECT_EQ(log(), expected);
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
    toolkit.reset(CreateORVOInstance());
  }
  EXPECT_EQ(failing, 4) << "the instance and the two objects that it owns";
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
  // Dots per inch stored across and down, and wanted; what is asked of the module for 7 x 5 pixels.
  using Row = std::tuple<int, int, int, int, std::string>;
  for (const auto& [x, y, wantedX, wantedY, size] :
       {Row{300, 300, 150, 150, "3, 2"}, Row{300, 200, 600, 100, "14, 2"},
        Row{299, 299, 298, 298, "6, 4"}, Row{300, 300, 0x7FFFFFFF, 300, "7158278, 5"},
        Row{300, 300, 0, 0, "0, 0"}, Row{0, 300, 150, 150, ""}, Row{300, 0, 150, 150, ""}}) {
    OwnedDib photo = pictures::Noise(7, 5, 24, 1);
    Locked(photo.get()).header()->biXPelsPerMeter = orvo::PixelsPerMetre(x);
    Locked(photo.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(y);
    const OwnedDib original = pictures::CopyOf(photo.get());
    state.answers = {{"L_SizeBitmap", {-13}}};
    EXPECT_EQ(toolkit->ChangeResolutionInPlace(photo.address(), wantedX, wantedY, &Watch),
              ORVO_ERR_NOT_SUPPORTED);
    const Log asked = {"L_SetStatusCallBack(watch, 0)", "L_SizeBitmap(7x5x24, " + size + ", 4)"};
    EXPECT_EQ(log(), Log{"L_ChangeFromDIB(0x0x0, *)"} + (size.empty() ? Log() : asked) +
                         Log{"L_ChangeToDIB(7x5x24)"});
    EXPECT_EQ(Difference(original.get(), photo.get()), "");
  }
}

TEST_F(Slots, ModuleCodesBecomeTheToolkits) {
  const std::map<int, std::vector<int>> rows = {{1, {0}},
                                                {2, {-1, -3}},
                                                {8, {-2, -27}},
                                                {10, {-4, -5, -6, -7}},
                                                {11, {-10}},
                                                {12, {-14}},
                                                {13, {-8}},
                                                {14, {-9, -11, -12, -15}},
                                                {15, {-13, -16, -23}},
                                                {16, {-100, 2}},
                                                {17, {3, -17, -22, -28, -99, -101}}};
  OwnedDib image = pictures::Noise(4, 4, 24, 1);
  for (const auto& [code, module] : rows) {
    for (const int answered : module) {
      state.answers["L_InvertBitmap"] = {static_cast<double>(answered)};
      EXPECT_EQ(toolkit->InvertInPlace(image.address(), nullptr), code) << answered;
    }
  }
  std::string known;
  std::set<std::string> texts;
  for (int code = -1; code < 30; ++code) {
    if (std::string(OrvoResultName(code)) != "unknown") known += std::to_string(code) + " ";
    texts.insert(std::string(OrvoResultName(code)) + OrvoResultText(code));
  }
  EXPECT_EQ(known, "0 1 2 4 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 ");
  EXPECT_EQ(texts.size(), 20U) << "each code's own, and one for all others";
  EXPECT_STREQ(OrvoResultName(4), "ORVO_ERR_BAD_DEPTH");
}

TEST_F(Slots, DitheringModeGoesIntoTheFlagsOfDepthConversion) {
  // By mode, with the kernel's answer; the mode is kept when the kernel refuses it.
  const std::tuple<int, int, int> rows[] = {{-1, 1, 1},     {0, 1, 1},        {1, 1, 65537},
                                            {3, 1, 196609}, {8, -13, 524289}, {9, 1, 1}};
  OwnedDib photo = pictures::Noise(7, 5, 24, 1);
  const auto flags = [&](int expected) {
    DibHandle made = nullptr;
    EXPECT_EQ(toolkit->ConvertToColorRes(photo.get(), &made, 4), ORVO_OK);
    GlobalFree(made);
    EXPECT_EQ(log()[1], "L_ColorResBitmap(7x5x24, 7x5x24, 4, " + std::to_string(expected) +
                            ", 0, 0, 0, 0, 0)");
  };
  for (const auto& [mode, answered, expected] : rows) {
    state.answers["L_DefaultDithering"] = {static_cast<double>(answered)};
    EXPECT_EQ(CallSlot(toolkit.get(), 39, mode), answered == 1 ? ORVO_OK : ORVO_ERR_NOT_SUPPORTED);
    EXPECT_EQ(log(),
              Log{"L_DefaultDithering(" + std::to_string(static_cast<unsigned>(mode)) + ")"});
    flags(expected);
  }
  bind({"L_DefaultDithering"});
  EXPECT_EQ(toolkit->SetDitheringMode(3), ORVO_ERR_NO_VENDOR);
  flags(1);
}

}  // namespace
}  // namespace table
