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

// What an operation makes of an image that it takes as it is; from and to may be the same.
void Change(const Pair& pair, const Locked& from, const Locked& to) {
  const orvo::DibLayout shape = from.layout();
  const auto depth = static_cast<std::uint8_t>(shape.depth);
  if (pair.number == 10) {
    const auto adjust = pair.is("Sharpness")   ? orvo::ImgSharpnessAdjust
                        : pair.is("Histogram") ? orvo::ImgHistogramAdjust
                                               : orvo::ImgExposureAdjust;
    EXPECT_EQ(adjust(from.row(0), to.row(0), kWidth, kHeight, depth, 10), 0);
  } else if (pair.is("Reduce")) {
    orvo::ImgReduceRedEye(from.row(0), to.row(0), kWidth, kHeight, {kEyeX, kEyeY, kEyeRadius});
  } else if (pair.is("Auto")) {
    EXPECT_EQ(orvo::ImgAutoRedEye(from.row(0), to.row(0), kWidth, kHeight), 0);
  } else if (pair.is("Convert")) {
    static void* const module = LoadLibraryA(SEPIA_CONVERTER);
    reinterpret_cast<void (*)(void*)>(GetProcAddress(module, "vnColorConvertDIB"))(to.bytes());
  } else if (pair.is("Whiteness")) {
    // 256 colours of a palette, or all pixels.
    const int width = depth == 8 ? 256 : kWidth;
    for (int i = 0; i < (depth == 8 ? 256 : kWidth * kHeight); ++i) {
      std::uint8_t* const color =
          depth == 8 ? to.bytes() + 40 + 4 * i : to.row(i / width) + i % width * 3;
      if (std::min({color[0], color[1], color[2]}) >= pair.number) std::memset(color, 255, 3);
    }
  } else {
    orvo::DescreenFilter filter({from.row(0), to.row(0), shape.stride, kWidth, kHeight, depth / 8},
                                1);
    ASSERT_TRUE(filter.allocate());
    for (int y = 0; y < kHeight; ++y) filter.filterRow(y);
  }
}

class OwnWork : public ToolkitTest {
 protected:
  // By way of 24 bits where the depth is not the pixel functions' own.
  OwnedDib changed(const Pair& pair, DibHandle source, bool inPlace) {
    OwnedDib to = pictures::CopyOf(source);
    const int depth = Locked(source).header()->biBitCount;
    const bool byCopy = pair.framed() && depth % 16 == 0;
    if (byCopy) toolkit->ConvertToColorResInPlace(to.address(), 24);
    {
      const OwnedDib copy = pictures::CopyOf(to.get());
      const Locked from(copy.get());
      const Locked target(to.get());
      Change(pair, inPlace || byCopy ? target : from, target);
    }
    if (byCopy) toolkit->ConvertToColorResInPlace(to.address(), depth);
    std::memcpy(Locked(to.get()).bytes(), Locked(source).bytes(), orvo::kDibHeaderBytes);
    return to;
  }
  int run(const Pair& pair, DibHandle image, DibHandle* result, int number) {
    return Perform(toolkit.get(), pair, &image, result, number);
  }
  int run(const Pair& pair, DibHandle image, DibHandle* result) {
    return run(pair, image, result, pair.number);
  }
};

