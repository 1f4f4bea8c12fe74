// How images enter and leave bitmaps, and what every operation does when it is watched, stopped,
// out of memory or given nothing: the image then stays as it was.
#include <limits>

#include "common/kernel_services.h"
#include "common/status.h"
#include "modules/fixture.h"

namespace {

using rig::kKinds;
using rig::ModuleTest;
using rig::Operation;
using rig::OwnedDib;
using rig::Picture;
using rig::View;

TEST_F(ModuleTest, a_block_is_taken_over_and_given_back_as_it_is) {
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = Picture(kind, 13, 5);
    const OwnedDib before = pictures::CopyOf(source.get());
    struct_LEAD_Bitmap bitmap;
    bitmap.block = &bitmap;  // what an uninitialised record holds is of no account
    PlatformFailAllocation(1);
    ASSERT_EQ(L_ChangeFromDIB(&bitmap, source.get()), kModuleSuccess);
    EXPECT_EQ((std::array{bitmap.width, bitmap.height, bitmap.bitsPerPixel}),
              (std::array{13, 5, kind.depth}));
    EXPECT_EQ(bitmap.xResolution, 300);
    EXPECT_EQ(bitmap.yResolution, 300);
    EXPECT_EQ(L_IsGrayScaleBitmap(&bitmap) != 0, kind.gray);
    EXPECT_EQ(L_ChangeToDIB2(&bitmap, 0), source.get());
    PlatformFailAllocation(0);
    EXPECT_EQ(bitmap.block, nullptr);
    EXPECT_EQ(bitmap.width, 0);
    EXPECT_EQ(pictures::Difference(before.get(), source.get()), "");
  }
}

TEST_F(ModuleTest, copies_hold_the_whole_image_whatever_the_header_counts) {
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = Picture(kind, 13, 5);
    struct_LEAD_Bitmap bitmap{};
    const rig::Locked image(source.get());
    image.header()->biClrUsed = 2;
    image.header()->biSizeImage = 7;
    const auto convert = [&] { return L_ConvertFromDIB(&bitmap, image.header(), image.row(0)); };
    rig::FailEach(convert, [&](int code) {
      EXPECT_EQ(bitmap.block != nullptr, code == kModuleSuccess);
      L_FreeBitmap(&bitmap);
    });
    ASSERT_EQ(convert(), kModuleSuccess);
    const OwnedDib copy(L_ConvertToDIB(&bitmap));
    EXPECT_NE(copy.get(), bitmap.block);
    EXPECT_EQ(pictures::Difference(source.get(), copy.get()), "");
    const OwnedDib own(L_ChangeToDIB(&bitmap));
    EXPECT_NE(own.get(), source.get());
    EXPECT_EQ(pictures::Difference(source.get(), own.get()), "");
  }
}

TEST_F(ModuleTest, only_a_resolution_that_was_changed_reaches_the_header) {
  OwnedDib dib = Picture({24, false}, 4, 4);
  rig::Locked(dib.get()).header()->biXPelsPerMeter = 11812;
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, dib.release());
  EXPECT_EQ(bitmap.xResolution, 300);
  bitmap.yResolution = 150;
  ASSERT_EQ(L_SizeBitmap(&bitmap, 8, 2, kSizeNearest), kModuleSuccess);
  EXPECT_EQ(bitmap.yResolution, 150);
  const OwnedDib copy(L_ConvertToDIB(&bitmap));
  const OwnedDib own(L_ChangeToDIB(&bitmap));
  for (const OwnedDib* image : {&copy, &own}) {
    EXPECT_EQ(View(*image).header().biXPelsPerMeter, 11812);
    EXPECT_EQ(View(*image).header().biYPelsPerMeter, 5906);
  }
}

TEST_F(ModuleTest, a_block_that_cannot_be_used_is_held_and_given_back) {
  OwnedDib freed = Picture({24, false}, 4, 4);
  int number = 0;
  std::vector<DibHandle> handles{nullptr, freed.get(), &number};
  freed.reset();
  struct Lie {
    int width, height, depth;
  };
  constexpr int kMost = std::numeric_limits<int>::max();
  std::vector<OwnedDib> lies;
  for (const Lie& lie : {Lie{0, 4, 24}, Lie{4, -4, 24}, Lie{4, 5, 24}, Lie{4, 4, 2}, Lie{4, 4, 32},
                         Lie{kMost, kMost, 32}}) {
    lies.push_back(Picture({24, false}, 4, 4));
    handles.push_back(lies.back().get());
    BITMAPINFOHEADER& header = *rig::Locked(handles.back()).header();
    header.biWidth = lie.width;
    header.biHeight = lie.height;
    header.biBitCount = static_cast<std::uint16_t>(lie.depth);
  }
  for (const DibHandle handle : handles) {
    const bool lives = GlobalSize(handle) != 0;
    const rig::Bytes before = lives ? pictures::BytesOf(handle) : rig::Bytes();
    struct_LEAD_Bitmap bitmap{};
    EXPECT_EQ(L_ChangeFromDIB(&bitmap, handle), kModuleNoBitmap);
    EXPECT_EQ(bitmap.width, 0);
    EXPECT_EQ(bitmap.xResolution, 0);
    EXPECT_EQ(L_IsGrayScaleBitmap(&bitmap), 0);
    EXPECT_EQ(L_ConvertToDIB(&bitmap), nullptr);
    EXPECT_EQ(L_GrayScaleBitmap(&bitmap, 8), kModuleNoBitmap);
    EXPECT_EQ(L_ChangeToDIB(&bitmap), handle);
    EXPECT_EQ(lives ? pictures::BytesOf(handle) : rig::Bytes(), before);
  }
}

