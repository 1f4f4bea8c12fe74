// What all image methods share: which calls reach the kernel in which order, which code comes first
// when several faults meet, and what every outcome leaves in the caller's handles.
#include "binding_fixture.h"
#include "methods.h"

namespace binding {
namespace {

bool IsAlive(DibHandle dib) {
  return GlobalSize(dib) != 0;
}

// One call of a method on a picture, with an older block standing in the result handle.
struct Trial {
  explicit Trial(bool isInPlace, int depth = 24)
      : inPlace(isInPlace), source(Photo(depth)), given(source.get()) {}
  ~Trial() {
    if (result != old.get() && result != source.get()) GlobalFree(result);
  }

  int run(CLeadTools& tools, const Method& method, int number, StatusCallback callback = nullptr) {
    Name(given, "source");
    Name(kToneTable, "table");
    TakeLog();
    const int code =
        method.call(tools, *source.address(), inPlace ? nullptr : &result, number, callback);
    log = TakeLog();
    return code;
  }
  int run(CLeadTools& tools, const Method& method, StatusCallback callback = nullptr) {
    return run(tools, method, method.number, callback);
  }

  // The caller's variable names a live block with the image as it was before the call.
  void expectSourceUnchanged() const {
    EXPECT_EQ(pictures::Difference(original.get(), source.get()), "");
    EXPECT_TRUE(inPlace || source.get() == given) << "the source passed to the module";
  }
  // The result handle was not written, or names the source; the older block stands either way.
  void expectNoResult(bool setToSource) const {
    EXPECT_TRUE(IsAlive(old.get()));
    EXPECT_EQ(result, setToSource && !inPlace ? source.get() : old.get());
  }