TEST_F(OwnWork, DepthsAndHandlesInBothForms) {
  for (const Pair& pair : OwnPairs()) {
    for (const int depth : {1, 4, 8, 16, 24, 32, -16, -24}) {
      SCOPED_TRACE(pair.name + ", bits " + std::to_string(depth));
      state.newHandles = depth > 0;
      const OwnedDib source = Picture(std::abs(depth));
      const auto bits = [](DibHandle image) -> std::uint16_t& {
        return Locked(image).header()->biBitCount;
      };
      // Fields that nobody reads go into the result; so does what is no part of the depth.
      Locked(source.get()).header()->biSizeImage = 77;
      if (depth == 24 && pair.framed()) bits(source.get()) = 0x118;
      const OwnedDib original = pictures::CopyOf(source.get());
      const OwnedDib old = pictures::Noise(7, 5, 24, 1);
      DibHandle made = old.get();
      const int code = run(pair, source.get(), &made);
      EXPECT_TRUE(IsAlive(old.get())) << "overwritten, not freed";
      EXPECT_EQ(Difference(original.get(), source.get()), "");
      if (std::count(pair.depths.begin(), pair.depths.end(), std::abs(depth)) == 0) {
        EXPECT_EQ(code, ORVO_ERR_BAD_DEPTH);
        EXPECT_EQ(made, source.get());
        EXPECT_EQ(run(pair, source.get(), nullptr), ORVO_ERR_BAD_DEPTH);
        EXPECT_EQ(Difference(original.get(), source.get()), "");
        continue;
      }
      ASSERT_EQ(code, ORVO_OK);
      const OwnedDib result(made);
      EXPECT_EQ(bits(made), bits(source.get()));
      bits(made) = bits(source.get()) &= 255;
      EXPECT_EQ(Difference(changed(pair, source.get(), false).get(), made), "");
      EXPECT_TRUE(pair.is("Convert") || !Difference(original.get(), made).empty());
      const OwnedDib expected = changed(pair, source.get(), true);
      ASSERT_EQ(run(pair, source.get(), nullptr), ORVO_OK);
      EXPECT_EQ(Difference(expected.get(), source.get()), "") << "in place";
    }
  }
}

TEST_F(OwnWork, WhatIsRefusedAndWhatItLeaves) {
  const OwnedDib face = Face();
  const OwnedDib old = pictures::Noise(7, 5, 24, 1);
  for (const Pair& pair : OwnPairs()) {
    SCOPED_TRACE(pair.name);
    const bool keeps = pair.is("Convert") || pair.is("Reduce") || pair.is("Auto");
    DibHandle made = old.get();
    EXPECT_EQ(run(pair, nullptr, &made), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(made, keeps ? old.get() : nullptr);
    for (const int number : pair.refused) {
      // A level is tested before the source, the numbers of the others after it.
      EXPECT_EQ(run(pair, nullptr, &made, number),
                pair.framed() ? ORVO_ERR_OUT_OF_RANGE : ORVO_ERR_NULL_IMAGE);
      EXPECT_EQ(std::exchange(made, old.get()), nullptr);
      EXPECT_EQ(run(pair, face.get(), &made, number), ORVO_ERR_OUT_OF_RANGE);
      EXPECT_EQ(made, face.get());
    }
    for (const int depth : pair.depths) {  // a block that is one byte short
      const std::vector<std::uint8_t> bytes = pictures::BytesOf(Picture(depth).get());
      const OwnedDib torn(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() - 1));
      std::memcpy(Locked(torn.get()).bytes(), bytes.data(), bytes.size() - 1);
      made = old.get();
      EXPECT_EQ(run(pair, torn.get(), &made), ORVO_ERR_FAILURE);
      const bool keepsCopy = pair.is("Convert") || pair.is("Descreen");
      const OwnedDib copy(keepsCopy ? made : nullptr);
      EXPECT_EQ(made != torn.get(), keepsCopy);
      EXPECT_EQ(Difference(torn.get(), made), "");
      EXPECT_EQ(run(pair, torn.get(), nullptr), ORVO_ERR_FAILURE);
    }
    DibHandle* const nowhere = nullptr;
    EXPECT_TRUE(pair.is("Auto") || CallSlot(toolkit.get(), pair.toNew, face.get(), nowhere, 1, 1, 1,
                                            1) == ORVO_ERR_BAD_ARGUMENT);
  }
  DibHandle made = nullptr;
  const OwnedDib color = pictures::NoiseInColor(kWidth, kHeight, 8, 1);
  EXPECT_EQ(toolkit->SharpnessAdjust(color.get(), &made, 5), ORVO_ERR_BAD_DEPTH);
  EXPECT_EQ(std::exchange(made, nullptr), color.get());
  const OwnedDib small = pictures::Noise(127, 200, 24, 1);
  EXPECT_EQ(toolkit->ExposureAdjust(small.get(), &made, 5), ORVO_ERR_FAILURE);
  EXPECT_NE(made, small.get());
  EXPECT_EQ(Difference(small.get(), OwnedDib(made).get()), "");
}

