// What the modules tell about themselves.
#include "platform/version.h"

#include <array>
#include <cstdio>

#include "binding/module_contract.h"
#include "common/kernel_services.h"

namespace {

std::array<char, sizeof(LTVERSIONINFO::codecs)> codecNames{};

template <std::size_t size>
void CopyText(char (&target)[size], const char* text) {
  std::snprintf(target, size, "%s", text);
}

}  // namespace

void KernelRegisterCodecs(const char* list) {
  std::snprintf(codecNames.data(), codecNames.size(), "%s", list == nullptr ? "" : list);
}

int L_VersionInfo(LTVERSIONINFO* info) {
  if (info == nullptr || info->size < static_cast<int>(sizeof *info)) return kModuleBadParameter;
  CopyText(info->product, "Orvo imaging modules");
  CopyText(info->version, ORVO_VERSION);
  CopyText(info->codecs, codecNames.data());
  return kModuleSuccess;
}
