// Calls into the C codec libraries that leave by longjmp when they meet an error.
#ifndef MODULES_PICTURES_LIBRARY_CALLS_H
#define MODULES_PICTURES_LIBRARY_CALLS_H

#include <csetjmp>

namespace modules {

// Runs calls and gives true; false when the library jumped to `jump` out of them. What is jumped
// over is never destroyed, so `calls` captures by reference and owns nothing; owners live around
// it.
template <class Calls>
[[nodiscard]] bool Attempt(std::jmp_buf& jump, const Calls& calls) {
  if (setjmp(jump) != 0) return false;
  calls();
  return true;
}

}  // namespace modules

#endif  // MODULES_PICTURES_LIBRARY_CALLS_H
