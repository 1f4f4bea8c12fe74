// Memory blocks behind handles.
//
// A movable block's handle is a serial number in the shape of a pointer: it is never reused, so a
// handle that was freed stays dead for the life of the process, and it is odd, so it is never the
// address of a fixed block. All handles are looked up, none is followed.
#include <cstddef>
#include <mutex>
#include <new>
#include <unordered_map>

#include "platform/fault_injection.h"
#include "platform/memory.h"

namespace {

struct Block {
  void* memory;
  std::size_t bytes;
  std::size_t locks;
};

using Blocks = std::unordered_map<void*, Block>;

#if defined(ORVO_FAULT_INJECTION)
// Counts down to the one call that is to fail.
class FaultCountdown {
 public:
  void set(int n) { left_ = n; }
  bool fires() { return left_ > 0 && --left_ == 0; }

 private:
  int left_ = 0;
};
#else
struct FaultCountdown {
  static constexpr bool fires() { return false; }
};
#endif

// The mutex guards the tables alone. Memory is taken, zeroed and given back outside it, which for
// that of an image may take longer than what other threads wait to do.
struct Registry {
  std::mutex mutex;
  Blocks handles;                                 // GlobalAlloc
  std::unordered_map<const void*, void*> starts;  // their handles, by where their memory begins
  Blocks working;                                 // LocalAlloc, by address
  std::uintptr_t nextHandle = 1;
  FaultCountdown failingAllocation;
  FaultCountdown failingLock;
};

// Never destroyed: blocks may be freed by other modules' last words at the end of the process.
Registry& TheRegistry() {
  alignas(Registry) static std::byte place[sizeof(Registry)];
  static auto* const registry = new (place) Registry;
  return *registry;
}

// The handle under which the memory is entered; null when there is no room for it.
void* Enter(Registry& registry, Blocks& blocks, const Block& block, bool movable) noexcept {
  const std::lock_guard guard(registry.mutex);
  if (registry.failingAllocation.fires()) return nullptr;
  void* const handle = movable ? reinterpret_cast<void*>(registry.nextHandle) : block.memory;
  try {
    blocks.emplace(handle, block);
    if (&blocks == &registry.handles) registry.starts.emplace(block.memory, handle);
  } catch (const std::bad_alloc&) {
    blocks.erase(handle);
    return nullptr;
  }
  if (movable) registry.nextHandle += 2;
  return handle;
}

void* Allocate(Registry& registry, Blocks& blocks, unsigned flags, std::size_t bytes) {
  void* const memory = platform::TakeMemory(bytes, (flags & GMEM_ZEROINIT) != 0);
  if (memory == nullptr) return nullptr;
  void* const handle = Enter(registry, blocks, {memory, bytes, 0}, (flags & GMEM_MOVEABLE) != 0);
  if (handle == nullptr) platform::GiveMemory(memory, bytes);
  return handle;
}

void* Release(Registry& registry, Blocks& blocks, void* handle) {
  Blocks::node_type released;
  {
    const std::lock_guard guard(registry.mutex);
    released = blocks.extract(handle);
    if (!released.empty() && &blocks == &registry.handles) {
      registry.starts.erase(released.mapped().memory);
    }
  }
  if (released.empty()) return handle;
  platform::GiveMemory(released.mapped().memory, released.mapped().bytes);
  return nullptr;
}

}  // namespace

void* GlobalAlloc(unsigned flags, size_t bytes) {
  Registry& registry = TheRegistry();
  return Allocate(registry, registry.handles, flags, bytes);
}

void* GlobalLock(void* handle) {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  const auto found = registry.handles.find(handle);
  if (found == registry.handles.end() || registry.failingLock.fires()) return nullptr;
  ++found->second.locks;
  return found->second.memory;
}

int GlobalUnlock(void* handle) {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  const auto found = registry.handles.find(handle);
  if (found == registry.handles.end() || found->second.locks == 0) return 0;
  return --found->second.locks > 0 ? 1 : 0;
}

size_t GlobalSize(void* handle) {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  const auto found = registry.handles.find(handle);
  return found == registry.handles.end() ? 0 : found->second.bytes;
}

void* GlobalHandle(const void* memory) {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  const auto found = registry.starts.find(memory);
  return found == registry.starts.end() ? nullptr : found->second;
}

void* GlobalFree(void* handle) {
  Registry& registry = TheRegistry();
  return Release(registry, registry.handles, handle);
}

void* LocalAlloc(unsigned flags, size_t bytes) {
  Registry& registry = TheRegistry();
  return Allocate(registry, registry.working, flags & LMEM_ZEROINIT, bytes);
}

void* LocalFree(void* memory) {
  Registry& registry = TheRegistry();
  return Release(registry, registry.working, memory);
}

#if defined(ORVO_FAULT_INJECTION)
void PlatformFailAllocation(int n) noexcept {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  registry.failingAllocation.set(n);
}

void PlatformFailLock(int n) noexcept {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  registry.failingLock.set(n);
}
#endif

std::size_t PlatformLiveBlocks() noexcept {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  return registry.handles.size() + registry.working.size();
}

std::size_t PlatformHeldLocks() noexcept {
  Registry& registry = TheRegistry();
  const std::lock_guard guard(registry.mutex);
  std::size_t locks = 0;
  for (const auto& [handle, block] : registry.handles) locks += block.locks;
  return locks;
}
