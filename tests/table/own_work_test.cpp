// The toolkit's own algorithms beyond what all operations share: converters, red eyes at a point,
// descreening. The pixel functions themselves are told right by tests of their own.
#include <array>

#include <orvo/COrvoCS.h>

#include "toolkit_test.h"

namespace table {
namespace {

class OwnWork : public ToolkitTest {};

TEST_F(OwnWork, WithoutABinding) {
  COrvoCS alone;
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

// With memory and without; what was not found out stays as it was.
TEST_F(OwnWork, RedEyesAreSearchedAtAPoint) {
  state.newHandles = false;
  Sum sum;
  const std::array<std::uint32_t, 3> rows[] = {
      {24, kEyeX + 1, kEyeY}, {16, kEyeX, kEyeY}, {32, 79, kEyeY},  {24, 60, 50},
      {24, kWidth, 60},       {24, 60, kHeight},  {8, kEyeX, kEyeY}};
  for (const auto& [depth, x, y] : rows) {
    const OwnedDib face = Picture(static_cast<int>(depth));
    for (int failing = 0; failing < 9; ++failing) {
      std::uint32_t found[] = {7, 8, 9};
      (failing % 2 == 0 ? PlatformFailLock : PlatformFailAllocation)(failing / 2);
      sum << CallSlot(toolkit.get(), 9, face.get(), x, y, &found[0], &found[1], &found[2]);
      PlatformFailLock(0);
      PlatformFailAllocation(0);
      sum << found << log();
    }
    sum << face.get();
    std::uint32_t n = 0;
    for (DibHandle image : {face.get(), DibHandle{}}) {
      sum << toolkit->SearchRedEyeRegion(image, 1, 1, nullptr, &n, &n)
          << toolkit->SearchRedEyeRegion(image, 1, 1, &n, nullptr, &n)
          << toolkit->SearchRedEyeRegion(image, 1, 1, &n, &n, nullptr);
    }
  }
  EXPECT_EQ(sum.hex(), "9ed27220");
}

// Each percent is reported once, a stop keeps the rows so far, ten times the amount sharpens.
TEST_F(OwnWork, DescreenReportsStopsAndSharpens) {
  Sum sum;
  for (const int height : {1, 3, 100, 101, 350}) {
    const OwnedDib print = pictures::Noise(8, height, 24, 1);
    for (const std::uint32_t amount : {0U, 30U, 100U, 101U, 429496730U, 0xFFFFFFFFU}) {
      for (const int stop : {-1, 1, 50}) {
        stopAt = stop;
        heard.clear();
        DibHandle made = nullptr;
        sum << toolkit->Descreen(print.get(), &made, 2, amount, &Watch);
        OwnedDib result(made == print.get() ? nullptr : made);
        OwnedDib same = pictures::CopyOf(print.get());
        Locked(same.get()).header()->biClrImportant = 9;  // its own header stays
        sum << toolkit->DescreenInPlace(same.get(), 2, amount, &Watch);
        sum << result.get() << same.get() << heard << log();
      }
    }
  }
  EXPECT_EQ(sum.hex(), "bb0d022f");
}

// Rows follow a header of any size, but one that says less than the plain one is not believed.
TEST_F(OwnWork, DescreenReadsTheHeaderAsItIs) {
  const OwnedDib image = pictures::Noise(12, 9, 24, 4);
  const std::vector<std::uint8_t> bytes = pictures::BytesOf(image.get());
  Sum sum;
  for (const unsigned size : {108U, 41U, 40U, 12U, 0U}) {
    for (const int height : {9, 0, -9}) {  // no rows, nothing to do
      for (const int depth : {24, 16}) {
        const std::size_t shift = std::max(size, 40U) - 40;
        const OwnedDib shifted(GlobalAlloc(orvo::kDibBlockFlags, bytes.size() + shift));
        const Locked to(shifted.get());
        std::memcpy(to.bytes(), bytes.data(), 40);
        std::memcpy(to.bytes() + 40 + shift, bytes.data() + 40, bytes.size() - 40);
        to.header()->biSize = size;
        to.header()->biHeight = height;
        to.header()->biBitCount = static_cast<std::uint16_t>(depth);
        sum << toolkit->DescreenInPlace(shifted.get(), 1, 0, nullptr) << shifted.get();
      }
    }
  }
  EXPECT_EQ(sum.hex(), "2c90110c");
}

}  // namespace
}  // namespace table