TEST_F(ModuleTest, gray_means_that_bytes_are_tones) {
  for (const int entry : {0, 255}) {
    for (std::uint8_t RGBQUAD::*const tone :
         {&RGBQUAD::rgbRed, &RGBQUAD::rgbGreen, &RGBQUAD::rgbBlue}) {
      OwnedDib tinted = Picture({8, true}, 9, 3);
      View(tinted).palette()[entry].*tone ^= 1;
      EXPECT_EQ(rig::Apply(L_IsGrayScaleBitmap, tinted), 0);
    }
  }
  OwnedDib inverted = Picture({8, true}, 9, 3);
  std::reverse(View(inverted).palette(), View(inverted).palette() + 256);
  EXPECT_EQ(rig::Apply(L_IsGrayScaleBitmap, inverted), 0);
}

const Operation kOperations[] = {
    rig::ToDepth(1, 1),
    rig::ToDepth(4, 5),
    rig::ToDepth(8, 7, 0),
    rig::ToDepth(16),
    rig::ToDepth(32),
    [](auto* bitmap) { return L_GrayScaleBitmap(bitmap, 8); },
    [](auto* bitmap) { return L_RotateBitmap(bitmap, 9000, kRotateGrows, 0); },
    [](auto* bitmap) { return L_RotateBitmap(bitmap, 1234, 0, 0); },
    [](auto* bitmap) { return L_SizeBitmap(bitmap, 50, 70, kSizeNearest); },
    [](auto* bitmap) { return L_SizeBitmap(bitmap, 50, 700, kSizeBest); },
    [](auto* bitmap) { return L_TrimBitmap(bitmap, 1, 2, 10, 20); },
};

TEST_F(ModuleTest, a_stop_or_failing_memory_leaves_the_image) {
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = Picture(kind, 20, 133);
    for (const Operation& operation : kOperations) {
      for (const int stopAt : {0, 1, 57, 100, 1000}) {
        OwnedDib got = pictures::CopyOf(source.get());
        const rig::Watch watch(stopAt);
        const int code = rig::Apply(operation, got);
        watch.check(code);
        if (code == kModuleSuccess) continue;
        ASSERT_EQ(pictures::Difference(source.get(), got.get()), "");
      }
      struct_LEAD_Bitmap bitmap{};
      L_ChangeFromDIB(&bitmap, pictures::CopyOf(source.get()).release());
      rig::FailEach([&] { return operation(&bitmap); },
                    [&](int code) {
                      if (code != kModuleSuccess) {
                        ASSERT_EQ(pictures::Difference(source.get(), bitmap.block), "");
                        return;
                      }
                      L_FreeBitmap(&bitmap);
                      L_ChangeFromDIB(&bitmap, pictures::CopyOf(source.get()).release());
                    });
      L_FreeBitmap(&bitmap);
    }
  }
}

