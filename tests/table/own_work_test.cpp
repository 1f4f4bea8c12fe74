// The toolkit's own algorithms through the table: depths, working copies, handles, and what each
// failure leaves. The pixel functions themselves are told right by tests of their own.
#include <orvo/COrvoCS.h>

#include "imaging/adjust/exposure.h"
#include "imaging/adjust/histogram.h"
#include "imaging/adjust/sharpness.h"
#include "imaging/descreen/descreen_filter.h"
#include "imaging/redeye/auto_red_eye.h"
#include "imaging/redeye/reduce.h"
#include "pairs.h"

namespace table {
namespace {

void Whiten(std::uint8_t* color, int threshold) {
  if (std::min({color[0], color[1], color[2]}) >= threshold) std::memset(color, 255, 3);
}

// What an operation makes of an image that it takes as it is; from and to may be the same.
void Change(const Pair& pair, const Locked& from, const Locked& to) {
  const orvo::DibLayout shape = from.layout();
  const auto depth = static_cast<std::uint8_t>(shape.depth);
  const std::string& name = pair.name;
  if (name == "SharpnessAdjust") {
    EXPECT_EQ(orvo::ImgSharpnessAdjust(from.row(0), to.row(0), kWidth, kHeight, depth, 10), 0);
  } else if (name == "HistogramAdjust") {
    EXPECT_EQ(orvo::ImgHistogramAdjust(from.row(0), to.row(0), kWidth, kHeight, depth, 10), 0);
  } else if (name == "ExposureAdjust") {
    EXPECT_EQ(orvo::ImgExposureAdjust(from.row(0), to.row(0), kWidth, kHeight, depth, 10), 0);
  } else if (name == "ReduceRedEye") {
    orvo::ImgReduceRedEye(from.row(0), to.row(0), kWidth, kHeight, {kEyeX, kEyeY, kEyeRadius});
  } else if (name == "AutoRedEye") {
    EXPECT_EQ(orvo::ImgAutoRedEye(from.row(0), to.row(0), kWidth, kHeight), 0);
  } else if (name == "ConvertRGB") {
    static void* const module = LoadLibraryA(SEPIA_CONVERTER);
    reinterpret_cast<void (*)(void*)>(GetProcAddress(module, "vnColorConvertDIB"))(to.bytes());
  } else if (name == "WhitenessAdjust" && depth == 8) {
    for (int i = 0; i < 256; ++i) Whiten(to.bytes() + 40 + 4 * i, pair.number);
  } else if (name == "WhitenessAdjust") {
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) Whiten(to.row(y) + 3 * x, pair.number);
    }
  } else {
    orvo::DescreenFilter filter(
        {from.row(0), to.row(0), shape.stride, kWidth, kHeight, depth / 8}, 1);
    ASSERT_TRUE(filter.allocate());
    for (int y = 0; y < kHeight; ++y) filter.filterRow(y);
  }
}

class OwnWork : public ToolkitTest {
 protected:
  // By way of 24 bits where the depth is not the pixel functions' own.
  OwnedDib changed(const Pair& pair, DibHandle source, bool inPlace) {
    OwnedDib to = pictures::CopyOf(source);
    const int depth = Locked(source).header()->biBitCount & 255;
    const bool byCopy = (depth == 16 || depth == 32) && pair.name != "ConvertRGB";
    if (byCopy) toolkit->ConvertToColorResInPlace(to.address(), 24);
    {
      const OwnedDib copy = pictures::CopyOf(to.get());
      const Locked from(copy.get());
      const Locked target(to.get());
      Change(pair, inPlace || byCopy ? target : from, target);
    }
    if (byCopy) toolkit->ConvertToColorResInPlace(to.address(), depth);
    // The header is the source's.
    const Locked target(to.get());
    std::memcpy(target.bytes(), Locked(source).bytes(), orvo::kDibHeaderBytes);
    return to;
  }
  int run(const Pair& pair, DibHandle image, DibHandle* result, int number) {
    return Perform(toolkit.get(), pair, &image, result, number, nullptr);
  }
  int run(const Pair& pair, DibHandle image, DibHandle* result) {
    return run(pair, image, result, pair.number);
  }
};

const Pair& PairOf(const char* name) {
  return *std::find_if(OwnPairs().begin(), OwnPairs().end(),
                       [&](const Pair& pair) { return pair.name == name; });
}

