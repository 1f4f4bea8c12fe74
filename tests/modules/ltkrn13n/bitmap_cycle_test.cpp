#include <limits>

#include "kernel_fixture.h"

namespace {

using kernel::KernelTest;
using kernel::Picture;

TEST_F(KernelTest, a_block_is_taken_over_and_given_back_as_it_is) {
  for (const int depth : kernel::kDepths) {
    const orvo::OwnedDib source = Picture(13, 5, depth);
    const orvo::OwnedDib before = pictures::CopyOf(source.get());
    struct_LEAD_Bitmap bitmap;
    bitmap.block = &bitmap;  // what an uninitialised record holds is of no account
    PlatformFailAllocation(1);
    ASSERT_EQ(L_ChangeFromDIB(&bitmap, source.get()), kModuleSuccess);
    EXPECT_EQ(bitmap.width, 13);
    EXPECT_EQ(bitmap.height, 5);
    EXPECT_EQ(bitmap.bitsPerPixel, depth);
    EXPECT_EQ(bitmap.xResolution, 300);
    EXPECT_EQ(bitmap.yResolution, 300);
    EXPECT_EQ(L_ChangeToDIB2(&bitmap, 0), source.get());
    PlatformFailAllocation(0);
    EXPECT_EQ(bitmap.block, nullptr);
    EXPECT_EQ(bitmap.width, 0);
    EXPECT_EQ(pictures::Difference(before.get(), source.get()), "");
  }
}

TEST_F(KernelTest, copies_hold_the_whole_image_whatever_the_header_counts) {
  for (const int depth : kernel::kDepths) {
    const orvo::OwnedDib source = Picture(13, 5, depth);
    struct_LEAD_Bitmap bitmap{};
    {
      const pictures::Locked image(source.get());
      image.header()->biClrUsed = 2;
      image.header()->biSizeImage = 7;
      ASSERT_EQ(L_ConvertFromDIB(&bitmap, image.header(), image.row(0)), kModuleSuccess);
    }
    EXPECT_NE(bitmap.block, source.get());
    const orvo::OwnedDib copy(L_ConvertToDIB(&bitmap));
    EXPECT_NE(copy.get(), bitmap.block);
    EXPECT_EQ(pictures::Difference(source.get(), copy.get()), "");
    const orvo::OwnedDib own(L_ChangeToDIB(&bitmap));
    EXPECT_EQ(pictures::Difference(source.get(), own.get()), "");
  }
}

TEST_F(KernelTest, only_a_resolution_that_was_changed_reaches_the_header) {
  const auto header = [](const orvo::OwnedDib& dib) {
    return *pictures::Locked(dib.get()).header();
  };
  orvo::OwnedDib dib = Picture(4, 4, 24);
  pictures::Locked(dib.get()).header()->biXPelsPerMeter = 11812;
  struct_LEAD_Bitmap bitmap{};
  L_ChangeFromDIB(&bitmap, dib.release());
  EXPECT_EQ(bitmap.xResolution, 300);
  bitmap.yResolution = 150;
  ASSERT_EQ(L_SizeBitmap(&bitmap, 8, 2, kSizeNearest), kModuleSuccess);
  EXPECT_EQ(bitmap.yResolution, 150);
  const orvo::OwnedDib copy(L_ConvertToDIB(&bitmap));
  const orvo::OwnedDib own(L_ChangeToDIB(&bitmap));
  for (const auto* image : {&copy, &own}) {
    EXPECT_EQ(header(*image).biXPelsPerMeter, 11812);
    EXPECT_EQ(header(*image).biYPelsPerMeter, 5906);
  }
}

TEST_F(KernelTest, a_block_that_cannot_be_used_is_held_and_given_back) {
  orvo::OwnedDib freed = Picture(4, 4, 24);
  const DibHandle dead = freed.get();
  freed.reset();
  int number = 0;
  for (const DibHandle handle : {DibHandle{nullptr}, dead, DibHandle{&number}}) {
    struct_LEAD_Bitmap bitmap{};
    EXPECT_EQ(L_ChangeFromDIB(&bitmap, handle), kModuleNoBitmap);
    EXPECT_EQ(bitmap.width, 0);
    EXPECT_EQ(L_IsGrayScaleBitmap(&bitmap), 0);
    EXPECT_EQ(L_ConvertToDIB(&bitmap), nullptr);
    EXPECT_EQ(L_ChangeToDIB(&bitmap), handle);
  }
  struct Lie {
    int width, height, depth;
  };
  constexpr int kMost = std::numeric_limits<int>::max();
  for (const Lie& lie : {Lie{0, 4, 24}, Lie{4, -4, 24}, Lie{4, 5, 24}, Lie{4, 4, 2}, Lie{4, 4, 32},
                         Lie{kMost, kMost, 32}}) {
    orvo::OwnedDib dib = Picture(4, 4, 24);
    {
      BITMAPINFOHEADER& header = *pictures::Locked(dib.get()).header();
      header.biWidth = lie.width;
      header.biHeight = lie.height;
      header.biBitCount = static_cast<std::uint16_t>(lie.depth);
    }
    const std::vector<std::uint8_t> before = pictures::BytesOf(dib.get());
    struct_LEAD_Bitmap bitmap{};
    EXPECT_EQ(L_ChangeFromDIB(&bitmap, dib.get()), kModuleNoBitmap);
    EXPECT_EQ(bitmap.width, 0);
    EXPECT_EQ(bitmap.xResolution, 0);
    EXPECT_EQ(L_GrayScaleBitmap(&bitmap, 8), kModuleNoBitmap);
    EXPECT_EQ(L_ChangeToDIB(&bitmap), dib.get());
    EXPECT_EQ(pictures::BytesOf(dib.get()), before);
  }
}

TEST_F(KernelTest, gray_means_that_bytes_are_tones) {
  const auto isGray = [](orvo::OwnedDib dib) {
    int gray = 0;
    kernel::Apply([&](auto* bitmap) { return gray = L_IsGrayScaleBitmap(bitmap), kModuleSuccess; },
                  dib);
    return gray != 0;
  };
  EXPECT_TRUE(isGray(pictures::Noise(9, 3, 8, 1)));
  for (const int depth : {1, 4, 24}) EXPECT_FALSE(isGray(pictures::Noise(9, 3, depth, 1)));
  for (const int entry : {0, 255}) {
    orvo::OwnedDib tinted = pictures::Noise(9, 3, 8, 1);
    pictures::Locked(tinted.get()).palette()[entry].rgbBlue ^= 1;
    EXPECT_FALSE(isGray(std::move(tinted)));
  }
  orvo::OwnedDib inverted = pictures::Noise(9, 3, 8, 1);
  {
    RGBQUAD* const palette = pictures::Locked(inverted.get()).palette();
    std::reverse(palette, palette + 256);
  }
  EXPECT_FALSE(isGray(std::move(inverted)));
}

}  // namespace
