#include "beside_toolkit.h"

#include <filesystem>

#include <orvo/instance.h>

#include "platform/modules.h"

namespace client {

std::string BesideToolkit(std::string_view name) {
  char path[MAX_PATH] = {};
  void* const toolkit = PlatformModuleOf(reinterpret_cast<const void*>(&CreateORVOInstance));
  const unsigned length = toolkit == nullptr ? 0 : GetModuleFileNameA(toolkit, path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return {};
  return std::filesystem::path(path).replace_filename(name).string();
}

}  // namespace client