TEST_F(OwnWork, DepthsAndHandlesInBothForms) {
  for (const Pair& pair : OwnPairs()) {
    for (const bool newHandles : {true, false}) {
      for (const int depth : {1, 4, 8, 16, 24, 32}) {
        SCOPED_TRACE(pair.name + ", bits " + std::to_string(depth));
        state.newHandles = newHandles;
        const OwnedDib source = Picture(depth);
        {
          // Fields that nobody reads go into the result; so does what is no part of the depth.
          const Locked image(source.get());
          image.header()->biClrImportant = 9;
          image.header()->biSizeImage = 77;
          const bool framed = pair.depths.size() == 3 || pair.number == 10;
          if (depth == 24 && framed) image.header()->biBitCount = 0x118;
        }
        const OwnedDib original = pictures::CopyOf(source.get());
        const OwnedDib old = pictures::Noise(7, 5, 24, 1);
        DibHandle made = old.get();
        const int code = run(pair, source.get(), &made);
        EXPECT_TRUE(IsAlive(old.get())) << "overwritten, not freed";
        EXPECT_EQ(Difference(original.get(), source.get()), "");
        if (std::count(pair.depths.begin(), pair.depths.end(), depth) == 0) {
          EXPECT_EQ(code, ORVO_ERR_BAD_DEPTH);
          EXPECT_EQ(made, source.get());
          EXPECT_EQ(run(pair, source.get(), nullptr), ORVO_ERR_BAD_DEPTH);
          EXPECT_EQ(Difference(original.get(), source.get()), "");
          continue;
        }
        ASSERT_EQ(code, ORVO_OK);
        const auto low = [](DibHandle image) { Locked(image).header()->biBitCount &= 255; };
        low(source.get());
        low(made);
        const OwnedDib result(made);
        EXPECT_EQ(Difference(changed(pair, source.get(), false).get(), made), "");
        const OwnedDib expected = changed(pair, source.get(), true);
        ASSERT_EQ(run(pair, source.get(), nullptr), ORVO_OK);
        EXPECT_EQ(Difference(expected.get(), source.get()), "") << "in place";
        EXPECT_TRUE(Difference(original.get(), made) != "" || pair.name == "ConvertRGB");
      }
    }
  }
}

TEST_F(OwnWork, WhatIsRefusedAndWhatItLeaves) {
  const OwnedDib face = Face();
  const OwnedDib old = pictures::Noise(7, 5, 24, 1);
  for (const Pair& pair : OwnPairs()) {
    SCOPED_TRACE(pair.name);
    DibHandle made = old.get();
    EXPECT_EQ(run(pair, nullptr, &made), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(made, pair.noSourceKeepsResult ? old.get() : nullptr);
    EXPECT_EQ(run(pair, nullptr, nullptr), ORVO_ERR_NULL_IMAGE);
    for (const int number : pair.refused) {
      made = old.get();
      EXPECT_EQ(run(pair, face.get(), &made, number), ORVO_ERR_OUT_OF_RANGE);
      EXPECT_EQ(made, face.get());
      EXPECT_EQ(run(pair, face.get(), nullptr, number), ORVO_ERR_OUT_OF_RANGE);
    }
    // A block that is one byte short.
    for (const int depth : pair.depths) {
      const OwnedDib whole = Picture(depth);
      const std::vector<std::uint8_t> bytes = pictures::BytesOf(whole.get());
      const OwnedDib torn(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() - 1));
      std::memcpy(Locked(torn.get()).bytes(), bytes.data(), bytes.size() - 1);
      made = old.get();
      EXPECT_EQ(run(pair, torn.get(), &made), ORVO_ERR_FAILURE);
      const bool keepsCopy = pair.name == "ConvertRGB" || pair.name == "Descreen";
      const OwnedDib copy(keepsCopy ? made : nullptr);
      EXPECT_EQ(Difference(torn.get(), made), "");
      EXPECT_EQ(made != torn.get(), keepsCopy);
      EXPECT_EQ(run(pair, torn.get(), nullptr), ORVO_ERR_FAILURE);
    }
    if (pair.name == "AutoRedEye") continue;
    // A null result, by the place of the form that has one.
    const auto toNowhere = [&](auto... arguments) {
      return CallSlot(toolkit.get(), pair.toNew, face.get(), static_cast<DibHandle*>(nullptr),
                      arguments...);
    };
    EXPECT_EQ(toNowhere(1, 1, 1, 1), ORVO_ERR_BAD_ARGUMENT);
  }
  // A range is tested before the source where there is a level, and after it for the others.
  for (const char* name : {"SharpnessAdjust", "WhitenessAdjust", "Descreen"}) {
    DibHandle made = old.get();
    EXPECT_EQ(run(PairOf(name), nullptr, &made, PairOf(name).refused.front()),
              name[0] == 'S' ? ORVO_ERR_OUT_OF_RANGE : ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(made, nullptr);
  }
  const OwnedDib color = pictures::NoiseInColor(kWidth, kHeight, 8, 1);
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->SharpnessAdjust(color.get(), &made, 5), ORVO_ERR_BAD_DEPTH);
  EXPECT_EQ(made, color.get());
}

