#include "failing_memory.h"

#include <cstdlib>
#include <new>

namespace {

int allocationsLeft = -1;

}  // namespace

void FailAllocationAfter(int count) {
  allocationsLeft = count;
}

void* operator new(std::size_t bytes) {
  const bool fails = allocationsLeft >= 0 && allocationsLeft-- == 0;
  void* const memory = fails ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*bytes*/) noexcept {
  std::free(memory);
}
