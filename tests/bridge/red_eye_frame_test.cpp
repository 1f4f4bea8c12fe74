// The frame round the red-eye functions and the table's entries for them: depths, working copies,
// handles, what is written, and every failure on the way.
#include <orvo/COrvoCS.h>
#include <orvo/raii.h>

#include "bridge_fixture.h"
#include "redeye/auto_red_eye.h"
#include "redeye/faces.h"
#include "redeye/reduce.h"

namespace bridge {
namespace {

constexpr std::uint32_t kEyeX = 32;
constexpr std::uint32_t kEyeY = 75;

// A face, or the noise of its ground alone. Of 24, 16 and 32 bits the first has padded rows.
constexpr int kWidth = 102;
constexpr int kHeight = 120;
orvo::OwnedDib Photograph(CLeadTools& tools, int depth, bool withFace = true) {
  faces::Picture picture(kWidth, kHeight, 1);
  if (withFace) picture.ellipse(50, 60, 45, 50, faces::kSkin, 8);
  for (const double x : {32.0, 69.0}) {
    if (withFace) picture.eye(x, kEyeY, 4, faces::kRed, 0);
  }
  orvo::OwnedDib photo = pictures::Blank(kWidth, kHeight, 24);
  {
    const pictures::Locked locked(photo.get());
    std::copy(picture.bytes.begin(), picture.bytes.end(), locked.row(0));
    locked.header()->biYPelsPerMeter = 5678;
    locked.header()->biClrImportant = 9;
  }
  if (depth != 24) tools.LTConvertToColorRes(*photo.address(), nullptr, depth);
  return photo;
}

struct Numbers {
  std::uint32_t x = 70, y = 71, radius = 72;
  int found = 73;
  bool operator==(const Numbers&) const = default;
};

struct Operation {
  std::string name;
  int (*run)(COrvoCS& own, DibHandle source, DibHandle* result, Numbers& numbers);
  Numbers written;                       // on success
  void (*change)(std::uint8_t* pixels);  // what becomes of them; null where there is no result
};

void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

const Operation kOperations[] = {
    {"search",
     [](COrvoCS& own, DibHandle source, DibHandle*, Numbers& n) {
       return own.CSSearchRedEyeRegion(source, kEyeX, kEyeY, &n.x, &n.y, &n.radius);
     },
     {kEyeX, kEyeY, 4},
     nullptr},
    {"reduce",
     [](COrvoCS& own, DibHandle source, DibHandle* result, Numbers&) {
       return own.CSReduceRedEye(source, result, kEyeX, kEyeY, 4);
     },
     {},
     [](std::uint8_t* pixels) {
       ImgReduceRedEye(pixels, pixels, kWidth, kHeight, {kEyeX, kEyeY, 4});
     }},
    {"automatic",
     [](COrvoCS& own, DibHandle source, DibHandle* result, Numbers& n) {
       return own.CSAutoRedEye(source, result, &n.found);
     },
     {.found = 1},
     [](std::uint8_t* pixels) { EXPECT_EQ(ImgAutoRedEye(pixels, pixels, kWidth, kHeight), 0); }},
};

class RedEyeFrame : public BridgeRows<Operation> {
 protected:
  RedEyeFrame() { own.CSSetLT(tools.get()); }
  int run(DibHandle source, DibHandle* result) {
    numbers = {};
    const int code = GetParam().run(own, source, result, numbers);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
    return code;
  }

