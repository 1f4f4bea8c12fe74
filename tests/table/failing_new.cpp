// The program's own memory, which runs out on purpose. In a file of its own, so that no compiler
// sees through the operators.
#include <algorithm>
#include <cstdlib>
#include <new>

#include "watched_modules.h"

namespace {

int untilNewFails = 0;

}  // namespace

void watched::FailNew(int n) noexcept {
  untilNewFails = n;
}

void* operator new(std::size_t bytes) {
  const bool fails = untilNewFails > 0 && --untilNewFails == 0;
  void* const memory = fails ? nullptr : std::malloc(std::max<std::size_t>(bytes, 1));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*bytes*/) noexcept {
  std::free(memory);
}
