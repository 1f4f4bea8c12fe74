// Calls that overlap though they must not are noticed in builds without NDEBUG, and in those alone.
#include <functional>
#include <thread>

#include "toolkit_test.h"

namespace table {
namespace {

class Overlap : public ToolkitTest {
 protected:
  // What is said while another thread works during a call.
  static std::string said(const std::function<void()>& call, std::function<void()> other) {
    beside = std::move(other);
    testing::internal::CaptureStderr();
    call();
    return testing::internal::GetCapturedStderr();
  }
  // A callback: the other thread's work, once.
  static int Beside(int /*percent*/, void* /*userData*/) {
    if (const auto work = std::exchange(beside, nullptr)) std::thread(work).join();
    return ORVO_OK;
  }
  inline static std::function<void()> beside;

#if defined(NDEBUG)
  static constexpr const char *kInstance = "", *kImage = "";
#else
  static constexpr const char* kInstance =
      "orvo: two threads are in calls of one instance at the same time\n";
  static constexpr const char* kImage = "orvo: two threads work on one image at the same time\n";
#endif
};

TEST_F(Overlap, IsSaidOfInstancesAndImages) {
  state.newHandles = state.writes = false;
  const orvo::OwnedInstance second;
  OwnedDib image = Face(), other = Face(), result;
  const auto invert = [&] { toolkit->InvertInPlace(image.address(), &Beside); };
  const auto copy = [&] { toolkit->Rotate(image.get(), result.receive(image), 90, &Beside); };

  EXPECT_EQ(said(invert, [&] { toolkit->GetVersion(nullptr); }), kInstance);
  EXPECT_EQ(said(invert, [&] { second->WhitenessAdjustInPlace(other.get(), 9); }), "");
  EXPECT_EQ(said(invert, [&] { second->WhitenessAdjustInPlace(image.get(), 9); }), kImage);
  EXPECT_EQ(said(copy, [&] { second->WhitenessAdjustInPlace(image.get(), 9); }), kImage);
  RECT rect;
  EXPECT_EQ(said(invert, [&] { second->GetAutoTrimRect(image.get(), 9, &rect); }), kImage);
  EXPECT_EQ(said(copy, [&] { second->GetAutoTrimRect(image.get(), 9, &rect); }), "");
  // One after another, and one within another.
  EXPECT_EQ(said([&] { std::thread(invert).join(); }, [] {}), "");
  EXPECT_EQ(
      said([&] { toolkit->Descreen(image.get(), result.receive(image), 1, 9, nullptr); }, [] {}),
      "");
}

TEST_F(Overlap, TheEndOfAnInstanceIsACall) {
  OwnedDib image = Face();
  const auto end = [&] {
    beside = [&] {
      DestroyORVOInstance(toolkit.get());
      std::_Exit(0);
    };
    toolkit->InvertInPlace(image.address(), &Beside);
  };
  EXPECT_EXIT(end(), testing::ExitedWithCode(0), std::string("^") + kInstance + "$");
}

}  // namespace
}  // namespace table
