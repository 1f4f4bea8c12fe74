#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include "platform/fault_injection.h"

namespace {

TEST(Blocks, MovableHandleIsOpaqueAndFixedHandleIsThePointer) {
  void* const movable = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, 100);
  void* const fixed = GlobalAlloc(GMEM_ZEROINIT, 100);
  auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(movable));
  ASSERT_NE(bytes, nullptr);
  EXPECT_NE(static_cast<void*>(bytes), movable);
  EXPECT_EQ(GlobalLock(fixed), fixed);
  EXPECT_GE(GlobalSize(movable), 100U);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(bytes[i], 0);
  GlobalUnlock(movable);
  GlobalUnlock(fixed);
  EXPECT_EQ(GlobalFree(movable), nullptr);
  EXPECT_EQ(GlobalFree(fixed), nullptr);
}

TEST(Blocks, LocksCount) {
  void* const handle = GlobalAlloc(GMEM_MOVEABLE, 10);
  const void* const first = GlobalLock(handle);
  EXPECT_EQ(GlobalLock(handle), first);
  EXPECT_EQ(PlatformHeldLocks(), 2U);
  EXPECT_NE(GlobalUnlock(handle), 0);
  EXPECT_EQ(GlobalUnlock(handle), 0);
  EXPECT_EQ(GlobalUnlock(handle), 0) << "one unlock too many";
  EXPECT_EQ(PlatformHeldLocks(), 0U);
  GlobalFree(handle);
}

TEST(Blocks, DeadHandlesFailCleanly) {
  void* const freed = GlobalAlloc(GMEM_MOVEABLE, 10);
  GlobalFree(freed);
  int onStack = 0;
  void* const invented[] = {nullptr, freed, &onStack,
                            reinterpret_cast<void*>(std::uintptr_t{77777})};
  for (void* const handle : invented) {
    EXPECT_EQ(GlobalLock(handle), nullptr);
    EXPECT_EQ(GlobalUnlock(handle), 0);
    EXPECT_EQ(GlobalSize(handle), 0U);
    EXPECT_EQ(GlobalFree(handle), handle);
    EXPECT_EQ(LocalFree(handle), handle);
  }
  void* const next = GlobalAlloc(GMEM_MOVEABLE, 10);
  EXPECT_NE(next, freed) << "a freed handle is never given out again";
  GlobalFree(next);
}

TEST(Blocks, NthAllocationOrLockFails) {
  const std::size_t blocks = PlatformLiveBlocks();
  PlatformFailAllocation(2);
  void* const first = GlobalAlloc(GMEM_MOVEABLE, 1);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(LocalAlloc(LMEM_ZEROINIT, 1), nullptr);
  void* const third = LocalAlloc(LMEM_ZEROINIT, 1);
  EXPECT_NE(third, nullptr);
  PlatformFailLock(1);
  EXPECT_EQ(GlobalLock(first), nullptr);
  EXPECT_NE(GlobalLock(first), nullptr);
  EXPECT_EQ(PlatformLiveBlocks(), blocks + 2);
  GlobalFree(first);
  LocalFree(third);
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
  EXPECT_EQ(PlatformHeldLocks(), 0U) << "freeing ends the locks";
}

TEST(Blocks, ImpossibleSizesGiveNull) {
  EXPECT_EQ(GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, SIZE_MAX / 2), nullptr);
  void* const empty = GlobalAlloc(GMEM_MOVEABLE, 0);
  EXPECT_NE(empty, nullptr);
  EXPECT_NE(GlobalLock(empty), nullptr);
  GlobalFree(empty);
}

TEST(Blocks, AnyThreadMayCall) {
  const std::size_t blocks = PlatformLiveBlocks();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < 2000; ++i) {
        void* const handle = GlobalAlloc(GMEM_MOVEABLE, 64);
        auto* const bytes = static_cast<std::uint8_t*>(GlobalLock(handle));
        bytes[0] = static_cast<std::uint8_t>(t);
        EXPECT_EQ(bytes[0], t);
        GlobalUnlock(handle);
        GlobalFree(handle);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(PlatformLiveBlocks(), blocks);
}

TEST(Rectangles, EdgesAreExclusiveOnTheRightAndBelow) {
  RECT rect;
  SetRect(&rect, 1, 2, 4, 6);
  EXPECT_TRUE(PtInRect(&rect, POINT{1, 2}));
  EXPECT_TRUE(PtInRect(&rect, POINT{3, 5}));
  EXPECT_FALSE(PtInRect(&rect, POINT{4, 5}));
  EXPECT_FALSE(PtInRect(&rect, POINT{3, 6}));

  struct Row {
    const char* name;
    RECT other;
    RECT shared;
  };
  const Row rows[] = {{"overlap", {3, 0, 9, 3}, {3, 2, 4, 3}},
                      {"touching edges share nothing", {4, 2, 8, 6}, {0, 0, 0, 0}},
                      {"inside", {2, 3, 3, 4}, {2, 3, 3, 4}},
                      {"without area", {2, 3, 2, 9}, {0, 0, 0, 0}},
                      {"upside down", {3, 5, 2, 3}, {0, 0, 0, 0}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    RECT shared{9, 9, 9, 9};
    const bool hit = IntersectRect(&shared, &rect, &row.other) != 0;
    EXPECT_EQ(shared.left, row.shared.left);
    EXPECT_EQ(shared.top, row.shared.top);
    EXPECT_EQ(shared.right, row.shared.right);
    EXPECT_EQ(shared.bottom, row.shared.bottom);
    EXPECT_EQ(hit, IsRectEmpty(&shared) == 0);
  }
  RECT copy;
  EXPECT_TRUE(CopyRect(&copy, &rect));
  EXPECT_EQ(copy.bottom, 6);
}

}  // namespace
