// The frames round the pixel functions for sharpness and red-eye: depths, working copies, handles,
// what is written, and every failure on the way.
#include <orvo/COrvoCS.h>

#include "binding_fixture.h"
#include "imaging/adjust/sharpness.h"
#include "imaging/redeye/auto_red_eye.h"
#include "imaging/redeye/reduce.h"
#include "photograph.h"

using namespace orvo;

namespace binding {
namespace {

constexpr std::uint8_t kLevel = 10;

struct Operation {
  std::string name;
  int (*run)(COrvoCS& own, DibHandle source, DibHandle* result, Numbers& numbers);
  // The pixel function; null where there is no result.
  void (*change)(const std::uint8_t* source, std::uint8_t* target, std::uint8_t depth);
  Numbers written = {};  // on success
  bool isAdjust = false;
};

void PrintTo(const Operation& operation, std::ostream* out) {
  *out << operation.name;
}

const Operation kOperations[] = {
    {.name = "sharpness",
     .run = [](COrvoCS& own, DibHandle source, DibHandle* result,
               Numbers&) { return own.CSSharpnessAdjust(source, result, kLevel); },
     .change =
         [](const std::uint8_t* source, std::uint8_t* target, std::uint8_t depth) {
           EXPECT_EQ(ImgSharpnessAdjust(source, target, kWidth, kHeight, depth, kLevel), 0);
         },
     .isAdjust = true},
    {.name = "search",
     .run =
         [](COrvoCS& own, DibHandle source, DibHandle*, Numbers& n) {
           return own.CSSearchRedEyeRegion(source, kEyeX, kEyeY, &n.x, &n.y, &n.radius);
         },
     .change = nullptr,
     .written = {kEyeX, kEyeY, kEyeRadius}},
    {.name = "reduce",
     .run = [](COrvoCS& own, DibHandle source, DibHandle* result,
               Numbers&) { return own.CSReduceRedEye(source, result, kEyeX, kEyeY, kEyeRadius); },
     .change =
         [](const std::uint8_t* source, std::uint8_t* target, std::uint8_t) {
           ImgReduceRedEye(source, target, kWidth, kHeight, {kEyeX, kEyeY, kEyeRadius});
         }},
    {.name = "automatic",
     .run = [](COrvoCS& own, DibHandle source, DibHandle* result,
               Numbers& n) { return own.CSAutoRedEye(source, result, &n.found); },
     .change = [](const std::uint8_t* source, std::uint8_t* target,
                  std::uint8_t) { EXPECT_EQ(ImgAutoRedEye(source, target, kWidth, kHeight), 0); },
     .written = {.found = 1}},
};

class ImageFrame : public BindingRows<Operation> {
 protected:
  ImageFrame() { own.CSSetLT(tools.get()); }
  int run(DibHandle source, DibHandle* result) {
    numbers = {};
    const int code = GetParam().run(own, source, result, numbers);
    EXPECT_EQ(PlatformHeldLocks(), 0U);
    return code;
  }
  // What the pixel function makes of an image, by way of 24 bits where it takes no other.
  orvo::OwnedDib changed(DibHandle source, bool inPlace) const {
    const int depth = pictures::Locked(source).header()->biBitCount;
    const bool byCopy = depth == 16 || depth == 32;
    orvo::OwnedDib from = pictures::CopyOf(source);
    if (byCopy) tools->LTConvertToColorRes(*from.address(), nullptr, 24);
    orvo::OwnedDib to = pictures::CopyOf(from.get());
    GetParam().change(pictures::Locked((inPlace || byCopy ? to : from).get()).row(0),
                      pictures::Locked(to.get()).row(0), depth == 8 ? 8 : 24);
    if (byCopy) tools->LTConvertToColorRes(*to.address(), nullptr, depth);
    return to;
  }