TEST_F(OwnWork, WithoutTheKernelModule) {
  for (const std::string absent : {"ltkrn13n.dll", "L_ColorResBitmap", "L_IsGrayScaleBitmap"}) {
    bind({absent});
    for (const Pair& pair : OwnPairs()) {
      for (const int depth : pair.depths) {
        SCOPED_TRACE(absent + ", " + pair.name + ", bits " + std::to_string(depth));
        const bool framed = pair.depths.front() != 1 && pair.depths.back() == 32;
        const bool asksGray = framed && depth == 8 && absent != "L_ColorResBitmap";
        const bool converts = framed && depth % 16 == 0 && absent != "L_IsGrayScaleBitmap";
        const OwnedDib source = Picture(depth);
        const OwnedDib original = pictures::CopyOf(source.get());
        EXPECT_EQ(run(pair, source.get(), nullptr),
                  asksGray || converts ? ORVO_ERR_BAD_DEPTH : ORVO_OK);
        EXPECT_EQ(Difference(original.get(), source.get()) == "",
                  asksGray || converts || (pair.name == "ConvertRGB" && depth % 16 == 0));
      }
    }
  }
  COrvoCS alone;  // not even a binding
  for (const int depth : {8, 16, 24}) {
    const OwnedDib source = Picture(depth);
    DibHandle same = source.get();
    EXPECT_EQ(alone.CSSharpnessAdjust(same, &same, 3), ORVO_ERR_FAILURE);
    EXPECT_EQ(alone.CSReduceRedEye(same, &same, 9, 9, 3),
              depth == 24 ? ORVO_OK : ORVO_ERR_BAD_DEPTH);
  }
  const OwnedDib page = Picture(1);
  RECT rect{};
  EXPECT_EQ(alone.CSGetAutoTrimRect(page.get(), 9, &rect), ORVO_ERR_BAD_DEPTH);
}

// The numbers of an operation after a conversion that fails, and of a picture that is too small.
TEST_F(OwnWork, ConversionsThatFail) {
  for (const Pair& pair : OwnPairs()) {
    if (pair.depths.front() == 1 || pair.depths.back() != 32) continue;
    const OwnedDib source = Picture(32);
    for (const double code : {-1, -16}) {
      DibHandle made = nullptr;
      state.answers["L_ColorResBitmap"] = {code};
      EXPECT_EQ(run(pair, source.get(), &made), ORVO_ERR_BAD_DEPTH);
      EXPECT_EQ(made, source.get());
    }
  }
  const OwnedDib small = pictures::Noise(127, 200, 24, 1);
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->ExposureAdjust(small.get(), &made, 5), ORVO_ERR_FAILURE);
  const OwnedDib copy(made);
  EXPECT_NE(made, small.get());
  EXPECT_EQ(Difference(small.get(), made), "");
}

// --- Colour conversion ---------------------------------------------------------------------------

TEST_F(OwnWork, TheFirstConverterThatLoadsServes) {
  const OwnedDib source = Face();
  DibHandle made = nullptr;
  for (const char* name : {static_cast<const char*>(nullptr), "", "/no/such/module"}) {
    EXPECT_EQ(toolkit->ConvertRGB(source.get(), &made, name), ORVO_ERR_NO_CONVERTER);
    EXPECT_EQ(made, source.get());
    made = nullptr;
  }
  EXPECT_EQ(toolkit->ConvertRGBInPlace(source.get(), SEPIA_CONVERTER), ORVO_OK);
  EXPECT_EQ(toolkit->ConvertRGBInPlace(source.get(), "/no/such/module"), ORVO_OK);
  bind();
  // A failed load is tried again, a failed look-up is not.
  for (const char* name : {MODULE_WITHOUT_CONVERTER, SEPIA_CONVERTER}) {
    EXPECT_EQ(toolkit->ConvertRGB(source.get(), &made, name), ORVO_ERR_NO_CONVERTER);
    EXPECT_EQ(made, source.get());
    made = nullptr;
  }
}

