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
      : image(std::move(picture)), toolkit_(toolkit), pair_(pair), inPlace_(inPlace) {}
  ~Trial() {
    if (isNew()) GlobalFree(made);
    if (!IsAlive(old.get())) old.release();
  }
  Trial(const Trial&) = delete;
  Trial& operator=(const Trial&) = delete;

  int run(int number) {
    DibHandle* const result = inPlace_ ? nullptr : &made;
    return Perform(toolkit_, pair_, image.address(), result, number, &Watch);
  }
  int run() { return run(pair_.number); }
  [[nodiscard]] bool isNew() const {
    return IsAlive(made) && made != image.get() && made != old.get();
  }
  void expectNothingMade(bool sourceInResult) const {
    EXPECT_EQ(Difference(original.get(), image.get()), "");
    EXPECT_TRUE(IsAlive(old.get()));
    EXPECT_EQ(made, sourceInResult && !inPlace_ ? image.get() : old.get());
  }

  OwnedDib image;
  OwnedDib original = pictures::CopyOf(image.get());
  OwnedDib old = pictures::Noise(7, 5, 24, 1);
  void* given = image.get();
  DibHandle made = old.get();

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
        check(pair, inPlace);
      }
    }
  }
};

TEST_F(Handles, AModuleThatFailsOrIsStopped) {
  forAll([&](const Pair& pair, bool inPlace) {
    Trial trial(toolkit.get(), pair, inPlace);
    state.answers[pair.entry] = {-13};
    EXPECT_EQ(trial.run(), ORVO_ERR_NOT_SUPPORTED);
    trial.expectNothingMade(!pair.stamps());
    EXPECT_EQ(log().back(), inPlace ? "L_ChangeToDIB(131x129x24)" : "L_FreeBitmap(131x129x24)");
    EXPECT_EQ(install(&Earlier), pair.watched() ? &Watch : &Earlier) << "the new one stays";
    if (!pair.watched()) return;
    stopAt = 0;
    EXPECT_EQ(trial.run(), ORVO_ERR_CANCELLED);
    trial.expectNothingMade(!pair.stamps());
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
      if (!taken) trial.expectNothingMade(pair.is("Intensity"));
      EXPECT_EQ(heard.empty(), !taken || !pair.watched());
      heard.clear();
    }
    // A block that cannot hold what its header says becomes no bitmap. The module, which does as
    // told here, may have answered before that is seen.
    OwnedDib torn = Face();
    Locked(torn.get()).header()->biWidth = 60000;
    Trial trial(toolkit.get(), pair, inPlace, std::move(torn));
    state.answers[pair.entry] = {1};
    EXPECT_EQ(trial.run(), !pair.takesAny() ? ORVO_ERR_BAD_DEPTH
                           : inPlace        ? ORVO_OK
                                            : ORVO_ERR_NO_MEMORY);
    trial.expectNothingMade(pair.takesAny() || pair.is("Intensity"));
    state.answers.clear();
  });
}

TEST_F(Handles, NumbersOutOfRangeReachNoModule) {
  forAll([&](const Pair& pair, bool inPlace) {
    for (const int number : pair.refused) {
      Trial trial(toolkit.get(), pair, inPlace);
      EXPECT_EQ(trial.run(number), ORVO_ERR_OUT_OF_RANGE) << number;
      trial.expectNothingMade(true);
      EXPECT_EQ(log(), Log());
    }
    for (const int number : pair.accepted) {
      EXPECT_EQ(Trial(toolkit.get(), pair, inPlace).run(number), ORVO_OK) << number;
    }
  });
}

// Null pointers first, then the source, the entries, the range; contrast looks at the entries
// first.
TEST_F(Handles, TestsComeInOrderAndEachMissingEntryIsTold) {
  Log hidden(watched::EntryNames().begin() + 12, watched::EntryNames().begin() + 35);
  for (const std::string& entry : hidden + Log{"ltkrn13n.dll"}) {
    if (entry == "L_ConvertFromDIB") continue;
    bind({entry});
    forAll([&](const Pair& pair, bool inPlace) {
      SCOPED_TRACE(entry);
      std::set<std::string> needed = {"L_ChangeFromDIB", "L_FreeBitmap", "L_ChangeToDIB",
                                      "ltkrn13n.dll", pair.entry};
      if (!pair.is("Bits")) needed.insert("L_SetStatusCallBack");
      if (pair.is("Trim") && inPlace) needed.insert("L_ChangeToDIB2");
      if (pair.stamps() && !inPlace) needed.insert("L_ConvertToDIB");
      const bool missing = needed.contains(entry);
      const int number = pair.refused.empty() ? pair.number : pair.refused.front();
      Trial trial(toolkit.get(), pair, inPlace);
      EXPECT_EQ(trial.run(missing ? number : pair.number), missing ? ORVO_ERR_NO_VENDOR : ORVO_OK);
      if (missing) {
        trial.expectNothingMade(false);
        EXPECT_EQ(log(), Log());
      }
      Trial none(toolkit.get(), pair, inPlace);
      none.image.reset();
      EXPECT_EQ(none.run(number),
                pair.is("Contrast") && missing ? ORVO_ERR_NO_VENDOR : ORVO_ERR_NULL_IMAGE);
      EXPECT_EQ(none.made, none.old.get());
    });
  }
  bind({"L_ConvertFromDIB"});  // without it a copy has no depth
  forAll([&](const Pair& pair, bool inPlace) {
    if (pair.takesAny() && !inPlace) return;
    const int refusal = pair.is("Rotate") ? ORVO_ERR_NO_BITMAP : ORVO_ERR_BAD_DEPTH;
    EXPECT_EQ(Trial(toolkit.get(), pair, inPlace).run(), inPlace ? int{ORVO_OK} : refusal);
    DibHandle* const null = nullptr;
    EXPECT_EQ(pair.call({toolkit.get(), pair.inPlace, null, null, false}, pair.number, &Watch),
              ORVO_ERR_BAD_ARGUMENT);
  });
  const OwnedDib face = Face();
  EXPECT_EQ(toolkit->Invert(face.get(), nullptr, nullptr), ORVO_ERR_BAD_ARGUMENT);
}

