// The calls for memory and modules of the whole process, program, toolkit and modules alike, any of
// which can be told to fail.
#ifndef TESTS_STRESS_FAILING_CALLS_H
#define TESTS_STRESS_FAILING_CALLS_H

#include <cstdint>

namespace stress {

enum class Fault : std::uint8_t {
  kAllocation,  // GlobalAlloc, LocalAlloc
  kLock,        // GlobalLock
  kNew,         // operator new
  kLoading,     // LoadLibraryA, GetProcAddress
};

// The n-th such call from now on fails, once; 1 is the next, with 0 none fails. A later one in its
// stead where the failure would end the process in a library that is not ours.
void Arm(Fault fault, int n) noexcept;
// Lets all succeed; the number of the call that failed, 0 when none did.
int Disarm() noexcept;

}  // namespace stress

#endif  // TESTS_STRESS_FAILING_CALLS_H
