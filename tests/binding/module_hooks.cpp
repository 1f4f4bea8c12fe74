#include "module_hooks.h"

#include <dlfcn.h>

#include <map>

#include "double_log.h"

namespace {

// The platform layer's own function, behind the one of the same name that this program defines.
template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::map<void*, std::string>& Loaded() {
  static std::map<void*, std::string> loaded;
  return loaded;
}

}  // namespace

std::set<std::string>& hooks::Absent() {
  static std::set<std::string> absent;
  return absent;
}

// The binding is linked into this program, so its calls come here.

void* LoadLibraryA(const char* path) {
  static auto* const real = Real<decltype(LoadLibraryA)>("LoadLibraryA");
  doubles::TheState().log.push_back("load " + std::string(path));
  const std::string name = std::string(path).substr(std::string(path).find_last_of("/\\") + 1);
  void* const module = hooks::Absent().contains(name) ? nullptr : real(path);
  if (module != nullptr) Loaded()[module] = name;
  return module;
}

void* GetProcAddress(void* module, const char* name) {
  static auto* const real = Real<decltype(GetProcAddress)>("GetProcAddress");
  doubles::TheState().log.push_back("find " + std::string(name));
  return hooks::Absent().contains(name) ? nullptr : real(module, name);
}

int FreeLibrary(void* module) {
  static auto* const real = Real<decltype(FreeLibrary)>("FreeLibrary");
  doubles::TheState().log.push_back("unload " + Loaded()[module]);
  return real(module);
}