TEST_F(Handles, ModuleCodesBecomeTheToolkits) {
  const std::map<int, std::vector<int>> rows = {{1, {0}},
                                                {2, {-1, -3}},
                                                {8, {-2, -27}},
                                                {10, {-4, -5, -6, -7}},
                                                {11, {-10}},
                                                {12, {-14}},
                                                {13, {-8}},
                                                {14, {-9, -11, -12, -15}},
                                                {15, {-13, -16, -23}},
                                                {16, {-100, 2}},
                                                {17, {3, -17, -22, -28, -99, -101}}};
  OwnedDib image = pictures::Noise(4, 4, 24, 1);
  for (const auto& [code, module] : rows) {
    for (const int answered : module) {
      state.answers["L_InvertBitmap"] = {static_cast<double>(answered)};
      EXPECT_EQ(toolkit->InvertInPlace(image.address(), nullptr), code) << answered;
    }
  }
  std::string known;
  std::set<std::string> texts;
  for (int code = -1; code < 30; ++code) {
    if (std::string(OrvoResultName(code)) != "unknown") known += std::to_string(code) + " ";
    texts.insert(std::string(OrvoResultName(code)) + OrvoResultText(code));
  }
  EXPECT_EQ(known, "0 1 2 4 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 ");
  EXPECT_EQ(texts.size(), 20U) << "each code's own, and one for all others";
  EXPECT_STREQ(OrvoResultName(4), "ORVO_ERR_BAD_DEPTH");
}

// --- No memory -----------------------------------------------------------------------------------

using Fail = void (*)(int) noexcept;

// Whether the failure that was asked for has come; ends it when not.
bool HasFailed(Fail fail, int n) {
  void* probe = GlobalAlloc(GMEM_MOVEABLE, 8);
  bool failed = probe != nullptr;
  for (int i = 0; failed && i < n; ++i) {
    failed = GlobalLock(probe) != nullptr;
    GlobalFree(probe);
    probe = GlobalAlloc(GMEM_MOVEABLE, 8);
    failed = failed && probe != nullptr;
  }
  GlobalFree(probe);
  fail(0);
  return failed;
}

// Fails one allocation or lock after the other in each operation, until none is left to fail. What
// succeeds all the same is right; what does not keeps the source.
TEST_F(Handles, FailingMemoryLosesNothing) {
  state.newHandles = false;
  const auto exhaust = [&](const Pair& pair, int depth, bool inPlace, Fail fail) {
    const bool byMemory = fail == PlatformFailAllocation;
    const bool direct = depth % 16 != 0 && !pair.stamps();  // nothing that fails is passed over
    Trial right(toolkit.get(), pair, inPlace, Picture(depth));
    ASSERT_EQ(right.run(), ORVO_OK) << pair.name;
    int n = 0;
    for (bool failed = true; failed && ++n < 400;) {
      SCOPED_TRACE(pair.name + std::to_string(depth) + (inPlace ? " in place, " : ", ") +
                   (byMemory ? "allocation " : "lock ") + std::to_string(n));
      Trial trial(toolkit.get(), pair, inPlace, Picture(depth));
      log();
      fail(n);
      const int code = trial.run();
      failed = HasFailed(fail, n);
      log();
      ASSERT_TRUE(IsAlive(trial.image.get()));
      EXPECT_TRUE(trial.made == nullptr || IsAlive(trial.made));
      if (code != ORVO_OK) {
        EXPECT_TRUE(failed) << "a code without a cause";
        EXPECT_EQ(Difference(trial.original.get(), trial.image.get()), "");
        EXPECT_TRUE(!trial.isNew() || Difference(trial.original.get(), trial.made).empty());
        EXPECT_TRUE(!byMemory || !direct || code == ORVO_ERR_NO_MEMORY ||
                    (!pair.entry.empty() && !inPlace));
      } else if (direct || (byMemory && pair.stamps())) {
        EXPECT_EQ(inPlace ? Difference(right.image.get(), trial.image.get())
                          : Difference(right.made, trial.made),
                  "");
      }
    }
    EXPECT_LT(n, 400) << "never came through";
  };
  std::vector<Pair> all = ModulePairs();
  all.insert(all.end(), OwnPairs().begin(), OwnPairs().end());
  for (const Pair& pair : all) {
    for (const int depth : pair.entry.empty() ? pair.depths : std::vector<int>{24}) {
      for (const bool inPlace : {false, true}) {
        exhaust(pair, depth, inPlace, PlatformFailAllocation);
        exhaust(pair, depth, inPlace, PlatformFailLock);
      }
    }
  }
}

}  // namespace
}  // namespace table
