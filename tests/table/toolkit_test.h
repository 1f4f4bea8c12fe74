// What every test of the table starts from and ends with: a toolkit with all modules, an empty log,
// and no block or lock left when the test is over.
#ifndef TESTS_TABLE_TOOLKIT_TEST_H
#define TESTS_TABLE_TOOLKIT_TEST_H

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <concepts>
#include <memory>
#include <ranges>
#include <sstream>
#include <utility>

#include <orvo/orvo.h>

#include "platform/fault_injection.h"
#include "support/face.h"
#include "watched_modules.h"

namespace table {

using orvo::OwnedDib;
using pictures::Difference;
using pictures::Locked;
using watched::Log;
using watched::operator+;

// What a callback was told, and what it answers.
inline std::vector<int> heard;
inline int stopAt = -1;  // percent at which the answer is to stop
inline int Watch(int percent, void* userData) {
  heard.push_back(userData == nullptr ? percent : -1);
  return percent == stopAt ? ORVO_ERR_CANCELLED : ORVO_OK;
}
inline int Earlier(int /*percent*/, void* /*userData*/) {
  return 0;
}

inline bool IsAlive(DibHandle handle) {
  return GlobalSize(handle) != 0;
}

// Results folded into one number, in the order in which they come: codes, texts, bytes of images.
class Sum {
 public:
  Sum& operator<<(std::integral auto number) {
    value_ = (value_ ^ static_cast<std::uint64_t>(number)) * 0x100000001B3U;
    return *this;
  }
  Sum& operator<<(const std::ranges::sized_range auto& items) {
    for (const auto& item : items) *this << item;
    return *this << std::ranges::size(items);
  }
  Sum& operator<<(DibHandle image) {
    return image == nullptr ? *this << 0 : *this << pictures::BytesOf(image);
  }
  [[nodiscard]] std::string hex() const {
    std::ostringstream text;
    text << std::hex << (value_ >> 32);
    return text.str();
  }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325U;
};

// Calls an entry as any language would: the table's function pointer at that place.
template <class... Arguments>
int CallSlot(COrvoInstance* toolkit, std::size_t place, Arguments... arguments) {
  void* const* slots = nullptr;
  std::memcpy(&slots, static_cast<const void*>(toolkit), sizeof slots);
  return reinterpret_cast<int (*)(COrvoInstance*, Arguments...)>(slots[place])(toolkit,
                                                                               arguments...);
}

class ToolkitTest : public testing::Test {
 protected:
  using Toolkit = std::unique_ptr<COrvoInstance, decltype(&DestroyORVOInstance)>;

  ToolkitTest() {
    watched::TheState() = {};
    state.names = {{reinterpret_cast<const void*>(&Watch), "watch"},
                   {reinterpret_cast<const void*>(&Earlier), "earlier"}};
    install(nullptr);
    heard.clear();
    stopAt = -1;
    bind();
  }
  ~ToolkitTest() override {
    install(nullptr);
    toolkit.reset();
    EXPECT_EQ(PlatformLiveBlocks(), blocks_) << "blocks leaked or freed twice";
  }

  // Another toolkit, from which these modules and entries are hidden; an empty log.
  void bind(const std::set<std::string>& absent = {}) {
    state.absent = absent;
    toolkit.reset(CreateORVOInstance());
    log();
  }
  // The calls since the last time. No block is locked between two operations.
  Log log() {
    EXPECT_EQ(PlatformHeldLocks(), 0U);
    return std::exchange(state.log, {});
  }
  // Puts a callback into the kernel module, past the toolkit; gives the one that was there.
  static StatusCallback install(StatusCallback callback) {
    static void* const kernel = dlopen(MODULES_FOLDER "/ltkrn13n.dll", RTLD_NOW);
    static const auto set = reinterpret_cast<StatusCallback (*)(StatusCallback, void*)>(
        dlsym(kernel, "L_SetStatusCallBack"));
    return set(callback, nullptr);
  }

  watched::State& state = watched::TheState();
  Toolkit toolkit{nullptr, &DestroyORVOInstance};

 private:
  std::size_t blocks_ = PlatformLiveBlocks();
};

using pictures::DrawnFace, pictures::Ground;
using pictures::kEyeX, pictures::kEyeY, pictures::kEyeRadius, pictures::kHeight, pictures::kWidth;

inline OwnedDib Face() {
  static const std::vector<std::uint8_t> bytes = pictures::BytesOf(DrawnFace().get());
  OwnedDib face(GlobalAlloc(orvo::kDibBlockFlags, bytes.size()));
  std::memcpy(Locked(face.get()).bytes(), bytes.data(), bytes.size());
  return face;
}

// The face in 16, 24 and 32 bits; noise in palettes, gray when of 8 bits.
inline OwnedDib Picture(int depth) {
  if (depth < 16) {
    return depth == 4 ? pictures::NoiseInColor(kWidth, kHeight, 4, 1)
                      : pictures::Noise(kWidth, kHeight, depth, 1);
  }
  OwnedDib picture = Face();
  const watched::State before = std::exchange(watched::TheState(), {});
  if (depth != 24) {
    const orvo::OwnedInstance toolkit;
    EXPECT_EQ(toolkit->ConvertToColorResInPlace(picture.address(), depth), ORVO_OK);
  }
  watched::TheState() = before;
  return picture;
}

inline std::string Measures(DibHandle image) {
  const orvo::DibLayout layout = Locked(image).layout();
  return std::to_string(layout.width) + "x" + std::to_string(layout.height) + "x" +
         std::to_string(layout.depth);
}

}  // namespace table

#endif  // TESTS_TABLE_TOOLKIT_TEST_H
