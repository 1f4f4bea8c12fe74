// The edge of a module: nothing is thrown across it.
#ifndef MODULES_COMMON_GUARD_H
#define MODULES_COMMON_GUARD_H

#include <new>

#include "binding/module_contract.h"

namespace modules {

// Thrown where work ends with a module code that its caller shall get.
struct ModuleError {
  int code;
};

// met: anything that an if takes.
template <class Condition>
void Require(const Condition& met, int code) {
  if (!met) throw ModuleError{code};
}

// Runs an entry point's work and turns what it throws into a module code.
template <class Work>
int Guarded(Work&& work) noexcept {
  try {
    return work();
  } catch (const ModuleError& error) {
    return error.code;
  } catch (const std::bad_alloc&) {
    return kModuleNoMemory;
  } catch (...) {
    return kModuleFailure;
  }
}

}  // namespace modules

#endif  // MODULES_COMMON_GUARD_H
