// What every operation refuses, in which order, and what a failure leaves: the source as it was,
// handles that are valid, no block lost.
#include <algorithm>

#include "pairs.h"

namespace table {
namespace {

// One call with an older block in the result handle, and what it left.
class Trial {
 public:
  Trial(COrvoInstance* toolkit, const Pair& pair, bool inPlace, OwnedDib picture = Face())
      : image(std::move(picture)),
        original(pictures::CopyOf(image.get())),
        given(image.get()),
        made(old.get()),
        toolkit_(toolkit),
        pair_(pair),
        inPlace_(inPlace) {}
  ~Trial() {
    if (isNew()) GlobalFree(made);
  }
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;

  int run(int number) {
    DibHandle* const result = inPlace_ ? nullptr : &made;
    const int code = Perform(toolkit_, pair_, image.address(), result, number, &Watch);
    // The block that stood there is gone when another took its place.
    if (!IsAlive(old.get())) old.release();
    return code;
  }
  int run() { return run(pair_.number); }

  [[nodiscard]] bool isNew() const {
    return made != nullptr && made != given && made != image.get() && made != old.get();
  }
  void expectSourceKept() const {
    EXPECT_TRUE(IsAlive(image.get()));
    EXPECT_EQ(Difference(original.get(), image.get()), "");
  }
  void expectNothingMade(bool sourceInResult) const {
    expectSourceKept();
    EXPECT_TRUE(IsAlive(old.get()));
    if (!inPlace_) {
      EXPECT_EQ(made, sourceInResult ? image.get() : old.get());
    }
  }

  OwnedDib image;
  OwnedDib original;
  OwnedDib old = pictures::Noise(7, 5, 24, 1);
  void* given;
  DibHandle made;

