// Memory of the whole test program, with a call of new that can be told to fail. In a file of its
// own: compilers that see new and its callers together mistake the free for a mismatch.
#include <cstdlib>
#include <new>

#include "fixture.h"

namespace {
int newsUntilFailure = 0;
}

void rig::FailNew(int n) noexcept {
  newsUntilFailure = n;
}

void* operator new(std::size_t bytes) {
  if (newsUntilFailure > 0 && --newsUntilFailure == 0) throw std::bad_alloc();
  void* const memory = std::malloc(bytes == 0 ? 1 : bytes);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
