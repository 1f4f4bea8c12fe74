// How images enter and leave bitmaps, and what the operations of both image modules do when they
// are watched, stopped, out of memory or given nothing: the image then stays as it was.
#include <limits>

#include "common/color_rows.h"
#include "modules/fixture.h"
#include "platform/vector_level.h"

namespace {

using pictures::CopyOf;
using pictures::Difference;
using rig::Do;
using rig::kKinds;
using rig::ModuleTest;
using rig::Operation;
using rig::OwnedDib;
using rig::Picture;

constexpr int kMost = std::numeric_limits<int>::max();

TEST_F(ModuleTest, images_enter_and_leave_bitmaps_as_they_are) {
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = Picture(kind, 13, 5);
    const rig::Locked image(source.get());
    image.header()->biClrUsed = 2;  // is not believed
    image.header()->biSizeImage = 7;
    const OwnedDib before = CopyOf(source.get());
    struct_LEAD_Bitmap bitmap;
    bitmap.block = &bitmap;  // what an uninitialised record holds is of no account
    PlatformFailAllocation(1);
    ASSERT_EQ(L_ChangeFromDIB(&bitmap, source.get()), kModuleSuccess);
    EXPECT_EQ(std::tuple(bitmap.width, bitmap.height, bitmap.bitsPerPixel, bitmap.xResolution,
                         bitmap.yResolution, L_IsGrayScaleBitmap(&bitmap) != 0),
              std::tuple(13, 5, kind.depth, 300, 300, kind.gray));
    EXPECT_EQ(L_ChangeToDIB2(&bitmap, 0), source.get());
    PlatformFailAllocation(0);
    EXPECT_EQ(std::tuple(bitmap.block, bitmap.width), std::tuple(nullptr, 0));
    const auto convert = [&] { return L_ConvertFromDIB(&bitmap, image.header(), image.row(0)); };
    rig::FailEach(convert, [&](int code) {
      EXPECT_EQ(bitmap.block != nullptr, code == kModuleSuccess);
      L_FreeBitmap(&bitmap);
    });
    ASSERT_EQ(convert(), kModuleSuccess);
    bitmap.yResolution = 150;  // a resolution that was changed reaches the header
    const OwnedDib copy(L_ConvertToDIB(&bitmap));
    EXPECT_NE(copy.get(), bitmap.block);
    const OwnedDib own(L_ChangeToDIB(&bitmap));
    EXPECT_NE(own.get(), source.get());
    EXPECT_EQ(Difference(before.get(), source.get()), "");
    image.header()->biYPelsPerMeter = 5906;
    EXPECT_EQ(Difference(source.get(), copy.get()), "");
    EXPECT_EQ(Difference(source.get(), own.get()), "");
  }
}

// The source's block serves until the bitmap changes, and is never given away, changed or freed.
TEST_F(ModuleTest, a_lent_image_stays_its_owners) {
  const OwnedDib source = Picture({24, false}, 20, 9);
  const OwnedDib before = CopyOf(source.get());
  const rig::Locked image(source.get());
  const std::size_t blocks = PlatformLiveBlocks();
  for (const bool changes : {false, true}) {
    struct_LEAD_Bitmap bitmap{};
    ASSERT_EQ(L_ConvertFromDIB(&bitmap, image.header(), image.row(0)), kModuleSuccess);
    EXPECT_EQ(PlatformLiveBlocks(), blocks) << "no copy yet";
    if (changes) {
      EXPECT_EQ(L_InvertBitmap(&bitmap), kModuleSuccess);
    }
    const OwnedDib given(L_ChangeToDIB(&bitmap));
    EXPECT_NE(given.get(), source.get());
    EXPECT_EQ(Difference(given.get(), source.get()).empty(), !changes);
    ASSERT_EQ(L_ConvertFromDIB(&bitmap, image.header(), image.row(0)), kModuleSuccess);
    EXPECT_EQ(L_FreeBitmap(&bitmap), kModuleSuccess);
    EXPECT_EQ(Difference(before.get(), source.get()), "");
  }
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
}