TEST_F(OwnWork, WithoutTheKernelModule) {
  for (const std::string absent : {"ltkrn13n.dll", "L_ColorResBitmap", "L_IsGrayScaleBitmap"}) {
    bind({absent});
    for (const Pair& pair : OwnPairs()) {
      for (const int depth : pair.depths) {
        SCOPED_TRACE(absent + ", " + pair.name + ", bits " + std::to_string(depth));
        const bool fails = pair.framed() && ((depth == 8 && absent != "L_ColorResBitmap") ||
                                             (depth % 16 == 0 && absent != "L_IsGrayScaleBitmap"));
        const OwnedDib source = Picture(depth);
        EXPECT_EQ(run(pair, source.get(), nullptr), fails ? ORVO_ERR_BAD_DEPTH : ORVO_OK);
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
  RECT rect{};
  EXPECT_EQ(alone.CSGetAutoTrimRect(Picture(1).get(), 9, &rect), ORVO_ERR_BAD_DEPTH);
}

TEST_F(OwnWork, TheFirstConverterThatLoadsServes) {
  const OwnedDib source = Face();
  DibHandle made = nullptr;
  const auto fails = [&](const char* name) {
    EXPECT_EQ(toolkit->ConvertRGB(source.get(), &made, name), ORVO_ERR_NO_CONVERTER);
    EXPECT_EQ(std::exchange(made, nullptr), source.get());
  };
  for (const char* name : {static_cast<const char*>(nullptr), "", "/no/such/module"}) fails(name);
  EXPECT_EQ(toolkit->ConvertRGBInPlace(source.get(), SEPIA_CONVERTER), ORVO_OK);
  EXPECT_EQ(toolkit->ConvertRGBInPlace(source.get(), "/no/such/module"), ORVO_OK);
  log();
  toolkit.reset();
  EXPECT_EQ(log().back(), "unload another");
  bind();  // a failed load is tried again, a failed look-up is not
  for (const char* name : {MODULE_WITHOUT_CONVERTER, SEPIA_CONVERTER}) fails(name);
}

TEST_F(OwnWork, RedEyesAreSearchedAtAPoint) {
  using N = std::vector<std::uint32_t>;
  state.newHandles = false;
  // Depth, point, what is found, code.
  const std::tuple<int, N, N, int> rows[] = {
      {24, {kEyeX + 1, kEyeY}, {kEyeX, kEyeY, kEyeRadius}, ORVO_OK},
      {16, {kEyeX, kEyeY}, {kEyeX, kEyeY, kEyeRadius}, ORVO_OK},
      {32, {79, kEyeY}, {79, kEyeY, kEyeRadius}, ORVO_OK},
      {24, {60, 50}, {60, 50, 2}, ORVO_ERR_FAILURE},
      {24, {kWidth, 60}, {kWidth, 60, 0}, ORVO_ERR_FAILURE},
      {24, {60, kHeight}, {60, kHeight, 0}, ORVO_ERR_FAILURE},
      {8, {kEyeX, kEyeY}, {7, 8, 9}, ORVO_ERR_BAD_DEPTH}};
  for (const auto& [depth, at, found, code] : rows) {
    const OwnedDib face = Picture(depth);
    N n = {7, 8, 9};
    EXPECT_EQ(CallSlot(toolkit.get(), 9, face.get(), at[0], at[1], &n[0], &n[1], &n[2]), code);
    EXPECT_EQ(n, found) << depth << " bits";
    for (int failing = 1; failing < 9 && code == ORVO_OK; ++failing) {
      n = {7, 8, 9};
      (failing % 2 == 0 ? PlatformFailLock : PlatformFailAllocation)(failing / 2);
      const int failed = toolkit->SearchRedEyeRegion(face.get(), at[0], at[1], &n[0], &n[1], &n[2]);
      PlatformFailLock(0);
      PlatformFailAllocation(0);
      EXPECT_EQ(n, failed == ORVO_OK ? found : (N{7, 8, 9}));
      log();
    }
    EXPECT_EQ(Difference(Picture(depth).get(), face.get()), "");
  }
  const OwnedDib face = Face();
  for (std::uint32_t n = 0; n < 3; ++n) {
    std::uint32_t* const to[] = {n == 0 ? nullptr : &n, n == 1 ? nullptr : &n,
                                 n == 2 ? nullptr : &n};
    EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), 1, 1, to[0], to[1], to[2]),
              ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(toolkit->SearchRedEyeRegion(nullptr, 1, 1, to[0], to[1], to[2]), ORVO_ERR_NULL_IMAGE);
  }
}

// After an early failure the flag is the caller's, and with it what becomes of the result.
TEST_F(OwnWork, AutomaticRedEyeKeepsAResultOnlyWhenSomethingWasFound) {
  const OwnedDib empty = Ground();
  const OwnedDib gray = Picture(8);
  for (const int preset : {0, 1}) {
    OwnedDib old = pictures::Noise(7, 5, 24, 1);
    for (DibHandle made : {DibHandle{nullptr}, old.get(), empty.get()}) {
      int found = preset;
      EXPECT_EQ(toolkit->AutoRedEye(empty.get(), &made, &found), ORVO_ERR_FAILURE);
      EXPECT_EQ(found, 0);
      EXPECT_EQ(made, nullptr);
    }
    int found = preset;
    DibHandle made = old.get();
    EXPECT_EQ(toolkit->AutoRedEye(nullptr, &made, &found), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(made, preset == 0 ? nullptr : old.get());
    EXPECT_EQ(IsAlive(old.get()), preset == 1);
    if (preset == 0) old.release();
    EXPECT_EQ(toolkit->AutoRedEye(gray.get(), &made, &found), ORVO_ERR_BAD_DEPTH);
    EXPECT_EQ(made, preset == 0 ? nullptr : gray.get());
    EXPECT_EQ(std::exchange(found, 9), preset);
    EXPECT_EQ(toolkit->AutoRedEyeInPlace(empty.get(), &found), ORVO_ERR_FAILURE);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(Difference(Ground().get(), empty.get()), "");
    EXPECT_EQ(toolkit->AutoRedEye(empty.get(), &made, nullptr), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(toolkit->AutoRedEye(empty.get(), nullptr, &found), ORVO_ERR_BAD_ARGUMENT);
    EXPECT_EQ(toolkit->AutoRedEyeInPlace(empty.get(), nullptr), ORVO_ERR_BAD_ARGUMENT);
  }
}

// --- Descreen ------------------------------------------------------------------------------------

TEST_F(OwnWork, DescreenReportsEachPercentOnceAndStops) {
  for (const int height : {1, 3, 100, 101, 350}) {
    const OwnedDib print = pictures::Noise(4, height, 8, 1);
    heard.clear();
    ASSERT_EQ(toolkit->DescreenInPlace(print.get(), 0, 0, &Watch), ORVO_OK);
    std::vector<int> expected;
    for (int y = 0; y < height; ++y) {
      const int percent = (100 * y + height - 1) / height;
      if (expected.empty() || percent > expected.back()) expected.push_back(percent);
    }
    EXPECT_EQ(heard, expected) << height << " rows";
  }
  const OwnedDib print = pictures::Noise(8, 100, 24, 1);
  const std::vector<std::uint8_t> before = pictures::BytesOf(print.get());
  stopAt = 50;
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->Descreen(print.get(), &made, 0, 9, &Watch), ORVO_ERR_CANCELLED);
  EXPECT_EQ(made, print.get());
  EXPECT_EQ(pictures::BytesOf(print.get()), before);
  EXPECT_EQ(toolkit->DescreenInPlace(print.get(), 0, 9, &Watch), ORVO_ERR_CANCELLED);
  const std::vector<std::uint8_t> after = pictures::BytesOf(print.get());
  const auto [a, b] = std::mismatch(after.rbegin(), after.rend(), before.rbegin());
  EXPECT_EQ((after.rend() - a - 1 - 40) / 24, 49) << "the last row that was filtered";
  EXPECT_EQ(log(), Log()) << "no sharpening after a stop";
}

TEST_F(OwnWork, DescreenSharpensByTenTimesTheAmount) {
  const OwnedDib print = pictures::Noise(40, 30, 24, 3);
  const auto descreened = [&](std::uint32_t amount, int code) {
    DibHandle made = nullptr;
    EXPECT_EQ(toolkit->Descreen(print.get(), &made, 2, amount, nullptr), code) << amount;
    OwnedDib result(made);
    OwnedDib same = pictures::CopyOf(print.get());
    Locked(same.get()).header()->biClrImportant = 9;  // its own header stays
    EXPECT_EQ(toolkit->DescreenInPlace(same.get(), 2, amount, nullptr), code) << amount;
    EXPECT_EQ(std::exchange(Locked(same.get()).header()->biClrImportant, 0), 9U);
    return std::pair(std::move(result), std::move(same));
  };
  auto expected = descreened(0, ORVO_OK);
  for (const std::uint32_t amount : {101U, 429496730U, 0xFFFFFFFFU}) {
    const auto left = descreened(amount, ORVO_ERR_OUT_OF_RANGE);
    EXPECT_EQ(Difference(expected.first.get(), left.first.get()), "");
    EXPECT_EQ(Difference(expected.second.get(), left.second.get()), "");
  }
  for (OwnedDib* const smooth : {&expected.first, &expected.second}) {
    EXPECT_EQ(toolkit->LeadSharpnessAdjustInPlace(smooth->address(), 300, nullptr), ORVO_OK);
  }
  const auto sharp = descreened(30, ORVO_OK);
  EXPECT_EQ(Difference(expected.first.get(), sharp.first.get()), "");
  EXPECT_EQ(Difference(expected.second.get(), sharp.second.get()), "");
  DibHandle made = nullptr;
  EXPECT_EQ(toolkit->Descreen(print.get(), &made, 2, 100, &Watch), ORVO_OK);
  GlobalFree(made);
  EXPECT_EQ(heard.back(), 100) << "the sharpening has the callback too";
  log();
}

TEST_F(OwnWork, DescreenReadsTheHeaderAsItIs) {
  const OwnedDib image = pictures::Noise(12, 9, 24, 4);
  const std::vector<std::uint8_t> bytes = pictures::BytesOf(image.get());
  BITMAPINFOHEADER& header = *Locked(image.get()).header();
  for (const int height : {0, -9}) {  // no rows, nothing to do
    header.biHeight = height;
    EXPECT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_OK);
    header.biBitCount = 16;
    EXPECT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_ERR_FAILURE);
    header.biBitCount = 24;
  }
  header.biHeight = 9;
  ASSERT_EQ(toolkit->DescreenInPlace(image.get(), 1, 0, nullptr), ORVO_OK);
  // Rows follow a header of any size, but one that says less than the plain one is not believed.
  for (const unsigned size : {108U, 41U, 12U, 0U}) {
    const std::size_t shift = std::max(size, 40U) - 40;
    const OwnedDib shifted(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() + shift));
    std::uint8_t* const to = Locked(shifted.get()).bytes();
    std::memcpy(to, bytes.data(), 40);
    std::memcpy(to + 40 + shift, bytes.data() + 40, bytes.size() - 40);
    Locked(shifted.get()).header()->biSize = size;
    ASSERT_EQ(toolkit->DescreenInPlace(shifted.get(), 1, 0, nullptr), ORVO_OK);
    EXPECT_EQ(std::memcmp(to + 40 + shift, Locked(image.get()).row(0), bytes.size() - 40), 0)
        << size;
  }
}

}  // namespace
}  // namespace table
