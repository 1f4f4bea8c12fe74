// What every test of the binding starts from and ends with: an empty log, no module hidden, and no
// block left when the test is over.
#ifndef TESTS_BINDING_BINDING_FIXTURE_H
#define TESTS_BINDING_BINDING_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include <orvo/CLeadTools.h>
#include <orvo/result_codes.h>

#include "double_log.h"
#include "module_hooks.h"
#include "platform/fault_injection.h"
#include "support/pictures.h"

namespace binding {

using Log = std::vector<std::string>;

// The calls since the last time. Taken between calls, when no block may be locked; a block that is
// freed takes its locks with it, so at the end of a test it would be too late to count them.
inline Log TakeLog() {
  EXPECT_EQ(PlatformHeldLocks(), 0U);
  return std::exchange(doubles::TheState().log, {});
}

inline void Name(const void* pointer, const char* name) {
  doubles::TheState().names[pointer] = name;
}

// What a watcher saw, and what it answers.
inline int watchedPercent = -1;
inline int watcherAnswer = 0;
inline int Watcher(int percent, void* userData) {
  watchedPercent = userData == nullptr ? percent : -2;
  return watcherAnswer;
}
inline int Earlier(int /*percent*/, void* /*userData*/) {
  return 0;
}

class BindingTest : public testing::Test {
 protected:
  void SetUp() override {
    doubles::Reset();
    hooks::Absent().clear();
    Name(reinterpret_cast<const void*>(&Watcher), "watcher");
    Name(reinterpret_cast<const void*>(&Earlier), "earlier");
    watchedPercent = -1;
    watcherAnswer = 0;
    blocks_ = PlatformLiveBlocks();
  }
  void TearDown() override {
    PlatformFailAllocation(0);
    PlatformFailLock(0);
    EXPECT_EQ(PlatformLiveBlocks(), blocks_) << "blocks leaked or freed twice";
  }

 private:
  std::size_t blocks_ = 0;
};

template <class Row>
class BindingRows : public BindingTest, public testing::WithParamInterface<Row> {};

// Names a row's test by its `name` field.
struct RowName {
  template <class Info>
  std::string operator()(const Info& info) const {
    return info.param.name;
  }
};

// A binding bound with these entries or modules missing; the log of the binding is thrown away.
inline std::unique_ptr<CLeadTools> Bind(const std::set<std::string>& absent = {}) {
  hooks::Absent() = absent;
  std::unique_ptr<CLeadTools> tools(new CLeadTools);
  TakeLog();
  return tools;
}

// A picture of 7 x 5 pixels of noise, 300 by 200 dots per inch.
inline orvo::OwnedDib Photo(int depth) {
  orvo::OwnedDib photo = pictures::Noise(7, 5, depth, 1);
  pictures::Locked(photo.get()).header()->biYPelsPerMeter = orvo::PixelsPerMetre(200);
  return photo;
}

// The picture as an operation of the doubles leaves it.
inline orvo::OwnedDib Inverted(DibHandle image) {
  orvo::OwnedDib inverted = pictures::CopyOf(image);
  const pictures::Locked locked(inverted.get());
  const orvo::DibLayout layout = locked.layout();
  for (std::size_t i = layout.pixelOffset; i < layout.totalBytes; ++i) locked.bytes()[i] ^= 0xFF;
  return inverted;
}

}  // namespace binding

#endif  // TESTS_BINDING_BINDING_FIXTURE_H