  std::unique_ptr<CLeadTools> tools = Bind();
  COrvoCS own;
  const bool isAdjust = GetParam().isAdjust;
  const bool hasResult = GetParam().change != nullptr;
  Numbers numbers;
};
INSTANTIATE_TEST_SUITE_P(All, ImageFrame, testing::ValuesIn(kOperations), RowName());

// Header and palette, and the rows.
using Bytes = std::vector<std::uint8_t>;
std::pair<Bytes, Bytes> PartsOf(DibHandle image) {
  const Bytes bytes = pictures::BytesOf(image);
  const auto pixels =
      static_cast<std::ptrdiff_t>(orvo::DibLayoutOf(bytes.data(), bytes.size())->pixelOffset);
  return {{bytes.begin(), bytes.begin() + pixels}, {bytes.begin() + pixels, bytes.end()}};
}

// The modules may give a block back under another handle, but the caller's stays.
TEST_P(ImageFrame, DepthsAndHandles) {
  for (const int depth : {8, 16, 24, 32, -16, -32}) {
    if (depth == 8 && !isAdjust) continue;
    SCOPED_TRACE(depth);
    doubles::TheState().freshHandles = depth > 0;
    const orvo::OwnedDib source = Photograph(*tools, std::abs(depth));
    const orvo::OwnedDib original = pictures::CopyOf(source.get());
    const orvo::OwnedDib old = pictures::CopyOf(source.get());
    DibHandle result = old.get();
    // Nothing but the low byte of the field is the depth.
    const auto depthOf = [](DibHandle image) -> std::uint16_t& {
      return pictures::Locked(image).header()->biBitCount;
    };
    if (depth == 24) depthOf(source.get()) = 0x118;
    EXPECT_EQ(run(source.get(), &result), ORVO_OK);
    if (hasResult) {
      EXPECT_EQ(std::exchange(depthOf(result), std::abs(depth)), depthOf(source.get()));
    }
    depthOf(source.get()) = static_cast<std::uint16_t>(std::abs(depth));
    EXPECT_EQ(numbers, GetParam().written);
    EXPECT_NE(GlobalSize(old.get()), 0U) << "an older result is overwritten, not freed";
    EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
    EXPECT_EQ(result == old.get(), !hasResult);
    if (!hasResult) continue;
    const orvo::OwnedDib made(result);
    EXPECT_TRUE(PartsOf(made.get()).first == PartsOf(source.get()).first);
    EXPECT_TRUE(PartsOf(made.get()).second == PartsOf(changed(source.get(), false).get()).second);
    EXPECT_NE(pictures::Difference(made.get(), source.get()), "");

    const orvo::OwnedDib expected = changed(source.get(), true);
    result = source.get();
    EXPECT_EQ(run(source.get(), &result), ORVO_OK);
    EXPECT_EQ(result, source.get());
    EXPECT_TRUE(PartsOf(source.get()).first == PartsOf(original.get()).first);
    EXPECT_TRUE(PartsOf(source.get()).second == PartsOf(expected.get()).second) << "in place";
  }
}

struct Failure {
  const char* name;
  int depth;
  int adjustCode;
  int redEyeCode;
  std::set<std::string> absent = {};
  std::deque<int> conversionCodes = {};
  bool attached = true;
  bool inColor = false;
  bool malformed = false;
};

TEST_P(ImageFrame, FailuresBeforeTheWorkLeaveAllAsItWas) {
  constexpr int kOk = ORVO_OK;
  constexpr int kFailure = ORVO_ERR_FAILURE;
  constexpr int kBadDepth = ORVO_ERR_BAD_DEPTH;
  const Failure failures[] = {
      {"one bit", 1, kBadDepth, kBadDepth},
      {"four bits", 4, kBadDepth, kBadDepth},
      {"gray", 8, kOk, kBadDepth},
      {.name = "colours",
       .depth = 8,
       .adjustCode = kBadDepth,
       .redEyeCode = kBadDepth,
       .inColor = true},
      {"gray without the kernel", 8, kBadDepth, kBadDepth, {"ltkrn13n.dll"}},
      {"16 bits without the kernel", 16, kBadDepth, kBadDepth, {"ltkrn13n.dll"}},
      {"32 bits without the kernel", 32, kBadDepth, kBadDepth, {"ltkrn13n.dll"}},
      {"24 bits without a binding", 24, kFailure, kOk, {}, {}, false},
      {"16 bits without a binding", 16, kFailure, kBadDepth, {}, {}, false},
      {"left unconverted", 16, kBadDepth, kBadDepth, {}, {kModuleDepthNotSupported}},
      {"no memory to convert", 32, kBadDepth, kBadDepth, {}, {kModuleNoMemory}},
      {"malformed gray", 8, kFailure, kFailure, {}, {}, true, false, true},
      {"malformed", 24, kFailure, kFailure, {}, {}, true, false, true},
      {"malformed copy", 32, kFailure, kFailure, {}, {}, true, false, true},
  };
  for (const Failure& row : failures) {
    const int code = isAdjust ? row.adjustCode : row.redEyeCode;
    if (code == ORVO_OK) continue;
    for (const bool inPlace : {false, true}) {
      SCOPED_TRACE(std::string(row.name) + (inPlace ? ", in place" : ""));
      tools = Bind(row.absent);
      own.CSSetLT(row.attached ? tools.get() : nullptr);
      const orvo::OwnedDib source = row.inColor
                                        ? pictures::NoiseInColor(kWidth, kHeight, row.depth, 1)
                                        : pictures::Noise(kWidth, kHeight, row.depth, 1);
      if (row.malformed) pictures::Locked(source.get()).header()->biHeight = 130;
      const orvo::OwnedDib original = pictures::CopyOf(source.get());
      const orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
      doubles::TheState().answers["L_ColorResBitmap"] = row.conversionCodes;
      DibHandle result = inPlace ? source.get() : old.get();
      EXPECT_EQ(run(source.get(), &result), code);
      EXPECT_EQ(numbers, Numbers{});
      if (hasResult) {
        EXPECT_EQ(result, source.get());
      }
      EXPECT_NE(GlobalSize(old.get()), 0U);
      EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
    }
  }
}

TEST_P(ImageFrame, NullSource) {
  const orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
  for (CLeadTools* const binding : {tools.get(), static_cast<CLeadTools*>(nullptr)}) {
    own.CSSetLT(binding);
    DibHandle result = old.get();
    EXPECT_EQ(run(nullptr, &result), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(result, isAdjust ? nullptr : old.get());
    EXPECT_EQ(numbers, Numbers{});
  }
}

// Fails the n-th allocation or lock, one after the other, until a call comes through untouched.
TEST_P(ImageFrame, FailingStepsLoseNothing) {
  std::map<int, int> codes;
  for (void (*failNth)(int) : {PlatformFailAllocation, PlatformFailLock}) {
    for (const int depth : {8, 16, 24, 32, -16, -24, -32}) {
      if (depth == 8 && !isAdjust) continue;
      const bool inPlace = depth < 0;
      for (int n = 1; n <= 24; ++n) {
        SCOPED_TRACE(std::to_string(depth) + " bits, " + std::to_string(n));
        const orvo::OwnedDib source = Photograph(*tools, std::abs(depth));
        const orvo::OwnedDib original = pictures::CopyOf(source.get());
        const orvo::OwnedDib old = pictures::Noise(7, 5, 24, 1);
        DibHandle result = inPlace ? source.get() : old.get();
        failNth(n);
        const int code = run(source.get(), &result);
        failNth(0);
        ++codes[code];
        EXPECT_NE(code,
                  failNth == PlatformFailLock ? int{ORVO_ERR_NO_MEMORY} : int{ORVO_ERR_FAILURE});
        EXPECT_EQ(pictures::Locked(source.get()).header()->biBitCount, std::abs(depth));
        if (!inPlace || code == ORVO_ERR_BAD_DEPTH) {
          EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
        }
        const bool isNew = result != source.get() && result != old.get();
        const orvo::OwnedDib made(isNew ? result : nullptr);
        if (hasResult && code == ORVO_ERR_BAD_DEPTH) {
          EXPECT_EQ(result, source.get());
        }
        // The locks before a failing one are the source's; then come those of the working copy.
        if (hasResult && !inPlace && code == ORVO_ERR_FAILURE) {
          EXPECT_EQ(result, isAdjust || depth == 24 || n == 1 ? source.get() : old.get());
        }
        if (isNew && code != ORVO_OK) {
          EXPECT_EQ(pictures::Difference(source.get(), made.get()), "") << "so far a copy";
        }
        if (code == ORVO_OK) {
          EXPECT_EQ(numbers, GetParam().written);
        } else {
          EXPECT_TRUE(numbers == Numbers{} || numbers == Numbers{.found = 0});
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

class Levels : public BindingTest {};

TEST_F(Levels, OutOfRangeComesBeforeTheSource) {
  COrvoCS own;
  const orvo::OwnedDib photo = Photo(24);
  for (DibHandle source : {photo.get(), static_cast<DibHandle>(nullptr)}) {
    for (const int level : {11, 255}) {
      DibHandle result = nullptr;
      EXPECT_EQ(own.CSSharpnessAdjust(source, &result, static_cast<std::uint8_t>(level)),
                ORVO_ERR_OUT_OF_RANGE);
      EXPECT_EQ(result, source);
    }
  }
}

}  // namespace
}  // namespace binding