  const std::unique_ptr<CLeadTools> tools = Bind();
  COrvoCS own;
  const bool hasResult = GetParam().change != nullptr;
  Numbers numbers;
};
INSTANTIATE_TEST_SUITE_P(All, RedEyeFrame, testing::ValuesIn(kOperations), RowName());

// --- Success -------------------------------------------------------------------------------------

std::string HeaderOf(DibHandle image) {
  const std::vector<std::uint8_t> bytes = pictures::BytesOf(image);
  return {bytes.begin(), bytes.begin() + orvo::kDibHeaderBytes};
}
std::string RowsOf(DibHandle image) {
  const std::vector<std::uint8_t> bytes = pictures::BytesOf(image);
  return {bytes.begin() + orvo::kDibHeaderBytes, bytes.end()};
}

// 16 and 32 bits come out as the 24-bit picture of their conversion does, brought back. The modules
// may give a block back under another handle, but the caller's stays.
TEST_P(RedEyeFrame, DepthsAndHandles) {
  for (const int depth : {16, 24, 32, -16, -32}) {
    SCOPED_TRACE(depth);
    doubles::TheState().freshHandles = depth > 0;
    const orvo::OwnedDib source = Photograph(*tools, std::abs(depth));
    orvo::OwnedDib expected = pictures::CopyOf(source.get());
    const std::string before = RowsOf(source.get());
    if (depth != 24) tools->LTConvertToColorRes(*expected.address(), nullptr, 24);
    if (hasResult) GetParam().change(pictures::Locked(expected.get()).row(0));
    if (depth != 24) tools->LTConvertToColorRes(*expected.address(), nullptr, std::abs(depth));

    const orvo::OwnedDib old = pictures::CopyOf(source.get());
    DibHandle result = old.get();
    // Nothing but the low byte of the field is the depth.
    if (depth == 24) pictures::Locked(source.get()).header()->biBitCount = 0x118;
    EXPECT_EQ(run(source.get(), &result), ORVO_OK);
    EXPECT_EQ(numbers, GetParam().written);
    EXPECT_NE(GlobalSize(old.get()), 0U) << "an older result is overwritten, not freed";
    EXPECT_TRUE(RowsOf(source.get()) == before);
    EXPECT_EQ(result == old.get(), !hasResult);
    if (!hasResult) continue;
    const orvo::OwnedDib made(result);
    EXPECT_EQ(HeaderOf(made.get()), HeaderOf(source.get()));
    EXPECT_TRUE(RowsOf(made.get()) == RowsOf(expected.get()));
    EXPECT_FALSE(RowsOf(made.get()) == before);
    result = source.get();
    EXPECT_EQ(run(source.get(), &result), ORVO_OK);
    EXPECT_EQ(result, source.get());
    EXPECT_EQ(HeaderOf(source.get()), HeaderOf(made.get()));
    EXPECT_TRUE(RowsOf(source.get()) == RowsOf(expected.get())) << "in place";
  }
}

// --- Failures ------------------------------------------------------------------------------------

struct Failure {
  const char* name;
  int depth;
  int code;
  bool attached = true;
  std::deque<int> conversionCodes = {};
  bool malformed = false;
};

TEST_P(RedEyeFrame, EarlyFailuresWriteNoNumbers) {
  const Failure failures[] = {
      {"one bit", 1, ORVO_ERR_BAD_DEPTH},
      {"four bits", 4, ORVO_ERR_BAD_DEPTH},
      {"gray", 8, ORVO_ERR_BAD_DEPTH},
      {"without a bridge", 16, ORVO_ERR_BAD_DEPTH, false},
      {"left unconverted", 16, ORVO_ERR_BAD_DEPTH, true, {kVendorDepthNotSupported}},
      {"no memory to convert", 32, ORVO_ERR_BAD_DEPTH, true, {kVendorNoMemory}},
      {"malformed", 24, ORVO_ERR_FAILURE, true, {}, true},
      {"malformed copy", 32, ORVO_ERR_FAILURE, true, {}, true},
  };
  for (const Failure& row : failures) {
    for (const bool inPlace : {false, true}) {
      SCOPED_TRACE(std::string(row.name) + (inPlace ? ", in place" : ""));
      own.CSSetLT(row.attached ? tools.get() : nullptr);
      const orvo::OwnedDib source = pictures::Noise(kWidth, kHeight, row.depth, 1);
      if (row.malformed) pictures::Locked(source.get()).header()->biHeight = 130;
      const orvo::OwnedDib original = pictures::CopyOf(source.get());
      const orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
      doubles::TheState().answers["L_ColorResBitmap"] = row.conversionCodes;
      DibHandle result = inPlace ? source.get() : old.get();
      EXPECT_EQ(run(source.get(), &result), row.code);
      EXPECT_EQ(numbers, Numbers{});
      if (hasResult) {
        EXPECT_EQ(result, source.get());
      }
      EXPECT_NE(GlobalSize(old.get()), 0U);
      EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
    }
  }
}

TEST_P(RedEyeFrame, NullSourceTouchesNothing) {
  const orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
  DibHandle result = old.get();
  EXPECT_EQ(run(nullptr, &result), ORVO_ERR_NULL_IMAGE);
  EXPECT_EQ(result, old.get());
  EXPECT_EQ(numbers, Numbers{});
}

// Fails the n-th allocation or lock, one after the other, until a call comes through untouched.
TEST_P(RedEyeFrame, FailingStepsLoseNothing) {
  std::map<int, int> codes;
  for (void (*failNth)(int) : {PlatformFailAllocation, PlatformFailLock}) {
    for (const int depth : {16, 24, 32}) {
      for (int n = 1; n <= 24; ++n) {
        SCOPED_TRACE(std::to_string(depth) + " bits, " + std::to_string(n));
        const orvo::OwnedDib source = Photograph(*tools, depth);
        const orvo::OwnedDib original = pictures::CopyOf(source.get());
        const orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
        DibHandle result = old.get();
        failNth(n);
        const int code = run(source.get(), &result);
        failNth(0);
        ++codes[code];
        EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
        const bool isNew = result != source.get() && result != old.get();
        const orvo::OwnedDib made(isNew ? result : nullptr);
        // The locks before a failing one are the source's; then come those of the working copy.
        if (code == ORVO_ERR_FAILURE && hasResult) {
          EXPECT_EQ(result, depth == 24 || n == 1 ? source.get() : old.get());
        }
        if (code == ORVO_ERR_BAD_DEPTH && hasResult) {
          EXPECT_EQ(result, source.get());
        }
        if (isNew) {
          EXPECT_TRUE(code == ORVO_OK || RowsOf(made.get()) == RowsOf(source.get()));
        } else {
          EXPECT_EQ(numbers.found, 73);
        }
        if (!hasResult) {
          EXPECT_EQ(numbers, code == ORVO_OK ? GetParam().written : Numbers{});
        }
      }
    }
  }
  EXPECT_GT(codes[ORVO_OK], 20);
  EXPECT_GT(codes[ORVO_ERR_FAILURE], 3);
  EXPECT_GT(codes[ORVO_ERR_BAD_DEPTH], 3);
  EXPECT_GT(codes[ORVO_ERR_NO_MEMORY], 0);
  EXPECT_EQ(codes.size(), 4U) << testing::PrintToString(codes);
}

// --- The table's entries -------------------------------------------------------------------------

class RedEyeEntries : public BridgeTest {
 protected:
  const orvo::OwnedInstance toolkit;
  std::unique_ptr<CLeadTools> tools = Bind();
  const orvo::OwnedDib face = Photograph(*tools, 24);
  const orvo::OwnedDib empty = Photograph(*tools, 24, false);
};

TEST_F(RedEyeEntries, SearchAndReduction) {
  Numbers n;
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), kEyeX + 1, kEyeY, &n.x, &n.y, &n.radius),
            ORVO_OK);
  EXPECT_EQ(n, (Numbers{kEyeX, kEyeY, 4}));
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), 50, 60, &n.x, &n.y, &n.radius),
            ORVO_ERR_FAILURE);
  EXPECT_EQ(n, (Numbers{50, 60, 2}));
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), kWidth, 60, &n.x, &n.y, &n.radius),
            ORVO_ERR_FAILURE);
  EXPECT_EQ(n, (Numbers{kWidth, 60, 0}));

  orvo::OwnedDib made;
  EXPECT_EQ(toolkit->ReduceRedEye(face.get(), made.receive(face), kEyeX, kEyeY, 4), ORVO_OK);
  ASSERT_TRUE(made);
  EXPECT_NE(pictures::Difference(face.get(), made.get()), "");
  EXPECT_EQ(toolkit->ReduceRedEyeInPlace(face.get(), kEyeX, kEyeY, 4), ORVO_OK);
  EXPECT_EQ(pictures::Difference(face.get(), made.get()), "");
}

