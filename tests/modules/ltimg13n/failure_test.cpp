#include <gtest/gtest.h>

#include <limits>

#include "adjusted.h"
#include "platform/fault_injection.h"

namespace {

using adjusted::Adjust;
using adjusted::Apply;
using adjusted::Picture;
using adjusted::Watched;

// One for each way in which images are changed.
const Adjust kWays[] = {L_InvertBitmap,
                        [](auto* bitmap) { return L_ChangeBitmapHue(bitmap, 4000); },
                        [](auto* bitmap) { return L_SharpenBitmap(bitmap, 500); }};

struct Progress {
  int stopAt;
  int last = -1;
  bool rises = true;
};
Progress progress;

int Follow(int percent, void* /*userData*/) {
  progress.rises = progress.rises && percent > progress.last && percent <= 100;
  progress.last = percent;
  return percent >= progress.stopAt ? 16 : 1;
}

// Nothing may be left behind.
class Failure : public testing::Test {
 public:
  ~Failure() override {
    EXPECT_EQ(PlatformLiveBlocks(), blocks_);
    EXPECT_EQ(PlatformHeldLocks(), locks_);
  }

 private:
  std::size_t blocks_ = PlatformLiveBlocks();
  std::size_t locks_ = PlatformHeldLocks();
};

TEST_F(Failure, progress_rises_to_100_and_a_stop_leaves_the_image) {
  const Watched callback(Follow);
  for (const adjusted::Kind kind : adjusted::kKinds) {
    const orvo::OwnedDib source = Picture(kind, 9, 333);
    for (const Adjust& adjust : kWays) {
      for (const int stopAt : {0, 1, 57, 100, 101}) {
        progress = {stopAt};
        orvo::OwnedDib got = pictures::CopyOf(source.get());
        ASSERT_EQ(Apply(adjust, got), stopAt > 100 ? kModuleSuccess : kModuleAborted);
        EXPECT_TRUE(progress.rises);
        EXPECT_GE(progress.last, std::min(stopAt, 100));
        if (stopAt > 100) continue;
        ASSERT_EQ(pictures::Difference(source.get(), got.get()), "");
      }
    }
  }
}

TEST_F(Failure, only_a_callback_costs_a_working_copy_and_the_record_keeps_its_resolution) {
  for (const StatusCallback status : {StatusCallback{nullptr}, StatusCallback{adjusted::GoOn}}) {
    const Watched callback(status);
    for (const Adjust& adjust : kWays) {
      struct_LEAD_Bitmap bitmap{};
      L_ChangeFromDIB(&bitmap, Picture({24, false}, 40, 30).release());
      bitmap.xResolution = 72;  // newer than the header's
      PlatformFailAllocation(1);
      EXPECT_EQ(adjust(&bitmap), status == nullptr ? kModuleSuccess : kModuleNoMemory);
      PlatformFailAllocation(0);
      EXPECT_EQ(adjust(&bitmap), kModuleSuccess);
      EXPECT_EQ(bitmap.xResolution, 72);
      L_FreeBitmap(&bitmap);
    }
  }
}

TEST_F(Failure, no_memory_or_no_lock_leaves_the_image) {
  const Watched callback(adjusted::GoOn);
  const orvo::OwnedDib source = Picture({24, false}, 40, 30);
  for (const Adjust& adjust : kWays) {
    for (const auto fail : {PlatformFailAllocation, PlatformFailLock}) {
      int failures = 0;
      for (int code = kModuleFailure; code != kModuleSuccess; ++failures) {
        orvo::OwnedDib got = pictures::CopyOf(source.get());
        const auto failing = [&](auto* bitmap) {
          fail(failures + 1);
          code = adjust(bitmap);
          fail(0);
          return code;
        };
        Apply(failing, got);
        if (code == kModuleSuccess) break;
        ASSERT_TRUE(code == kModuleNoMemory || code == kModuleNoBitmap) << code;
        ASSERT_EQ(pictures::Difference(source.get(), got.get()), "");
      }
      EXPECT_GT(failures, 0);
    }
  }
}

TEST_F(Failure, images_that_cannot_be_adjusted_stay_as_they_are) {
  for (const Adjust& adjust : kWays) {
    struct_LEAD_Bitmap bitmap{};
    EXPECT_EQ(adjust(nullptr), kModuleNoBitmap);
    EXPECT_EQ(adjust(&bitmap), kModuleNoBitmap);
    const auto expectRefused = [&](orvo::OwnedDib image, int code) {
      const std::vector<std::uint8_t> before = pictures::BytesOf(image.get());
      bitmap.block = image.get();
      EXPECT_EQ(adjust(&bitmap), code);
      EXPECT_EQ(bitmap.block, image.get());
      EXPECT_EQ(pictures::BytesOf(image.get()), before);
    };
    expectRefused(Picture({1, false}, 33, 5), kModuleDepthNotSupported);
    for (const int height : {0, -5, 6, std::numeric_limits<int>::max()}) {
      orvo::OwnedDib lying = Picture({24, false}, 33, 5);
      pictures::Locked(lying.get()).header()->biHeight = height;
      expectRefused(std::move(lying), kModuleNoBitmap);
    }
  }
}

TEST_F(Failure, arguments_out_of_range_leave_the_image) {
  const std::array<unsigned, 256> table{};
  std::vector<Adjust> refused{[](auto* bitmap) { return L_GammaCorrectBitmap(bitmap, 0); }};
  for (const int change : {-1001, 1001, std::numeric_limits<int>::min()}) {
    for (const auto entry : {L_ChangeBitmapContrast, L_ChangeBitmapIntensity,
                             L_ChangeBitmapSaturation, L_SharpenBitmap}) {
      refused.emplace_back([=](auto* bitmap) { return entry(bitmap, change); });
    }
  }
  const auto remap = [&](const unsigned* entries, unsigned length, int channel) {
    refused.emplace_back(
        [=](auto* bitmap) { return L_RemapBitmapIntensity(bitmap, entries, length, channel); });
  };
  remap(nullptr, 256, 0);
  remap(table.data(), 255, 0);
  remap(table.data(), 256, -1);
  remap(table.data(), 256, 4);
  const orvo::OwnedDib source = Picture({24, false}, 20, 10);
  for (const Adjust& adjust : refused) {
    orvo::OwnedDib got = pictures::CopyOf(source.get());
    EXPECT_EQ(Apply(adjust, got), kModuleBadParameter);
    EXPECT_EQ(pictures::Difference(source.get(), got.get()), "");
  }
}

}  // namespace
