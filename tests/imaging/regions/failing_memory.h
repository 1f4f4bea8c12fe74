// Makes the program's own memory run out on purpose.
#ifndef TESTS_IMAGING_REGIONS_FAILING_MEMORY_H
#define TESTS_IMAGING_REGIONS_FAILING_MEMORY_H

// So many allocations by operator new succeed from now on, then one fails; none fails below 0.
void FailAllocationAfter(int count);

#endif  // TESTS_IMAGING_REGIONS_FAILING_MEMORY_H
