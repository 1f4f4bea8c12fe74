// What the kernel module keeps for the other modules, process-wide.
#ifndef MODULES_COMMON_KERNEL_SERVICES_H
#define MODULES_COMMON_KERNEL_SERVICES_H

#include "binding/module_contract.h"

extern "C" {
// Names the codec libraries in use ("name version, name version"), for L_VersionInfo. The text is
// copied and takes the place of the one before; null and "" name none.
ORVO_MODULE_API void KernelRegisterCodecs(const char* list);
// The mode last given to L_DefaultDithering, 0 before: for conversions whose caller names none.
ORVO_MODULE_API unsigned KernelDefaultDithering();
}

#endif  // MODULES_COMMON_KERNEL_SERVICES_H