 private:
  COrvoInstance* toolkit_;
  const Pair& pair_;
  bool inPlace_;
};

class Handles : public ToolkitTest {
 protected:
  // Each module operation in both forms.
  template <class Check>
  void forAll(const Check& check) {
    for (const Pair& pair : ModulePairs()) {
      for (const bool inPlace : {false, true}) {
        SCOPED_TRACE(pair.name + (inPlace ? " in place" : ""));
        install(&Earlier);
        log();
        heard.clear();
        stopAt = -1;
        state.names[tones] = "tones";
        check(pair, inPlace);
      }
    }
  }
  static std::string EntryOf(const Pair& pair) {
    return pair.moduleCall.substr(0, pair.moduleCall.find('('));
  }
};

TEST_F(Handles, AModuleThatFailsOrIsStopped) {
  forAll([&](const Pair& pair, bool inPlace) {
    Trial trial(toolkit.get(), pair, inPlace);
    state.answers[EntryOf(pair)] = {-13};
    EXPECT_EQ(trial.run(), ORVO_ERR_NOT_SUPPORTED);
    trial.expectNothingMade(pair.failureSetsResult);
    Log expected{inPlace ? "L_ChangeFromDIB(0x0x0, *)" : "L_ConvertFromDIB(0x0x0, *, *)",
                 pair.moduleCall,
                 inPlace ? "L_ChangeToDIB(131x129x24)" : "L_FreeBitmap(131x129x24)"};
    if (pair.watched) expected.insert(expected.begin() + 1, "L_SetStatusCallBack(watch, 0)");
    EXPECT_EQ(log(), expected);
    EXPECT_EQ(install(&Earlier), pair.watched ? &Watch : &Earlier) << "the new one stays";
    if (!pair.watched) return;
    stopAt = 0;
    Trial stopped(toolkit.get(), pair, inPlace);
    EXPECT_EQ(stopped.run(), ORVO_ERR_CANCELLED);
    stopped.expectNothingMade(pair.failureSetsResult);
    EXPECT_EQ(heard.back(), 0);
  });
}

TEST_F(Handles, DepthsOffTheListAreGivenBack) {
  forAll([&](const Pair& pair, bool inPlace) {
    for (const int depth : {1, 4, 8, 16, 24, 32}) {
      SCOPED_TRACE(depth);
      Trial trial(toolkit.get(), pair, inPlace, Picture(depth));
      const bool taken = std::count(pair.depths.begin(), pair.depths.end(), depth) > 0;
      EXPECT_EQ(trial.run(), taken ? ORVO_OK : ORVO_ERR_BAD_DEPTH);
      if (!taken) trial.expectNothingMade(pair.refusedDepthSetsResult);
      EXPECT_EQ(heard.empty(), !taken || !pair.watched);
      heard.clear();
    }
    // A block that cannot hold what its header says becomes no bitmap. One or the other depth is
    // tested when the module, which does as told here, has answered.
    Trial trial(toolkit.get(), pair, inPlace);
    Locked(trial.image.get()).header()->biWidth = 60000;
    trial.original = pictures::CopyOf(trial.image.get());
    state.answers[EntryOf(pair)] = {1};
    const int code = trial.run();
    state.answers.clear();
    if (pair.depths.size() == 7) {
      EXPECT_EQ(code, inPlace ? ORVO_OK : ORVO_ERR_NO_MEMORY);
      trial.expectNothingMade(true);
    } else {
      EXPECT_EQ(code, ORVO_ERR_BAD_DEPTH);
      trial.expectNothingMade(pair.refusedDepthSetsResult);
    }
  });
}

TEST_F(Handles, NumbersOutOfRangeReachNoModule) {
  forAll([&](const Pair& pair, bool inPlace) {
    for (const int number : pair.refused) {
      SCOPED_TRACE(number);
      Trial trial(toolkit.get(), pair, inPlace);
      EXPECT_EQ(trial.run(number), ORVO_ERR_OUT_OF_RANGE);
      trial.expectNothingMade(true);
      EXPECT_EQ(log(), Log());
    }
    for (const int number : pair.accepted) {
      EXPECT_EQ(Trial(toolkit.get(), pair, inPlace).run(number), ORVO_OK) << number;
    }
  });
}

// Null pointers first, then the source, the entries, the range; contrast looks at the entries first.
TEST_F(Handles, TestsComeInOrderAndEachMissingEntryIsTold) {
  const std::string entries =
      "L_ChangeFromDIB L_ChangeToDIB L_ChangeToDIB2 L_ColorResBitmap L_DefaultDithering "
      "L_FreeBitmap L_GrayScaleBitmap L_RotateBitmap L_SetStatusCallBack L_TrimBitmap "
      "L_ConvertToDIB L_SizeBitmap L_ChangeBitmapContrast L_ChangeBitmapHue "
      "L_ChangeBitmapIntensity L_GammaCorrectBitmap L_InvertBitmap L_RemapBitmapIntensity "
      "L_SharpenBitmap L_ChangeBitmapSaturation ltkrn13n.dll";
  std::istringstream names(entries);
  for (std::string entry; names >> entry;) {
    bind({entry});
    forAll([&](const Pair& pair, bool inPlace) {
      SCOPED_TRACE(entry);
      const std::string needs = " L_ChangeFromDIB L_FreeBitmap L_ChangeToDIB ltkrn13n.dll " +
                                pair.needs + (pair.name == "Trim" && inPlace ? " L_ChangeToDIB2" : "") +
                                (pair.freesOldResult || inPlace ? " " : " L_ConvertToDIB ");
      const bool missing = (needs + " ").find(" " + entry + " ") != std::string::npos;
      const int number = pair.refused.empty() ? pair.number : pair.refused.front();
      Trial trial(toolkit.get(), pair, inPlace);
      if (missing) {
        EXPECT_EQ(trial.run(number), ORVO_ERR_NO_VENDOR);
        trial.expectNothingMade(false);
        EXPECT_EQ(trial.image.get(), trial.given);
        EXPECT_EQ(log(), Log());
      } else {
        EXPECT_EQ(trial.run(), ORVO_OK);
      }
      Trial none(toolkit.get(), pair, inPlace);
      none.image.reset();
      EXPECT_EQ(none.run(number),
                pair.bindingsFirst && missing ? ORVO_ERR_NO_VENDOR : ORVO_ERR_NULL_IMAGE);
      EXPECT_EQ(none.made, none.old.get());
      EXPECT_EQ(none.image.get(), nullptr);
    });
  }
  bind({"L_ConvertFromDIB"});  // without it a copy has no depth
  forAll([&](const Pair& pair, bool inPlace) {
    if (pair.depths.size() == 7 && !inPlace) return;
    const int refusal = pair.name == "Rotate" ? ORVO_ERR_NO_BITMAP : ORVO_ERR_BAD_DEPTH;
    EXPECT_EQ(Trial(toolkit.get(), pair, inPlace).run(), inPlace ? int{ORVO_OK} : refusal);
  });
  const OwnedDib face = Face();
  DibHandle* const none = nullptr;
  for (const Pair& pair : ModulePairs()) {
    EXPECT_EQ(pair.call({toolkit.get(), pair.inPlace, none, none, false}, pair.number, &Watch),
              ORVO_ERR_BAD_ARGUMENT);
  }
}

TEST_F(Handles, SourceAndResultMayBeOneVariable) {
  for (const Pair& pair : ModulePairs()) {
    SCOPED_TRACE(pair.name);
    Trial expected(toolkit.get(), pair, false);
    ASSERT_EQ(expected.run(), ORVO_OK);
    OwnedDib image = Face();
    void* const before = image.get();
    const auto run = [&] {
      return Perform(toolkit.get(), pair, image.address(), image.address(), pair.number, nullptr);
    };
    state.answers[EntryOf(pair)] = {0};
    EXPECT_EQ(run(), ORVO_ERR_FAILURE);
    EXPECT_EQ(image.get(), before);
    EXPECT_EQ(Difference(expected.original.get(), image.get()), "");
    EXPECT_EQ(run(), ORVO_OK);
    EXPECT_EQ(IsAlive(before), !pair.freesOldResult);
    if (!pair.freesOldResult) GlobalFree(before);
    EXPECT_EQ(Difference(expected.made, image.get()), "");
  }
}

TEST_F(Handles, ModuleCodesBecomeTheToolkits) {
  const std::vector<std::vector<int>> rows = {
      {ORVO_ERR_FAILURE, 0},      {ORVO_ERR_NO_MEMORY, -1, -3},   {ORVO_ERR_NO_BITMAP, -2, -27},
      {ORVO_ERR_FILE_IO, -4, -5, -6, -7}, {ORVO_ERR_FILE_NOT_FOUND, -10}, {ORVO_ERR_FILE_OPEN, -14},
      {ORVO_ERR_BAD_FILE, -8},    {ORVO_ERR_BAD_FORMAT, -9, -11, -12, -15},
      {ORVO_ERR_NOT_SUPPORTED, -13, -16, -23}, {ORVO_ERR_CANCELLED, -100, 2},
      {ORVO_ERR_VENDOR, 3, -17, -22, -24, -26, -28, -99, -101, 100}};
  OwnedDib image = pictures::Noise(4, 4, 24, 1);
  for (const std::vector<int>& row : rows) {
    for (std::size_t i = 1; i < row.size(); ++i) {
      state.answers["L_InvertBitmap"] = {static_cast<double>(row[i])};
      EXPECT_EQ(toolkit->InvertInPlace(image.address(), nullptr), row[0]) << row[i];
    }
  }
}

// --- No memory -----------------------------------------------------------------------------------

using Fail = void (*)(int) noexcept;

// Whether the failure that was asked for has come; ends it when not.
bool HasFailed(Fail fail, int n) {
  bool failed = true;
  OwnedDib probe(GlobalAlloc(GMEM_MOVEABLE, 8));
  failed = static_cast<bool>(probe);
  for (int i = 0; failed && i < n; ++i) {
    if (fail == PlatformFailLock) {
      failed = GlobalLock(probe.get()) != nullptr;
    } else {
      void* const block = GlobalAlloc(GMEM_MOVEABLE, 8);
      failed = block != nullptr;
      GlobalFree(block);
    }
  }
  fail(0);
  return failed;
}

// Fails one allocation or lock after the other in each operation, until none is left to fail. What
// succeeds all the same is right; what does not keeps the source, but for pixels changed in place.
TEST_F(Handles, FailingMemoryLosesNothing) {
  state.newHandles = false;
  std::vector<Pair> all = ModulePairs();
  all.insert(all.end(), OwnPairs().begin(), OwnPairs().end());
  for (const Pair& pair : all) {
    for (const bool inPlace : {false, true}) {
      Trial right(toolkit.get(), pair, inPlace);
      ASSERT_EQ(right.run(), ORVO_OK) << pair.name;
      for (const Fail fail : {Fail{PlatformFailAllocation}, Fail{PlatformFailLock}}) {
        constexpr int kMost = 400;
        bool failed = true;
        int n = 0;
        while (failed && ++n < kMost) {
          SCOPED_TRACE(pair.name + (inPlace ? " in place" : "") +
                       (fail == PlatformFailLock ? ", lock " : ", allocation ") + std::to_string(n));
          Trial trial(toolkit.get(), pair, inPlace);
          fail(n);
          const int code = trial.run();
          failed = HasFailed(fail, n);
          EXPECT_EQ(PlatformHeldLocks(), 0U);
          EXPECT_TRUE(IsAlive(trial.image.get()));
          EXPECT_TRUE(trial.made == nullptr || IsAlive(trial.made));
          const bool unstamped = pair.name == "ChangeResolution" && fail == PlatformFailLock;
          if (code == ORVO_OK && !unstamped) {
            EXPECT_EQ(inPlace ? Difference(right.image.get(), trial.image.get())
                              : Difference(right.made, trial.made),
                      "");
          } else if (code != ORVO_OK) {
            EXPECT_TRUE(failed) << "a code without a cause";
            trial.expectSourceKept();
            if (trial.isNew()) {
              EXPECT_EQ(Difference(trial.original.get(), trial.made), "") << "so far a copy";
            }
          }
          log();
        }
        EXPECT_LT(n, kMost) << "never came through";
      }
    }
  }
}

}  // namespace
}  // namespace table
