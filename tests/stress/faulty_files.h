#ifndef TESTS_STRESS_FAULTY_FILES_H
#define TESTS_STRESS_FAULTY_FILES_H

#include "every_operation.h"

namespace stress {

bool WorksOnFiles(const Operation& operation);
// Puts faults into the operations that do, in a folder of their own.
void FailFiles(COrvoInstance& toolkit);

}  // namespace stress

#endif  // TESTS_STRESS_FAULTY_FILES_H
