#include <gtest/gtest.h>

#include <orvo/COrvoCS.h>

#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

TEST(ConvertRGB, RunsTheConverterOnACopyAndInPlace) {
  const std::size_t blocks = PlatformLiveBlocks();
  {
    COrvoCS toolkit;
    const orvo::OwnedDib source = pictures::Noise(9, 5, 24, 2);
    const std::vector<std::uint8_t> before = pictures::BytesOf(source.get());
    orvo::OwnedDib toned;
    ASSERT_EQ(toolkit.CSConvertRGB(source.get(), toned.receive(source), SEPIA_CONVERTER), ORVO_OK);
    EXPECT_EQ(pictures::BytesOf(source.get()), before);
    EXPECT_NE(pictures::BytesOf(toned.get()), before);

    // The first converter goes on serving: a second name is not looked at.
    DibHandle same = source.get();
    EXPECT_EQ(toolkit.CSConvertRGB(same, &same, "/no/such/module"), ORVO_OK);
    EXPECT_EQ(pictures::Difference(toned.get(), source.get()), "");
  }
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
}

TEST(ConvertRGB, ModulesThatCannotServe) {
  const orvo::OwnedDib source = pictures::Noise(9, 5, 24, 2);
  COrvoCS toolkit;
  DibHandle result = nullptr;
  EXPECT_EQ(toolkit.CSConvertRGB(source.get(), &result, "/no/such/module"), ORVO_ERR_NO_CONVERTER);
  EXPECT_EQ(result, source.get());
  EXPECT_EQ(toolkit.CSConvertRGB(source.get(), &result, nullptr), ORVO_ERR_NO_CONVERTER);
  // A failed load is tried again, a failed look-up is not.
  EXPECT_EQ(toolkit.CSConvertRGB(source.get(), &result, MODULE_WITHOUT_CONVERTER),
            ORVO_ERR_NO_CONVERTER);
  result = nullptr;
  EXPECT_EQ(toolkit.CSConvertRGB(source.get(), &result, SEPIA_CONVERTER), ORVO_ERR_NO_CONVERTER);
  EXPECT_EQ(result, source.get());
  EXPECT_EQ(PlatformHeldLocks(), 0U);
}

TEST(ConvertRGB, FailuresOfMemoryAndHandles) {
  COrvoCS toolkit;
  const orvo::OwnedDib source = pictures::Noise(9, 5, 24, 2);
  DibHandle result = &toolkit;
  EXPECT_EQ(toolkit.CSConvertRGB(nullptr, &result, SEPIA_CONVERTER), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(result, &toolkit) << "left alone";

  PlatformFailAllocation(1);
  result = nullptr;
  EXPECT_EQ(toolkit.CSConvertRGB(source.get(), &result, SEPIA_CONVERTER), ORVO_ERR_NO_MEMORY);
  PlatformFailAllocation(0);
  EXPECT_EQ(result, source.get());

  // Copying takes two locks; when the third fails the copy stays in the result handle.
  PlatformFailLock(3);
  result = nullptr;
  EXPECT_EQ(toolkit.CSConvertRGB(source.get(), &result, SEPIA_CONVERTER), ORVO_ERR_FAILURE);
  PlatformFailLock(0);
  ASSERT_NE(result, source.get());
  EXPECT_EQ(pictures::Difference(source.get(), result), "");
  GlobalFree(result);
}

}  // namespace