TEST_F(ModuleTest, rows_of_colors_become_the_same_at_every_vector_level) {
  const int highest = PlatformVectorLevel;
  for (const int width : {1, 2, 15, 16, 17, 63, 200, 4099}) {
    const OwnedDib source = pictures::Noise(width, 1, 24, 7);
    const rig::Locked image(source.get());
    const auto* const colors = reinterpret_cast<const modules::Color*>(image.row(0));
    for (PlatformVectorLevel = 1; PlatformVectorLevel <= highest; ++PlatformVectorLevel) {
      const auto count = static_cast<std::size_t>(width);
      std::vector<std::uint8_t> tones(count);
      modules::WriteTones(colors, count, tones.data());
      std::vector<modules::Color> narrow(count), wide(count);
      for (const int depth : {16, 32}) {
        const OwnedDib other = pictures::Blank(width, 1, depth);
        const modules::LockedDib there(other.get());
        modules::WriteColors(*there, 0, colors);
        modules::ReadColors(*there, 0, depth == 16 ? narrow.data() : wide.data());
      }
      for (std::size_t x = 0; x < count; ++x) {
        ASSERT_EQ(tones[x], modules::LumaOf(colors[x])) << x;
        ASSERT_EQ(narrow[x], modules::ColorOf555(modules::With555(0, colors[x]))) << x;
        ASSERT_EQ(wide[x], colors[x]) << x;
      }
    }
    PlatformVectorLevel = highest;
  }
}

TEST_F(ModuleTest, a_block_that_cannot_be_used_is_held_and_given_back) {
  OwnedDib freed = Picture({24, false}, 4, 4);
  int number = 0;
  std::vector<DibHandle> handles{nullptr, freed.get(), &number};
  freed.reset();
  constexpr int kLies[][3] = {{0, 4, 24}, {4, -4, 24}, {4, 5, 24},        {4, kMost, 24},
                              {4, 4, 2},  {4, 4, 32},  {kMost, kMost, 32}};
  std::vector<OwnedDib> lies;
  for (const auto& [width, height, depth] : kLies) {
    lies.push_back(Picture({24, false}, 4, 4));
    handles.push_back(lies.back().get());
    BITMAPINFOHEADER& header = *rig::Locked(handles.back()).header();
    header.biWidth = width;
    header.biHeight = height;
    header.biBitCount = static_cast<std::uint16_t>(depth);
  }
  for (const DibHandle handle : handles) {
    const auto bytes = [&] {
      return GlobalSize(handle) == 0 ? rig::Bytes() : pictures::BytesOf(handle);
    };
    const rig::Bytes before = bytes();
    struct_LEAD_Bitmap bitmap{};
    EXPECT_EQ(L_ChangeFromDIB(&bitmap, handle), kModuleNoBitmap);
    EXPECT_EQ(std::pair(bitmap.width, bitmap.xResolution), std::pair(0, 0));
    EXPECT_EQ(L_IsGrayScaleBitmap(&bitmap), 0);
    EXPECT_EQ(L_ConvertToDIB(&bitmap), nullptr);
    EXPECT_EQ(L_GrayScaleBitmap(&bitmap, 8), kModuleNoBitmap);
    EXPECT_EQ(L_InvertBitmap(&bitmap), kModuleNoBitmap);
    EXPECT_EQ(L_ChangeToDIB(&bitmap), handle);
    EXPECT_EQ(bytes(), before);
  }
}

TEST_F(ModuleTest, gray_means_that_bytes_are_tones) {
  for (const int entry : {0, 255}) {
    for (const auto tone : {&RGBQUAD::rgbRed, &RGBQUAD::rgbGreen, &RGBQUAD::rgbBlue}) {
      OwnedDib tinted = Picture({8, true}, 9, 3);
      rig::Locked(tinted.get()).palette()[entry].*tone ^= 1;
      EXPECT_EQ(rig::Apply(L_IsGrayScaleBitmap, tinted), 0);
    }
  }
}

const Operation kOperations[] = {
    rig::ToDepth(1, 1),
    rig::ToDepth(8, 7, 0),
    rig::ToDepth(16),
    Do(L_GrayScaleBitmap, 8),
    Do(L_RotateBitmap, 9000, kRotateGrows, 0U),
    Do(L_RotateBitmap, 1234, 0U, 0U),
    Do(L_SizeBitmap, 50, 70, kSizeNearest),
    Do(L_SizeBitmap, 50, 700, kSizeBest),
    Do(L_TrimBitmap, 1, 2, 10, 20),
    L_InvertBitmap,  // adjustments, which do without memory when nobody watches
    Do(L_SharpenBitmap, 500)};