// --- Red-eye -------------------------------------------------------------------------------------

TEST_F(OwnWork, RedEyesAreSearchedAtAPoint) {
  struct Row {
    int depth;
    std::uint32_t x, y;
    std::vector<std::uint32_t> found;
    int code;
  };
  const Row rows[] = {{24, kEyeX + 1, kEyeY, {kEyeX, kEyeY, kEyeRadius}, ORVO_OK},
                      {16, kEyeX, kEyeY, {kEyeX, kEyeY, kEyeRadius}, ORVO_OK},
                      {32, 79, kEyeY, {79, kEyeY, kEyeRadius}, ORVO_OK},
                      {24, 60, 50, {60, 50, 2}, ORVO_ERR_FAILURE},
                      {24, kWidth, 60, {kWidth, 60, 0}, ORVO_ERR_FAILURE},
                      {24, 60, kHeight, {60, kHeight, 0}, ORVO_ERR_FAILURE},
                      {8, kEyeX, kEyeY, {7, 8, 9}, ORVO_ERR_BAD_DEPTH}};
  for (const Row& row : rows) {
    const OwnedDib face = Picture(row.depth);
    const OwnedDib original = pictures::CopyOf(face.get());
    std::vector<std::uint32_t> n = {7, 8, 9};
    EXPECT_EQ(CallSlot(toolkit.get(), 9, face.get(), row.x, row.y, &n[0], &n[1], &n[2]), row.code);
    EXPECT_EQ(n, row.found) << row.depth << " bits at " << row.x << ", " << row.y;
    EXPECT_EQ(Difference(original.get(), face.get()), "");
    for (int i = 0; i < 3; ++i) {
      std::uint32_t* at[3] = {&n[0], &n[1], &n[2]};
      at[i] = nullptr;
      EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), 1, 1, at[0], at[1], at[2]),
                ORVO_ERR_BAD_ARGUMENT);
    }
    for (int failing = 1; failing < 9 && row.code == ORVO_OK; ++failing) {
      n = {7, 8, 9};
      PlatformFailLock(failing);
      const int code =
          toolkit->SearchRedEyeRegion(face.get(), row.x, row.y, &n[0], &n[1], &n[2]);
      PlatformFailLock(0);
      EXPECT_EQ(n, code == ORVO_OK ? row.found : (std::vector<std::uint32_t>{7, 8, 9}));
      log();
    }
  }
  EXPECT_EQ(toolkit->SearchRedEyeRegion(nullptr, 1, 1, nullptr, nullptr, nullptr),
            ORVO_ERR_NULL_IMAGE);
}

TEST_F(OwnWork, AutomaticRedEyeKeepsAResultOnlyWhenSomethingWasFound) {
  const OwnedDib empty = Ground();
  const OwnedDib before = pictures::CopyOf(empty.get());
  const OwnedDib old = pictures::Noise(7, 5, 24, 1);
  for (DibHandle first : {DibHandle{nullptr}, old.get(), empty.get()}) {
    DibHandle made = first;
    int found = 9;
    EXPECT_EQ(toolkit->AutoRedEye(empty.get(), &made, &found), ORVO_ERR_FAILURE);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(made, nullptr);
  }
  EXPECT_TRUE(IsAlive(old.get()));
  int found = 9;
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(empty.get(), &found), ORVO_ERR_FAILURE);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(Difference(before.get(), empty.get()), "");
  // After an early failure the flag is the caller's, and with it what becomes of the result.
  const OwnedDib gray = Picture(8);
  for (const int preset : {0, 1}) {
    OwnedDib stood = pictures::Noise(7, 5, 24, 1);
    DibHandle made = stood.get();
    found = preset;
    EXPECT_EQ(toolkit->AutoRedEye(nullptr, &made, &found), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(made, preset == 0 ? nullptr : stood.get());
    if (preset == 0) stood.release();
    EXPECT_EQ(toolkit->AutoRedEye(gray.get(), &made, &found), ORVO_ERR_BAD_DEPTH);
    EXPECT_EQ(made, preset == 0 ? nullptr : gray.get());
    EXPECT_EQ(found, preset);
  }
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->AutoRedEye(empty.get(), &made, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEye(empty.get(), nullptr, &found), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(empty.get(), nullptr), ORVO_ERR_BAD_ARGUMENT);
}

}  // namespace
}  // namespace table
