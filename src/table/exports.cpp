// The library's two factory functions.
#include <orvo/CLeadTools.h>
#include <orvo/COrvoCS.h>
#include <orvo/instance.h>

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