  bool inPlace;
  orvo::OwnedDib source;
  DibHandle given;
  orvo::OwnedDib original = pictures::CopyOf(source.get());
  orvo::OwnedDib old = pictures::Blank(3, 3, 24);
  DibHandle result = old.get();
  Log log;
};

std::string WayIn(const Trial& trial, int depth = 24) {
  const std::size_t pixels = orvo::kDibHeaderBytes + orvo::DibPaletteBytes(depth);
  return trial.inPlace ? "L_ChangeFromDIB(b1, source)"
                       : "L_ConvertFromDIB(b1, 7x5x" + std::to_string(depth) + ", +" +
                             std::to_string(pixels) + ", zeroed)";
}

std::string Release(const Trial& trial) {
  return trial.inPlace ? "L_ChangeToDIB(b1)" : "L_FreeBitmap(b1)";
}

std::string ModuleCall(const Method& method) {
  return method.own + "(" + method.moduleCall + ")";
}

// The image as a method that succeeds leaves it.
orvo::OwnedDib ChangedBy(const Method& method, DibHandle image) {
  orvo::OwnedDib changed = Inverted(image);
  if (method.stampsResolution) {
    const pictures::Locked locked(changed.get());
    locked.header()->biXPelsPerMeter = orvo::PixelsPerMetre(150);
    locked.header()->biYPelsPerMeter = orvo::PixelsPerMetre(100);
  }
  return changed;
}

class CycleTest : public BindingRows<Method> {};
INSTANTIATE_TEST_SUITE_P(Methods, CycleTest, testing::ValuesIn(Methods()), RowName());

TEST_P(CycleTest, SuccessGivesTheChangedImageAndPutsThePreviousCallbackBack) {
  const Method& method = GetParam();
  const auto tools = Bind();
  doubles::State& state = doubles::TheState();
  for (const int variant : {0, 1, 2, 3, 4, 5, 6, 7}) {
    SCOPED_TRACE(variant);
    Trial trial((variant & 1) != 0);
    state.freshHandles = (variant & 2) != 0;
    const bool watched = (variant & 4) != 0;
    state.installed = Earlier;
    ASSERT_EQ(trial.run(*tools, method, watched ? Watcher : nullptr), ORVO_OK);

    Log expected = {WayIn(trial)};
    const bool installs = watched && method.takesCallback;
    if (installs) expected.emplace_back("L_SetStatusCallBack(watcher, 0)");
    expected.push_back(ModuleCall(method));
    if (installs) expected.emplace_back("L_SetStatusCallBack(earlier, 0)");
    const Log back = trial.inPlace ? Log{method.givesBackInPlace} : method.givesBackNew;
    expected.insert(expected.end(), back.begin(), back.end());
    EXPECT_EQ(trial.log, expected);
    EXPECT_EQ(watchedPercent, installs ? 50 : -1);
    watchedPercent = -1;

    const orvo::OwnedDib changed = ChangedBy(method, trial.original.get());
    if (trial.inPlace) {
      EXPECT_EQ(pictures::Difference(changed.get(), trial.source.get()), "");
      EXPECT_EQ(IsAlive(trial.given), !state.freshHandles);
    } else {
      EXPECT_EQ(pictures::Difference(changed.get(), trial.result), "");
      EXPECT_EQ(IsAlive(trial.old.get()), !method.freesOldResult);
      trial.expectSourceUnchanged();
    }
  }
}

TEST_P(CycleTest, CallbackStaysInstalledWhenThereWasNoneBefore) {
  const auto tools = Bind();
  Trial trial(true);
  ASSERT_EQ(trial.run(*tools, GetParam(), Watcher), ORVO_OK);
  EXPECT_EQ(doubles::TheState().installed, GetParam().takesCallback ? Watcher : nullptr);
}

TEST_P(CycleTest, ModuleFailureLeavesTheSourceAndTheNewCallback) {
  const Method& method = GetParam();
  const auto tools = Bind();
  for (const bool inPlace : {false, true}) {
    SCOPED_TRACE(inPlace ? "in place" : "to new");
    Trial trial(inPlace);
    doubles::TheState().installed = Earlier;
    doubles::TheState().answers[method.own] = {kModuleBadParameter};
    EXPECT_EQ(trial.run(*tools, method, Watcher), ORVO_ERR_NOT_SUPPORTED);

    Log expected = {WayIn(trial), ModuleCall(method), Release(trial)};
    if (method.takesCallback) {
      expected.insert(expected.begin() + 1, "L_SetStatusCallBack(watcher, 0)");
    }
    EXPECT_EQ(trial.log, expected);
    trial.expectSourceUnchanged();
    trial.expectNoResult(method.failureSetsResult);
  }
}

TEST_P(CycleTest, CallbackCancels) {
  if (!GetParam().takesCallback) return;
  const auto tools = Bind();
  watcherAnswer = ORVO_ERR_CANCELLED;
  for (const bool inPlace : {false, true}) {
    Trial trial(inPlace);
    EXPECT_EQ(trial.run(*tools, GetParam(), Watcher), ORVO_ERR_CANCELLED);
    trial.expectSourceUnchanged();
    trial.expectNoResult(GetParam().failureSetsResult);
  }
}

TEST_P(CycleTest, DepthsOffTheListAreGivenBack) {
  const Method& method = GetParam();
  const auto tools = Bind();
  for (const bool inPlace : {false, true}) {
    for (const int depth : {1, 2, 4, 8, 16, 24, 32}) {
      SCOPED_TRACE(std::to_string(depth) + (inPlace ? " in place" : " to new"));
      Trial trial(inPlace, depth);
      doubles::TheState().installed = Earlier;
      const std::vector<int>& refused = method.refusedDepths;
      if (std::find(refused.begin(), refused.end(), depth) == refused.end()) {
        EXPECT_EQ(trial.run(*tools, method), ORVO_OK);
        EXPECT_EQ(trial.log.front(), WayIn(trial, depth));
        continue;
      }
      EXPECT_EQ(trial.run(*tools, method, Watcher), ORVO_ERR_BAD_DEPTH);
      trial.expectNoResult(method.refusedDepthSetsResult);
      EXPECT_EQ(trial.log.back(), Release(trial));
      if (method.depthTestedAfterCall) continue;
      EXPECT_EQ(trial.log, (Log{WayIn(trial, depth), Release(trial)}));
      trial.expectSourceUnchanged();
    }
  }
}

TEST_P(CycleTest, NumbersOutOfRangeTouchNoImage) {
  const Method& method = GetParam();
  const auto tools = Bind();
  for (const bool inPlace : {false, true}) {
    for (const int number : method.outOfRange) {
      SCOPED_TRACE(number);
      Trial trial(inPlace);
      EXPECT_EQ(trial.run(*tools, method, number, Watcher), ORVO_ERR_OUT_OF_RANGE);
      EXPECT_EQ(trial.log, Log());
      EXPECT_EQ(trial.source.get(), trial.given);
      trial.expectSourceUnchanged();
      trial.expectNoResult(true);
    }
    for (const int number : method.accepted) {
      Trial trial(inPlace);
      EXPECT_EQ(trial.run(*tools, method, number), ORVO_OK) << number;
    }
  }
}

TEST_P(CycleTest, EachMissingEntryIsReportedAndNothingTouched) {
  const Method& method = GetParam();
  std::set<std::string> entries = {"L_ChangeFromDIB", "L_SetStatusCallBack", "L_FreeBitmap",
                                   "L_ChangeToDIB", method.own};
  if (!method.needsCallbackEntry) {
    entries.erase("L_SetStatusCallBack");
    Trial trial(false);
    EXPECT_EQ(trial.run(*Bind({"L_SetStatusCallBack"}), method), ORVO_OK);
  }
  const int number = method.outOfRange.empty() ? method.number : method.outOfRange.front();
  for (const std::string& entry : entries) {
    const auto tools = Bind({entry});
    for (const bool inPlace : {false, true}) {
      SCOPED_TRACE(entry + (inPlace ? " in place" : " to new"));
      Trial trial(inPlace);
      EXPECT_EQ(trial.run(*tools, method, number, Watcher), ORVO_ERR_NO_VENDOR);
      EXPECT_EQ(trial.log, Log());
      EXPECT_EQ(trial.source.get(), trial.given);
      trial.expectNoResult(false);

      DibHandle none = nullptr;
      DibHandle* const result = inPlace ? nullptr : &trial.result;
      EXPECT_EQ(method.call(*tools, none, result, number, nullptr),
                method.bindingsFirst ? ORVO_ERR_NO_VENDOR : ORVO_ERR_NULL_IMAGE);
      trial.expectNoResult(false);
    }
  }
}

TEST_P(CycleTest, NullSourceComesBeforeTheRange) {
  const Method& method = GetParam();
  const auto tools = Bind();
  const int number = method.outOfRange.empty() ? method.number : method.outOfRange.front();
  for (const bool inPlace : {false, true}) {
    Trial trial(inPlace);
    trial.source.reset();
    EXPECT_EQ(trial.run(*tools, method, number, Watcher), ORVO_ERR_NULL_IMAGE);
    EXPECT_EQ(trial.log, Log());
    EXPECT_FALSE(trial.source);
    trial.expectNoResult(false);
  }
}

// A block that cannot be locked, or is too small for what its header says, never becomes a bitmap.
TEST_P(CycleTest, UnusableBlocksAreRefusedAndKept) {
  const Method& method = GetParam();
  const auto tools = Bind();
  for (const bool inPlace : {false, true}) {
    SCOPED_TRACE(inPlace ? "in place" : "to new");
    Trial trial(inPlace);
    pictures::Locked(trial.source.get()).header()->biWidth = 60000;
    const orvo::OwnedDib before = pictures::CopyOf(trial.source.get());
    const int code = trial.run(*tools, method);
    if (!method.refusedDepths.empty()) {
      EXPECT_EQ(code, ORVO_ERR_BAD_DEPTH);
    }
    EXPECT_TRUE(inPlace || code != ORVO_OK);
    EXPECT_EQ(pictures::Difference(before.get(), trial.source.get()), "");
  }
}

TEST_P(CycleTest, SourceAndResultMayBeOneVariable) {
  const Method& method = GetParam();
  const auto tools = Bind();
  orvo::OwnedDib image = Photo(24);
  const orvo::OwnedDib original = pictures::CopyOf(image.get());
  const orvo::OwnedDib changed = ChangedBy(method, image.get());
  void* const before = image.get();

  doubles::TheState().answers[method.own] = {kModuleFailure};
  EXPECT_EQ(method.call(*tools, *image.address(), image.address(), method.number, nullptr),
            ORVO_ERR_FAILURE);
  EXPECT_EQ(image.get(), before);
  EXPECT_EQ(pictures::Difference(original.get(), image.get()), "");

  EXPECT_EQ(method.call(*tools, *image.address(), image.address(), method.number, nullptr),
            ORVO_OK);
  EXPECT_NE(image.get(), before);
  EXPECT_EQ(IsAlive(before), !method.freesOldResult);
  if (!method.freesOldResult) GlobalFree(before);
  EXPECT_EQ(pictures::Difference(changed.get(), image.get()), "");
}

}  // namespace
}  // namespace binding
