// The edge of a module: nothing is thrown across it.
#ifndef PROVIDERS_COMMON_GUARD_H
#define PROVIDERS_COMMON_GUARD_H

#include <new>

#include "bridge/vendor_contract.h"

namespace provider {

// Runs an entry point's work and turns what it throws into a vendor code.
template <class Work>
int Guarded(Work&& work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return kVendorNoMemory;
  } catch (...) {
    return kVendorFailure;
  }
}

}  // namespace provider

#endif  // PROVIDERS_COMMON_GUARD_H
