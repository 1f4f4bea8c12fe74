// Calls on which faults fall one by one, and what came of them: counted, told when wrong, and held
// against the list of what may come.
#ifndef TESTS_STRESS_OUTCOMES_H
#define TESTS_STRESS_OUTCOMES_H

#include <initializer_list>
#include <string>

#include "every_operation.h"
#include "failing_calls.h"

namespace stress {

// The call under test, with the fault that is due.
int UnderFault(const Operation& operation, const Call& call);
// The fault for the next UnderFault, and the number of the call on which it fell in the last one.
void Plan(Fault fault, int n);
int FallenOn();

// A condition that has to hold; what and where are told when it does not.
void Check(bool holds, const std::string& where, const char* what);
// What came of a fault.
void Met(const char* operation, const std::string& outcome);
// Compares all that was met to the file's lines, "operation outcome outcome...". Tells how many
// faults there were; the program's exit status.
int Conclude(const char* allowed);

// trial() makes one call by UnderFault and gives what it left. Each call of these kinds that a
// trial makes fails in turn, and judge(left, whole) tells about it; afterwards all is as if nothing
// had failed.
template <class Trial, class Judge>
void FailEach(std::initializer_list<Fault> kinds, const std::string& where, const Trial& trial,
              const Judge& judge) {
  Plan(Fault::kNew, 0);
  const auto whole = trial();
  for (const Fault kind : kinds) {
    int n = 0;
    for (;;) {
      Plan(kind, n + 1);
      const auto left = trial();
      n = FallenOn();
      if (n == 0) break;
      judge(left, whole);
      Plan(kind, 0);
      Check(trial() == whole, where, "differs after a fault");
    }
  }
}

}  // namespace stress

#endif  // TESTS_STRESS_OUTCOMES_H
