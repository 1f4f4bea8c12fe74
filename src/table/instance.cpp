// The life of an instance: the library's two factory functions and the table's first entry.
#include <utility>

#include <orvo/CLeadTools.h>
#include <orvo/COrvoCS.h>
#include <orvo/instance.h>

#include "table/running_call.h"

COrvoInstance* CreateORVOInstance() noexcept {
  auto* const instance = new COrvoInstance;
  if (instance == nullptr) return nullptr;
  instance->leadTools = new CLeadTools;
  if (instance->leadTools != nullptr) instance->orvoCS = new COrvoCS;
  if (instance->orvoCS == nullptr) {
    DestroyORVOInstance(instance);
    return nullptr;
  }
  instance->orvoCS->CSSetLT(instance->leadTools);
  return instance;
}

void DestroyORVOInstance(COrvoInstance* instance) noexcept {
  if (instance != nullptr) instance->Destroy(1);
}

void* COrvoInstance::operator new(std::size_t bytes) noexcept {
  return LocalAlloc(LMEM_ZEROINIT, bytes);
}

void COrvoInstance::Destroy(unsigned flag) noexcept {
  const orvo::RunningCall call(leadTools);
  delete std::exchange(leadTools, nullptr);
  delete std::exchange(orvoCS, nullptr);
  if ((flag & 1U) != 0) LocalFree(this);
}
