// Who frees a block, and when: results that are received, handed on and left behind by failures.
#include <gtest/gtest.h>

#include <orvo/raii.h>

#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace {

TEST(OwnedDib, EveryBlockIsFreedOnce) {
  const std::size_t blocks = PlatformLiveBlocks();
  {
    const orvo::OwnedInstance toolkit;
    orvo::OwnedDib photo = pictures::Noise(20, 10, 24, 1);
    const DibHandle source = photo.get();
    orvo::OwnedDib result = pictures::Noise(3, 3, 24, 1);
    // A failure leaves the source in the result, for nobody to free twice.
    for (int times = 0; times < 2; ++times) {
      EXPECT_EQ(toolkit->SharpnessAdjust(source, result.receive(photo), 11), ORVO_ERR_OUT_OF_RANGE);
      EXPECT_FALSE(result);
      EXPECT_EQ(result.get(), nullptr);
    }
    EXPECT_EQ(*result.address(), nullptr);
    EXPECT_EQ(toolkit->SharpnessAdjust(source, result.receive(source), 11), ORVO_ERR_OUT_OF_RANGE);
    orvo::OwnedDib moved = std::move(result);
    EXPECT_FALSE(moved);
    EXPECT_NE(GlobalSize(source), 0U);
    // In its owner's own variable it stays where it is.
    EXPECT_EQ(toolkit->SharpnessAdjust(source, photo.receive(photo), 11), ORVO_ERR_OUT_OF_RANGE);
    EXPECT_EQ(photo.get(), source);
    EXPECT_EQ(toolkit->SharpnessAdjust(source, moved.receive(photo), 10), ORVO_OK);
    EXPECT_TRUE(moved);
    result = std::move(moved);
    EXPECT_EQ(GlobalFree(result.release()), nullptr);
  }
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
}

}  // namespace
