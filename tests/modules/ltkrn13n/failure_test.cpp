// What every operation does when it is stopped, or has no memory: the image stays as it was.
#include "common/status.h"
#include "kernel_fixture.h"

namespace {

using kernel::KernelTest;
using kernel::Operation;
using kernel::Picture;

const Operation kOperations[] = {
    kernel::ToDepth(1, 1),
    kernel::ToDepth(4, 5),
    kernel::ToDepth(8, 7, 0),
    kernel::ToDepth(16),
    kernel::ToDepth(32),
    [](auto* bitmap) { return L_GrayScaleBitmap(bitmap, 8); },
    [](auto* bitmap) { return L_RotateBitmap(bitmap, 9000, kRotateGrows, 0); },
    [](auto* bitmap) { return L_RotateBitmap(bitmap, 1234, 0, 0); },
    [](auto* bitmap) { return L_SizeBitmap(bitmap, 50, 70, kSizeNearest); },
    [](auto* bitmap) { return L_SizeBitmap(bitmap, 50, 700, kSizeBest); },
    [](auto* bitmap) { return L_TrimBitmap(bitmap, 1, 2, 10, 20); },
};

struct Followed {
  int calls = 0;
  int last = -1;
  int stopAt = 1000;
  bool rises = true;
};

int Follow(int percent, void* userData) {
  Followed& followed = *static_cast<Followed*>(userData);
  followed.rises = followed.rises && percent > followed.last && percent <= 100;
  followed.last = percent;
  ++followed.calls;
  return percent >= followed.stopAt ? 16 : 1;
}

TEST_F(KernelTest, progress_rises_to_100_and_a_stop_leaves_the_image) {
  for (const int depth : {1, 8, 24}) {
    const orvo::OwnedDib source = Picture(20, 333, depth);
    for (const Operation& operation : kOperations) {
      for (const int stopAt : {0, 1, 57, 100, 1000}) {
        Followed followed{.stopAt = stopAt};
        L_SetStatusCallBack(Follow, &followed);
        orvo::OwnedDib got = pictures::CopyOf(source.get());
        const int code = kernel::Apply(operation, got);
        L_SetStatusCallBack(nullptr, nullptr);
        EXPECT_TRUE(followed.rises);
        EXPECT_GE(followed.calls, 1);
        if (stopAt <= 100) {
          ASSERT_EQ(code, kModuleAborted);
          ASSERT_EQ(pictures::Difference(source.get(), got.get()), "");
        } else {
          ASSERT_EQ(code, kModuleSuccess);
          EXPECT_EQ(followed.last, 100);
        }
      }
    }
  }
}

TEST_F(KernelTest, no_memory_or_no_lock_leaves_the_image) {
  for (const int depth : {1, 8, 24}) {
    const orvo::OwnedDib source = Picture(40, 30, depth);
    for (const Operation& operation : kOperations) {
      for (void (*const fail)(int) noexcept :
           {+PlatformFailAllocation, +PlatformFailLock, +kernel::FailNew}) {
        int code = kModuleFailure;
        for (int n = 1; code != kModuleSuccess; ++n) {
          ASSERT_LT(n, 400);
          struct_LEAD_Bitmap bitmap{};
          L_ChangeFromDIB(&bitmap, pictures::CopyOf(source.get()).release());
          fail(n);
          code = operation(&bitmap);
          fail(0);
          const orvo::OwnedDib got(L_ChangeToDIB(&bitmap));
          if (code == kModuleSuccess) break;
          ASSERT_TRUE(code == kModuleNoMemory || code == kModuleNoBitmap) << code;
          ASSERT_EQ(pictures::Difference(source.get(), got.get()), "");
        }
      }
    }
  }
}

TEST_F(KernelTest, an_operation_that_keeps_the_size_makes_one_block) {
  orvo::OwnedDib image = Picture(40, 30, 24);
  const auto turn = [](auto* bitmap) { return L_RotateBitmap(bitmap, 1234, 0, 0); };
  PlatformFailAllocation(2);
  EXPECT_EQ(kernel::Apply(turn, image), kModuleSuccess);
  PlatformFailAllocation(0);
}

TEST_F(KernelTest, bitmaps_that_hold_nothing_and_arguments_out_of_range_are_refused) {
  struct_LEAD_Bitmap nothing{};
  for (const Operation& operation : kOperations) {
    EXPECT_EQ(operation(nullptr), kModuleNoBitmap);
    EXPECT_EQ(operation(&nothing), kModuleNoBitmap);
  }
  EXPECT_EQ(L_FreeBitmap(&nothing), kModuleSuccess);
  orvo::OwnedDib image = Picture(8, 8, 24);
  int number = 0;
  for (const int bits : {-1, 0, 2, 15, 64}) {
    EXPECT_EQ(kernel::Apply(kernel::ToDepth(bits), image), kModuleBadParameter);
  }
  EXPECT_EQ(kernel::Apply([](auto* bitmap) { return L_GrayScaleBitmap(bitmap, 4); }, image),
            kModuleBadParameter);
  const auto ownPalette = [&](auto* bitmap) {
    return L_ColorResBitmap(bitmap, bitmap, 8, 0, &number, nullptr, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(kernel::Apply(ownPalette, image), kModuleBadParameter);
}

}  // namespace
