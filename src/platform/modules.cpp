// Loadable modules.
#include "platform/modules.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>

#include "platform/paths.h"

namespace {

std::mutex pathsMutex;

// Absolute paths of modules that asked for their own, by handle. Never destroyed.
std::map<void*, std::string>& KnownPaths() {
  static auto* const paths = new std::map<void*, std::string>;
  return *paths;
}

std::string MainProgramPath() {
  std::string path(MAX_PATH, '\0');
  for (;;) {
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0) return {};
    if (static_cast<std::size_t>(length) < path.size()) {
      path.resize(static_cast<std::size_t>(length));
      return path;
    }
    path.resize(path.size() * 2);
  }
}

// The path by which the loader knows a module; its name is empty for the main program.
std::string LoaderPath(const link_map* module) {
  if (module->l_name == nullptr || module->l_name[0] == '\0') return MainProgramPath();
  return std::filesystem::absolute(module->l_name).string();
}

std::string ModulePath(void* module) {
  if (module == nullptr) return MainProgramPath();
  {
    const std::lock_guard guard(pathsMutex);
    const auto known = KnownPaths().find(module);
    if (known != KnownPaths().end()) return known->second;
  }
  link_map* map = nullptr;
  return dlinfo(module, RTLD_DI_LINKMAP, &map) == 0 ? LoaderPath(map) : std::string();
}

}  // namespace

void* PlatformModuleOf(const void* address) noexcept {
  Dl_info info;
  void* map = nullptr;
  if (dladdr1(address, &info, &map, RTLD_DL_LINKMAP) == 0 || map == nullptr) return nullptr;
  try {
    std::string path = LoaderPath(static_cast<const link_map*>(map));
    const std::lock_guard guard(pathsMutex);
    KnownPaths()[map] = std::move(path);
  } catch (...) {
    return nullptr;
  }
  return map;
}

void* LoadLibraryA(const char* path) {
  if (path == nullptr || *path == '\0') return nullptr;
  try {
    return dlopen(platform::NativePath(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  } catch (...) {
    return nullptr;
  }
}

void* GetProcAddress(void* module, const char* name) {
  return module == nullptr || name == nullptr ? nullptr : dlsym(module, name);
}

int FreeLibrary(void* module) {
  return module != nullptr && dlclose(module) == 0 ? 1 : 0;
}

unsigned GetModuleFileNameA(void* module, char* path, unsigned size) {
  if (path == nullptr || size == 0) return 0;
  try {
    const std::string full = ModulePath(module);
    const std::size_t length = std::min<std::size_t>(full.size(), size - 1);
    std::memcpy(path, full.data(), length);
    path[length] = '\0';
    return full.size() < size ? static_cast<unsigned>(length) : size;
  } catch (...) {
    path[0] = '\0';
    return 0;
  }
}
