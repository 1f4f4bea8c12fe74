#include "platform/memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

// The address sanitizer watches the ends of what the allocator gives, and nothing else.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t kLargeBlock = SIZE_MAX;
#else
constexpr std::size_t kLargeBlock = std::size_t{1} << 20;
#endif

}  // namespace

void* platform::TakeMemory(std::size_t bytes, bool zeroed) noexcept {
  if (bytes < kLargeBlock) {
    const std::size_t size = std::max<std::size_t>(bytes, 1);
    return zeroed ? std::calloc(1, size) : std::malloc(size);
  }
  void* const memory =
      mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  madvise(memory, bytes, MADV_HUGEPAGE);  // a wish: without large pages all goes on as well
  return memory;
}

void platform::GiveMemory(void* memory, std::size_t bytes) noexcept {
  if (bytes < kLargeBlock) {
    std::free(memory);
  } else {
    munmap(memory, bytes);
  }
}