TEST_F(RedEyeEntries, AutomaticKeepsAResultOnlyWhenSomethingWasFound) {
  orvo::OwnedDib made;
  int found = 0;
  EXPECT_EQ(toolkit->AutoRedEye(face.get(), made.receive(face), &found), ORVO_OK);
  EXPECT_EQ(found, 1);
  ASSERT_TRUE(made);
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(face.get(), &found), ORVO_OK);
  EXPECT_EQ(pictures::Difference(face.get(), made.get()), "");

  const orvo::OwnedDib before = pictures::CopyOf(empty.get());
  DibHandle result = empty.get();
  for (DibHandle old : {static_cast<DibHandle>(nullptr), made.get(), empty.get()}) {
    result = old;
    found = 9;
    EXPECT_EQ(toolkit->AutoRedEye(empty.get(), &result, &found), ORVO_ERR_FAILURE);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(result, nullptr);
  }
  EXPECT_NE(GlobalSize(made.get()), 0U);
  found = 9;
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(empty.get(), &found), ORVO_ERR_FAILURE);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(pictures::Difference(before.get(), empty.get()), "");
}

// The flag is the caller's then, and with it what becomes of the result.
TEST_F(RedEyeEntries, AutomaticAfterAnEarlyFailure) {
  const orvo::OwnedDib gray = pictures::Noise(20, 10, 8, 1);
  for (const int preset : {0, 1}) {
    orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
    int found = preset;
    DibHandle result = preset == 0 ? old.release() : old.get();
    EXPECT_EQ(toolkit->AutoRedEye(nullptr, &result, &found), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(result, preset == 0 ? nullptr : old.get());
    EXPECT_EQ(toolkit->AutoRedEye(gray.get(), &result, &found), ORVO_ERR_BAD_DEPTH);
    EXPECT_EQ(result, preset == 0 ? nullptr : gray.get());
    EXPECT_EQ(found, preset);
  }
}

TEST_F(RedEyeEntries, NullPointersAreRefused) {
  Numbers n;
  DibHandle result = nullptr;
  EXPECT_EQ(toolkit->SearchRedEyeRegion(face.get(), 1, 1, &n.x, nullptr, &n.radius),
            ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->ReduceRedEye(face.get(), nullptr, 1, 1, 1), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEye(face.get(), &result, nullptr), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEye(face.get(), nullptr, &n.found), ORVO_ERR_BAD_ARGUMENT);
  EXPECT_EQ(toolkit->AutoRedEyeInPlace(face.get(), nullptr), ORVO_ERR_BAD_ARGUMENT);
}

}  // namespace
}  // namespace bridge
