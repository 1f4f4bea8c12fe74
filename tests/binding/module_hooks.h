// Stands between the binding and the loader: logs what is loaded, looked up and unloaded, and hides
// what a test wants to be missing.
#ifndef TESTS_BINDING_MODULE_HOOKS_H
#define TESTS_BINDING_MODULE_HOOKS_H

#include <set>
#include <string>

namespace hooks {

// File names of modules and names of entry points that are not to be found.
std::set<std::string>& Absent();

}  // namespace hooks

#endif  // TESTS_BINDING_MODULE_HOOKS_H