TEST_F(ModuleTest, bitmaps_that_hold_nothing_and_arguments_out_of_range_are_refused) {
  struct_LEAD_Bitmap nothing{};
  for (struct_LEAD_Bitmap* const bitmap : {static_cast<struct_LEAD_Bitmap*>(nullptr), &nothing}) {
    for (const Operation& operation : kOperations) EXPECT_EQ(operation(bitmap), kModuleNoBitmap);
    EXPECT_EQ(L_FreeBitmap(bitmap), bitmap == nullptr ? kModuleNoBitmap : kModuleSuccess);
    EXPECT_EQ(L_IsGrayScaleBitmap(bitmap), 0);
    EXPECT_EQ(L_ChangeToDIB(bitmap), nullptr);
    EXPECT_EQ(L_ConvertToDIB(bitmap), nullptr);
    EXPECT_EQ(L_ConvertFromDIB(bitmap, nullptr, &nothing), kModuleNoBitmap);
  }
  EXPECT_EQ(L_ChangeFromDIB(nullptr, nullptr), kModuleNoBitmap);
  BITMAPINFOHEADER header{};
  EXPECT_EQ(L_ConvertFromDIB(&nothing, &header, &nothing), kModuleNoBitmap);
  OwnedDib image = Picture({24, false}, 8, 8);
  for (const int bits : {-1, 0, 2, 15, 64}) {
    EXPECT_EQ(rig::Apply(rig::ToDepth(bits), image), kModuleBadParameter);
  }
  EXPECT_EQ(rig::Apply([](auto* bitmap) { return L_GrayScaleBitmap(bitmap, 4); }, image),
            kModuleBadParameter);
  for (int i = 0; i < 4; ++i) {
    const auto own = [&](auto* bitmap) {
      const auto taken = [&](int which) { return i == which ? &header : nullptr; };
      return L_ColorResBitmap(bitmap, bitmap, 8, 0, taken(0), taken(1), taken(2), taken(3),
                              nullptr);
    };
    EXPECT_EQ(rig::Apply(own, image), kModuleBadParameter);
  }
}

TEST_F(ModuleTest, another_bitmap_may_take_the_result) {
  const OwnedDib picture = Picture({24, false}, 20, 10);
  for (const int bits : {8, 24}) {
    struct_LEAD_Bitmap source{};
    struct_LEAD_Bitmap target{};
    L_ChangeFromDIB(&source, pictures::CopyOf(picture.get()).release());
    L_ChangeFromDIB(&target, Picture({1, false}, 3, 3).release());
    source.xResolution = 72;
    ASSERT_EQ(
        L_ColorResBitmap(&source, &target, bits, 1, nullptr, nullptr, nullptr, nullptr, nullptr),
        kModuleSuccess);
    EXPECT_EQ((std::array{target.bitsPerPixel, target.width, target.height, target.xResolution}),
              (std::array{bits, 20, 10, 72}));
    source.xResolution = 300;
    const OwnedDib kept(L_ChangeToDIB(&source));
    EXPECT_EQ(pictures::Difference(picture.get(), kept.get()), "");
    L_FreeBitmap(&target);
    EXPECT_EQ(L_ColorResBitmap(&source, nullptr, 8, 1, nullptr, nullptr, nullptr, nullptr, nullptr),
              kModuleNoBitmap);
  }
}

// Stages make one rising scale; a stage that begins anew makes a new one.
TEST_F(ModuleTest, one_callback_follows_the_stages_of_an_operation) {
  const auto work = [](unsigned steps) {
    modules::Progress progress(steps);
    for (unsigned i = 0; i <= steps; ++i) ASSERT_TRUE(progress.report(i));
  };
  const rig::Watch watch;
  EXPECT_TRUE(KernelHasStatusCallback());
  for (int round = 0; round < 2; ++round) {
    {
      const modules::StatusShare first(0, 50);
      work(4);
      work(2);  // a second operation in the same stage shows nothing twice
    }
    const modules::StatusShare second(50, 50);
    work(2);
  }
  work(2);
  work(1);
  EXPECT_EQ(watch.seen(), (std::vector<int>{0, 12, 25, 37, 50, 75, 100, 0, 12, 25, 37, 50, 75, 100,
                                            0, 50, 100, 0, 100}));
  const StatusCallback before = L_SetStatusCallBack(nullptr, nullptr);
  EXPECT_FALSE(KernelHasStatusCallback());
  EXPECT_TRUE(KernelReportStatus(5));
  EXPECT_EQ(L_SetStatusCallBack(before, nullptr), nullptr);
}

TEST_F(ModuleTest, the_version_tells_the_codecs) {
  LTVERSIONINFO info{};
  EXPECT_EQ(L_VersionInfo(nullptr), kModuleBadParameter);
  info.size = sizeof info - 1;
  EXPECT_EQ(L_VersionInfo(&info), kModuleBadParameter);
  info.size = sizeof info;
  ASSERT_EQ(L_VersionInfo(&info), kModuleSuccess);
  EXPECT_STRNE(info.product, "");
  EXPECT_STRNE(info.version, "");
  const std::string codecs = info.codecs;
  EXPECT_TRUE(codecs.starts_with("libjpeg"));
  EXPECT_NE(codecs.find(", libpng 1."), std::string::npos) << codecs;
  EXPECT_NE(codecs.find(", libtiff 4."), std::string::npos) << codecs;
  EXPECT_NE(codecs.back(), ' ');
  KernelRegisterCodecs(std::string(1000, 'x').c_str());
  ASSERT_EQ(L_VersionInfo(&info), kModuleSuccess);
  EXPECT_EQ(std::string(info.codecs), std::string(sizeof info.codecs - 1, 'x'));
  KernelRegisterCodecs(codecs.c_str());
}

}  // namespace