constexpr std::size_t kFirstAdjustment = 9;

TEST_F(ModuleTest, a_stop_or_failing_memory_leaves_the_image) {
  for (const rig::Kind kind : kKinds) {
    const OwnedDib source = Picture(kind, 20, 133);
    for (std::size_t i = 0; i < std::size(kOperations); ++i) {
      SCOPED_TRACE(testing::Message() << "operation " << i << " at " << kind.depth << " bits");
      const Operation& operation = kOperations[i];
      if (i >= kFirstAdjustment && kind.depth == 1) continue;
      for (const int stopAt : {0, 1, 57, 100, 1000}) {
        OwnedDib got = CopyOf(source.get());
        const rig::Watch watch(stopAt);
        const int code = rig::Apply(operation, got);
        watch.check(code);
        ASSERT_TRUE(code == kModuleSuccess || Difference(source.get(), got.get()).empty());
      }
      const rig::Watch watch;
      struct_LEAD_Bitmap bitmap{};
      const auto renew = [&] {
        L_FreeBitmap(&bitmap);
        L_ChangeFromDIB(&bitmap, CopyOf(source.get()).release());
        bitmap.xResolution = 72;  // newer than the header's
      };
      renew();
      rig::FailEach([&] { return operation(&bitmap); },
                    [&](int code) {
                      if (code != kModuleSuccess) {
                        ASSERT_EQ(Difference(source.get(), bitmap.block), "");
                        return;
                      }
                      EXPECT_EQ(std::min(bitmap.xResolution, bitmap.yResolution), 72);
                      renew();
                    });
      L_SetStatusCallBack(nullptr, nullptr);
      PlatformFailAllocation(1);
      if (i >= kFirstAdjustment) {
        EXPECT_EQ(operation(&bitmap), kModuleSuccess);
      }
      PlatformFailAllocation(0);
      L_FreeBitmap(&bitmap);
    }
  }
}

TEST_F(ModuleTest, bitmaps_that_hold_nothing_are_refused) {
  struct_LEAD_Bitmap nothing{};
  for (struct_LEAD_Bitmap* const bitmap : {static_cast<struct_LEAD_Bitmap*>(nullptr), &nothing}) {
    for (const Operation& operation : kOperations) EXPECT_EQ(operation(bitmap), kModuleNoBitmap);
    EXPECT_EQ(L_FreeBitmap(bitmap), bitmap == nullptr ? kModuleNoBitmap : kModuleSuccess);
    EXPECT_EQ(L_IsGrayScaleBitmap(bitmap), 0);
    EXPECT_EQ(L_ChangeToDIB(bitmap), nullptr);
    EXPECT_EQ(L_ConvertToDIB(bitmap), nullptr);
    EXPECT_EQ(L_ConvertFromDIB(bitmap, nullptr, &nothing), kModuleNoBitmap);
    EXPECT_EQ(L_ChangeFromDIB(bitmap, nullptr), kModuleNoBitmap);
  }
  BITMAPINFOHEADER header{};
  EXPECT_EQ(L_ConvertFromDIB(&nothing, &header, &nothing), kModuleNoBitmap);
}

TEST_F(ModuleTest, another_bitmap_may_take_the_result) {
  const OwnedDib picture = Picture({24, false}, 20, 10);
  for (const int bits : {8, 24}) {
    struct_LEAD_Bitmap source{}, target{};
    const auto convert = [&](struct_LEAD_Bitmap* to) {
      return L_ColorResBitmap(&source, to, bits, 1, nullptr, nullptr, nullptr, nullptr, nullptr);
    };
    L_ChangeFromDIB(&source, CopyOf(picture.get()).release());
    L_ChangeFromDIB(&target, Picture({1, false}, 3, 3).release());
    source.xResolution = 72;
    EXPECT_EQ(convert(nullptr), kModuleNoBitmap);
    ASSERT_EQ(convert(&target), kModuleSuccess);
    EXPECT_EQ(std::tuple(target.bitsPerPixel, target.width, target.height, target.xResolution),
              std::tuple(bits, 20, 10, 72));
    source.xResolution = 300;
    EXPECT_EQ(Difference(picture.get(), OwnedDib(L_ChangeToDIB(&source)).get()), "");
    L_FreeBitmap(&target);
  }
}

}  // namespace
