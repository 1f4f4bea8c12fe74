// The frame round the adjust functions of the pixel library, driven through sharpness: depths,
// working copies, handles, and every failure on the way.
#include <orvo/COrvoCS.h>

#include "bridge_fixture.h"

namespace bridge {
namespace {

constexpr std::uint8_t kLevel = 10;

// 20 x 9 pixels, enough for the kernel to reach some; header fields that nobody reads are marked.
orvo::OwnedDib Picture(int depth) {
  orvo::OwnedDib picture = pictures::Noise(20, 9, depth, 7);
  BITMAPINFOHEADER& header = *pictures::Locked(picture.get()).header();
  header.biXPelsPerMeter = 1234;
  header.biYPelsPerMeter = 5678;
  header.biClrImportant = 9;
  return picture;
}

// Header and palette.
std::vector<std::uint8_t> FrontOf(DibHandle image) {
  const pictures::Locked locked(image);
  return {locked.bytes(), locked.bytes() + locked.layout().pixelOffset};
}

// The bytes of all rows without their padding.
std::vector<std::uint8_t> PixelsOf(DibHandle image) {
  const pictures::Locked locked(image);
  const orvo::DibLayout layout = locked.layout();
  const auto used = static_cast<std::size_t>(layout.width * layout.depth / 8);
  std::vector<std::uint8_t> pixels;
  for (int y = 0; y < layout.height; ++y) {
    pixels.insert(pixels.end(), locked.row(y), locked.row(y) + used);
  }
  return pixels;
}

// A COrvoCS with its bridge.
struct Toolkit {
  explicit Toolkit(const std::set<std::string>& absent = {}) : tools(Bind(absent)) {
    own.CSSetLT(tools.get());
  }
  std::unique_ptr<CLeadTools> tools;
  COrvoCS own;
};

class Frame : public BridgeTest {};

// --- Success -------------------------------------------------------------------------------------

TEST_F(Frame, KeepsHeaderAndPalette) {
  Toolkit toolkit;
  for (const int depth : {8, 24}) {
    SCOPED_TRACE(depth);
    const orvo::OwnedDib source = Picture(depth);
    const orvo::OwnedDib original = pictures::CopyOf(source.get());
    const orvo::OwnedDib old = Picture(24);
    DibHandle result = old.get();
    ASSERT_EQ(toolkit.own.CSSharpnessAdjust(source.get(), &result, kLevel), ORVO_OK);
    const orvo::OwnedDib made(result);
    ASSERT_NE(made.get(), source.get());
    EXPECT_NE(GlobalSize(old.get()), 0U) << "an older result is overwritten, not freed";
    EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
    EXPECT_EQ(FrontOf(made.get()), FrontOf(source.get()));
    EXPECT_NE(PixelsOf(made.get()), PixelsOf(source.get()));
  }
}

// 16 and 32 bits come out as the 24-bit picture of their conversion does, brought back.
TEST_F(Frame, OtherDepthsTakeTheWayThrough24Bits) {
  Toolkit toolkit;
  for (const int depth : {16, 32}) {
    SCOPED_TRACE(depth);
    orvo::OwnedDib source = Picture(depth);
    const orvo::OwnedDib original = pictures::CopyOf(source.get());
    orvo::OwnedDib expected = pictures::CopyOf(source.get());
    ASSERT_EQ(toolkit.tools->LTConvertToColorRes(*expected.address(), nullptr, 24), ORVO_OK);
    DibHandle same = expected.get();
    ASSERT_EQ(toolkit.own.CSSharpnessAdjust(expected.get(), &same, kLevel), ORVO_OK);
    ASSERT_EQ(toolkit.tools->LTConvertToColorRes(*expected.address(), nullptr, depth), ORVO_OK);

    orvo::OwnedDib made;
    ASSERT_EQ(toolkit.own.CSSharpnessAdjust(source.get(), made.receive(source), kLevel), ORVO_OK);
    ASSERT_TRUE(made);
    EXPECT_EQ(FrontOf(made.get()), FrontOf(source.get()));
    EXPECT_EQ(PixelsOf(made.get()), PixelsOf(expected.get()));
    EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
  }
}

// Handles are passed by value in place, so whatever the modules do to theirs, they have to stay.
TEST_F(Frame, InPlaceKeepsTheHandle) {
  Toolkit toolkit;
  for (const bool fresh : {true, false}) {
    doubles::TheState().freshHandles = fresh;
    for (const int depth : {16, 24, 32}) {
      SCOPED_TRACE(depth);
      const orvo::OwnedDib image = Picture(depth);
      orvo::OwnedDib expected;
      ASSERT_EQ(toolkit.own.CSSharpnessAdjust(image.get(), expected.receive(image), kLevel),
                ORVO_OK);
      DibHandle result = image.get();
      EXPECT_EQ(toolkit.own.CSSharpnessAdjust(image.get(), &result, kLevel), ORVO_OK);
      EXPECT_EQ(result, image.get());
      ASSERT_EQ(FrontOf(image.get()), FrontOf(expected.get()));
      EXPECT_EQ(PixelsOf(image.get()), PixelsOf(expected.get()));
    }
    // Gray reads pixels that it has written already, so it is compared with its source only.
    const orvo::OwnedDib gray = Picture(8);
    const orvo::OwnedDib original = pictures::CopyOf(gray.get());
    DibHandle result = gray.get();
    EXPECT_EQ(toolkit.own.CSSharpnessAdjust(gray.get(), &result, kLevel), ORVO_OK);
    EXPECT_EQ(result, gray.get());
    EXPECT_NE(PixelsOf(gray.get()), PixelsOf(original.get()));
  }
}

TEST_F(Frame, OnlyTheLowByteOfTheBitCountIsTheDepth) {
  Toolkit toolkit;
  const orvo::OwnedDib image = Picture(24);
  pictures::Locked(image.get()).header()->biBitCount = 0x0118;
  DibHandle result = image.get();
  EXPECT_EQ(toolkit.own.CSSharpnessAdjust(image.get(), &result, kLevel), ORVO_OK);
}

// --- Failures ------------------------------------------------------------------------------------

struct Failure {
  std::string name;
  int depth;  // 0: no image at all
  int code;
  std::set<std::string> absent = {};
  std::deque<int> conversionCodes = {};
  std::uint8_t level = kLevel;
  bool attached = true;
  bool inColor = false;
  bool malformed = false;
};

void PrintTo(const Failure& failure, std::ostream* out) {
  *out << failure.name;
}

class FrameFailure : public BridgeRows<Failure> {};

TEST_P(FrameFailure, CodeAndResultHandle) {
  const Failure& row = GetParam();
  for (const bool inPlace : {false, true}) {
    SCOPED_TRACE(inPlace ? "in place" : "to new");
    Toolkit toolkit(row.absent);
    if (!row.attached) toolkit.own.CSSetLT(nullptr);
    doubles::TheState().answers["L_ColorResBitmap"] = row.conversionCodes;
    orvo::OwnedDib source;
    orvo::OwnedDib original;
    if (row.depth != 0) {
      source = row.inColor ? pictures::NoiseInColor(20, 9, row.depth, 1) : Picture(row.depth);
      if (row.malformed) pictures::Locked(source.get()).header()->biHeight = 10;
      original = pictures::CopyOf(source.get());
    }
    const orvo::OwnedDib old = Picture(24);
    DibHandle result = inPlace ? source.get() : old.get();
    EXPECT_EQ(toolkit.own.CSSharpnessAdjust(source.get(), &result, row.level), row.code);
    EXPECT_EQ(result, source.get());
    EXPECT_NE(GlobalSize(old.get()), 0U);
    if (source) {
      EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
    }
  }
}

const Failure kFailures[] = {
    {.name = "level_eleven", .depth = 24, .code = ORVO_ERR_OUT_OF_RANGE, .level = 11},
    {.name = "level_comes_before_the_source",
     .depth = 0,
     .code = ORVO_ERR_OUT_OF_RANGE,
     .level = 255},
    {.name = "null_source", .depth = 0, .code = ORVO_ERR_NULL_IMAGE},
    {.name = "null_source_comes_before_the_bridge",
     .depth = 0,
     .code = ORVO_ERR_NULL_IMAGE,
     .attached = false},
    {.name = "without_a_bridge", .depth = 24, .code = ORVO_ERR_FAILURE, .attached = false},
    {.name = "one_bit", .depth = 1, .code = ORVO_ERR_BAD_DEPTH},
    {.name = "four_bits", .depth = 4, .code = ORVO_ERR_BAD_DEPTH},
    {.name = "palette_of_colours", .depth = 8, .code = ORVO_ERR_BAD_DEPTH, .inColor = true},
    {.name = "gray_without_the_kernel",
     .depth = 8,
     .code = ORVO_ERR_BAD_DEPTH,
     .absent = {"ltkrn13n.dll"}},
    {.name = "sixteen_without_the_kernel",
     .depth = 16,
     .code = ORVO_ERR_BAD_DEPTH,
     .absent = {"ltkrn13n.dll"}},
    {.name = "thirty_two_without_the_kernel",
     .depth = 32,
     .code = ORVO_ERR_BAD_DEPTH,
     .absent = {"ltkrn13n.dll"}},
    {.name = "sixteen_left_unconverted",
     .depth = 16,
     .code = ORVO_ERR_BAD_DEPTH,
     .conversionCodes = {kVendorDepthNotSupported}},
    {.name = "thirty_two_left_unconverted",
     .depth = 32,
     .code = ORVO_ERR_BAD_DEPTH,
     .conversionCodes = {kVendorNoMemory}},
    {.name = "malformed_gray", .depth = 8, .code = ORVO_ERR_FAILURE, .malformed = true},
    {.name = "malformed_24", .depth = 24, .code = ORVO_ERR_FAILURE, .malformed = true},
    {.name = "malformed_32", .depth = 32, .code = ORVO_ERR_FAILURE, .malformed = true},
};
INSTANTIATE_TEST_SUITE_P(Rows, FrameFailure, testing::ValuesIn(kFailures), RowName());

TEST_F(Frame, NoMemoryForTheResultOrForTheWork) {
  Toolkit toolkit;
  const orvo::OwnedDib source = Picture(24);
  DibHandle result = nullptr;
  PlatformFailAllocation(1);
  EXPECT_EQ(toolkit.own.CSSharpnessAdjust(source.get(), &result, kLevel), ORVO_ERR_NO_MEMORY);
  EXPECT_EQ(result, source.get());

  // The pixel function's own memory: its result block stands, so far a copy.
  result = nullptr;
  PlatformFailAllocation(2);
  EXPECT_EQ(toolkit.own.CSSharpnessAdjust(source.get(), &result, kLevel), ORVO_ERR_NO_MEMORY);
  ASSERT_NE(result, source.get());
  const orvo::OwnedDib made(result);
  EXPECT_EQ(pictures::Difference(source.get(), made.get()), "");
}

// Fails the n-th allocation or lock, one after the other, until a call comes through untouched.
struct Sweep {
  std::string name;
  void (*failNth)(int n);
  std::set<int> codes;  // what a call may report then
};

class FaultSweep : public BridgeRows<Sweep> {};

TEST_P(FaultSweep, NoHandleIsLostAndNothingStaysLocked) {
  Toolkit toolkit;
  for (const int depth : {8, 16, 24, 32}) {
    for (const bool inPlace : {false, true}) {
      for (int n = 1; n <= 24; ++n) {
        SCOPED_TRACE(std::to_string(depth) + (inPlace ? " in place, " : " to new, ") +
                     std::to_string(n));
        const orvo::OwnedDib source = Picture(depth);
        const orvo::OwnedDib original = pictures::CopyOf(source.get());
        DibHandle result = inPlace ? source.get() : nullptr;
        GetParam().failNth(n);
        const int code = toolkit.own.CSSharpnessAdjust(source.get(), &result, kLevel);
        GetParam().failNth(0);
        const orvo::OwnedDib made(result == source.get() ? nullptr : result);
        EXPECT_EQ(GetParam().codes.count(code), 1U) << code;
        EXPECT_EQ(PlatformHeldLocks(), 0U);
        EXPECT_NE(GlobalSize(result), 0U);
        EXPECT_EQ(pictures::Locked(source.get()).header()->biBitCount, depth);
        if (!inPlace || code == ORVO_ERR_BAD_DEPTH) {
          EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
        }
        EXPECT_TRUE(n > 1 || inPlace || code != ORVO_OK);
      }
    }
  }
}

const Sweep kSweeps[] = {
    {"allocations", PlatformFailAllocation, {ORVO_OK, ORVO_ERR_NO_MEMORY, ORVO_ERR_BAD_DEPTH}},
    {"locks", PlatformFailLock, {ORVO_OK, ORVO_ERR_FAILURE, ORVO_ERR_BAD_DEPTH}},
};
INSTANTIATE_TEST_SUITE_P(Nth, FaultSweep, testing::ValuesIn(kSweeps), RowName());

}  // namespace
}  // namespace bridge
